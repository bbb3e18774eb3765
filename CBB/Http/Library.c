/* The HTTP library, built for a thread with a stack of 128 KiB, on top of our memory and files.

   Pages that include each other nest up to ten levels, each with a buffer of BUFSIZ bytes and two
   of MG_MAX_PATH on the stack: 180 KiB with the C library's sizes. An include's tag is read into
   the first buffer and copied unchecked from there into a path, so BUFSIZ must not exceed
   MG_MAX_PATH. */
#include "CBB/Http/LibraryMemory.h"

#define MG_MALLOC ReserveMalloc
#define MG_CALLOC ReserveCalloc
#define MG_REALLOC ReserveRealloc
#define MG_FREE ReserveFree
#define MG_USER_FILE_FUNCTIONS 1

#include <mongoose.h>

#undef BUFSIZ
#define BUFSIZ 1024
#if BUFSIZ > MG_MAX_PATH
#error "an include's tag may be longer than a path"
#endif

/* The headroom that a growing send buffer gets is not given back when it shrinks. */
#undef MBUF_SIZE_MAX_HEADROOM
#define MBUF_SIZE_MAX_HEADROOM 8192

#include <mongoose.c> /* NOLINT: the library as a whole, over the switches above */

#include "CBB/Http/Library.h"

FILE* LibraryServeFile(struct mg_connection* pConn, struct http_message* pMsg,
                       const struct mg_serve_http_opts* pOpts) {
  struct mg_http_proto_data* const pData = mg_http_create_proto_data(pConn);
  FILE* pFile;
  mg_serve_http(pConn, pMsg, *pOpts);
  pFile = pData->file.fp;
  pData->file.fp = NULL;
  pConn->proto_data = NULL;
  mg_http_proto_data_destructor(pData);
  return pFile;
}

const char* LibraryMediaType(const char* pszPath) {
  struct mg_serve_http_opts opts;
  memset(&opts, 0, sizeof(opts));
  /* The library's types are terminated texts. */
  return mg_get_mime_type(pszPath, "text/plain", &opts).p;
}

void LibraryClose(struct mg_connection* pConn) {
  pConn->flags |= MG_F_CLOSE_IMMEDIATELY; /* without it more would be received first */
  mg_close_conn(pConn);
}
