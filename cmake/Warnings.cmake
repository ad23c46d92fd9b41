# Warnings for our own targets. Qt headers are system headers and stay quiet.
function(newsreader_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wno-unused-parameter)
  target_compile_definitions(${target} PRIVATE
    QT_NO_URL_CAST_FROM_STRING QT_USE_QSTRINGBUILDER)
endfunction()
