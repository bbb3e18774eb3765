# -DWEBCTRL_STATIC=ON: executables that need no library on the recorder, as small as they get. The
# functions that nothing calls are a fifth of what would be linked otherwise.
option(WEBCTRL_STATIC "Link statically" OFF)

if(WEBCTRL_STATIC)
  set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
  string(APPEND CMAKE_EXE_LINKER_FLAGS " -static")
  add_compile_options(-ffunction-sections -fdata-sections)
  add_link_options(-Wl,--gc-sections)
endif()
