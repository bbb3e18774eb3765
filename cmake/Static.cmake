# -DWEBCTRL_STATIC=ON: executables that need no library on the recorder and are as small as
# possible. Removing functions that nothing calls saves a fifth of the size.
option(WEBCTRL_STATIC "Link statically" OFF)

if(WEBCTRL_STATIC)
  set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
  string(APPEND CMAKE_EXE_LINKER_FLAGS " -static")
  add_compile_options(-ffunction-sections -fdata-sections)
  add_link_options(-Wl,--gc-sections)
endif()
