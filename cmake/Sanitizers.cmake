if(NEWSREADER_SANITIZE)
  # The vptr check needs the type information of every polymorphic class it sees; Qt's private classes,
  # which the thread layout uses, do not export theirs.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
