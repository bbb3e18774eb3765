# -DWEBCTRL_SANITIZE=address,undefined (or thread) instruments everything that is built here, the
# HTTP library included.
set(WEBCTRL_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas")
if(WEBCTRL_BUILD_FUZZ AND NOT WEBCTRL_SANITIZE)
  # Everything that the fuzz targets drive is instrumented for coverage.
  set(WEBCTRL_SANITIZE address,undefined,fuzzer-no-link)
endif()
if(WEBCTRL_SANITIZE)
  add_compile_options(-fsanitize=${WEBCTRL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${WEBCTRL_SANITIZE})
endif()
