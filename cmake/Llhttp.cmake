# llhttp, the HTTP request parser: sources from Debian's package or from -DLLHTTP_DIR= (a folder
# with api.c, http.c, llhttp.c, and llhttp/llhttp.h in it or beside it).
set(LLHTTP_DIR /usr/share/llhttp CACHE PATH "Folder with llhttp.c, http.c and api.c of llhttp 8")
find_path(LLHTTP_INCLUDE_DIR llhttp/llhttp.h HINTS ${LLHTTP_DIR} ${LLHTTP_DIR}/..
          PATHS /usr/share/include NO_CMAKE_FIND_ROOT_PATH)
if(NOT EXISTS ${LLHTTP_DIR}/llhttp.c OR NOT LLHTTP_INCLUDE_DIR)
  message(FATAL_ERROR "No llhttp.c and llhttp.h in ${LLHTTP_DIR}: install Debian's package "
                      "node-llhttp, or give -DLLHTTP_DIR=<folder>.")
endif()

file(STRINGS ${LLHTTP_INCLUDE_DIR}/llhttp/llhttp.h version_line
     REGEX "#define LLHTTP_VERSION_MAJOR ")
if(NOT version_line MATCHES " 8$")
  message(FATAL_ERROR "${LLHTTP_INCLUDE_DIR} holds another llhttp than version 8: ${version_line}")
endif()

add_library(llhttp STATIC ${LLHTTP_DIR}/llhttp.c ${LLHTTP_DIR}/http.c ${LLHTTP_DIR}/api.c)
target_include_directories(llhttp SYSTEM PUBLIC ${LLHTTP_INCLUDE_DIR}
                           PRIVATE ${LLHTTP_INCLUDE_DIR}/llhttp)
# Strict mode: no blank in a name, no line that ends in CR or LF alone.
target_compile_definitions(llhttp PUBLIC LLHTTP_STRICT_MODE=1)
target_compile_options(llhttp PRIVATE -w)
webctrl_packaged(llhttp)
