# Our own code compiles without warnings; the libraries' code is not held to that.
add_library(webctrl_warnings INTERFACE)
target_compile_options(webctrl_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                                  -Werror)

# webctrl_library(<name> <sources>...): the static library of one folder, built with our warnings;
# its headers are included by paths from the project's root ("control/UdpCtrlSocket.h").
function(webctrl_library name)
  add_library(${name} STATIC ${ARGN})
  webctrl_packaged(${name})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE webctrl_warnings)
endfunction()

# webctrl_program(<name> <sources>...): an executable under the same rules.
function(webctrl_program name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE webctrl_warnings)
endfunction()
