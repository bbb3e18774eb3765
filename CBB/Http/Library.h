/* The HTTP library, with access to its private parts. Also read as C. HTTP server thread only.
 */
#pragma once

#include <stdio.h> /* NOLINT: also C */

#ifdef __cplusplus
extern "C" {
#endif

struct http_message;
struct mg_connection;
struct mg_iface_vtable;
struct mg_serve_http_opts;

/* The library's own event interface. */
extern const struct mg_iface_vtable mg_socket_iface_vtable; /* NOLINT: its header has none */

/* Closes a connection and frees it. No call of the library may be running for it. */
void LibraryClose(struct mg_connection* pConn);

/* Lets the library answer a request for a file: mg_serve_http with the preparation it needs. The
   answer is in the connection's send buffer. Returns the file that the library would send after
   that, at its beginning, which the caller closes; null when the answer is complete. */
FILE* LibraryServeFile(struct mg_connection* pConn, struct http_message* pMsg,
                       const struct mg_serve_http_opts* pOpts);

/* The library's media type for a file of this name, or "text/plain". */
const char* LibraryMediaType(const char* pszPath);

#ifdef __cplusplus
}
#endif
