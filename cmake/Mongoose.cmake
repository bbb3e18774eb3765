# mongoose: the include path and switches of the HTTP library, from -DMONGOOSE_DIR= (a copy of the 6
# series from 6.16 on) or from .deps/mongoose, where scripts/fetch-mongoose.sh puts it. CBB/Http
# builds it.
set(MONGOOSE_DIR ${CMAKE_SOURCE_DIR}/.deps/mongoose CACHE PATH
    "Folder with mongoose.c and mongoose.h, 6.16 or a later one of the 6 series")

if(NOT EXISTS ${MONGOOSE_DIR}/mongoose.c OR NOT EXISTS ${MONGOOSE_DIR}/mongoose.h)
  message(FATAL_ERROR "No mongoose.c and mongoose.h in ${MONGOOSE_DIR}: "
                      "run scripts/fetch-mongoose.sh, or give -DMONGOOSE_DIR=<folder>.")
endif()

file(STRINGS ${MONGOOSE_DIR}/mongoose.h version_line REGEX "#define MG_VERSION \"")
string(REGEX MATCH "\"([0-9.]+)\"" _ "${version_line}")
set(MONGOOSE_VERSION ${CMAKE_MATCH_1})
if(NOT MONGOOSE_VERSION MATCHES "^6\\." OR MONGOOSE_VERSION VERSION_LESS 6.16)
  message(
    FATAL_ERROR
      "${MONGOOSE_DIR} holds Mongoose \"${MONGOOSE_VERSION}\"; the daemon needs 6.16 or a later one "
      "of the 6 series. Older ones can be crashed from the network through the length of a "
      "WebSocket frame, have a fault in the request parser, and name the switches that turn unused "
      "protocols off differently, so that they would stay on.")
endif()

add_library(mongoose INTERFACE)
target_include_directories(mongoose SYSTEM INTERFACE ${MONGOOSE_DIR})
# The switches change the library's types, so every user must see the same ones. Features that the
# pages do not use are compiled out: nobody who reaches the port may list folders, start programs
# that lie beside the pages, or hold connections under another protocol.
target_compile_definitions(
  mongoose
  INTERFACE
         MG_ENABLE_HTTP_SSI=1
         MG_ENABLE_HTTP_SSI_EXEC=0
         MG_ENABLE_MQTT=0
         MG_ENABLE_COAP=0
         MG_ENABLE_DNS_SERVER=0
         MG_ENABLE_SNTP=0
         MG_ENABLE_HTTP_WEBSOCKET=0
         MG_ENABLE_BROADCAST=0
         MG_ENABLE_HTTP_CGI=0
         MG_ENABLE_HTTP_WEBDAV=0
         MG_ENABLE_DIRECTORY_LISTING=0
         # The library's types contain file sizes: 64 bits for everyone who passes them.
         _FILE_OFFSET_BITS=64
         # The most field lines of a request, plus one.
         MG_MAX_HTTP_HEADERS=101
         # One segment per poll (the default) lets delayed acknowledgements stall longer replies.
         MG_TCP_IO_SIZE=16384
         MG_MAX_HTTP_SEND_MBUF=16384
         # Each level of nested includes has two such paths; CBB/Http/Library.c says why they are so
         # short.
         MG_MAX_PATH=1024)
