# libFuzzer builds: every target of the tree gets coverage instrumentation and the address and undefined
# behaviour sanitizers; the fuzz targets also get libFuzzer's main. Only clang has libFuzzer.
if(NEWSREADER_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "NEWSREADER_FUZZ needs clang (configure with CXX=clang++)")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize=vptr -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
