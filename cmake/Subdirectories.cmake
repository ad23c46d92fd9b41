# Adds every direct subfolder of the current source folder that has a CMakeLists.txt.
function(newsreader_add_subdirectories)
  file(GLOB children LIST_DIRECTORIES true CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*)
  foreach(child ${children})
    if(IS_DIRECTORY ${child} AND EXISTS ${child}/CMakeLists.txt)
      add_subdirectory(${child})
    endif()
  endforeach()
endfunction()
