# webctrl_packaged(<target>): what a package takes from a release build. It has debug symbols, which
# scripts/package.sh keeps apart. The same sources give the same bytes in whichever folder they lie:
# where the compiler writes down the place of a source, which a compiler's cache may have told it as
# seen from the build folder, it writes /usr/src/webctrl instead.
file(RELATIVE_PATH way_up ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})
string(REGEX REPLACE "/$" "" way_up "${way_up}")

function(webctrl_packaged target)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(
      ${target} PRIVATE -g -ffile-prefix-map=${CMAKE_SOURCE_DIR}=/usr/src/webctrl
                        -ffile-prefix-map=${way_up}=/usr/src/webctrl)
  endif()
endfunction()

# The name by which a debugger finds the symbols of an executable.
add_link_options(-Wl,--build-id=sha1)
