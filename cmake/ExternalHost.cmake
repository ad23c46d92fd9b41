# Imports the host's own libraries instead of the stand-ins under host/.
# The module links them by name: baseLib, commonKolPlugin, qtHelpersLib.
if(NOT NEWSREADER_HOST_PREFIX)
  message(FATAL_ERROR "NEWSREADER_EXTERNAL_HOST needs NEWSREADER_HOST_PREFIX (folder with lib/ and include/)")
endif()
foreach(lib baseLib commonKolPlugin qtHelpersLib)
  find_library(${lib}_LIBRARY NAMES ${lib} PATHS ${NEWSREADER_HOST_PREFIX}/lib NO_DEFAULT_PATH REQUIRED)
  add_library(${lib} SHARED IMPORTED GLOBAL)
  set_target_properties(${lib} PROPERTIES
    IMPORTED_LOCATION ${${lib}_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${NEWSREADER_HOST_PREFIX}/include/${lib})
endforeach()
target_link_libraries(baseLib INTERFACE Qt6::Widgets Qt6::Network Qt6::WebEngineWidgets)
target_link_libraries(commonKolPlugin INTERFACE baseLib)
