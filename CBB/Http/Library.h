/* The HTTP library, and what it knows and does not tell. Also read as C. HTTP server thread only.
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

/* Closes a connection and frees it. Nothing of the library may be under way for it. */
void LibraryClose(struct mg_connection* pConn);

/* Lets the library answer a request for a file: mg_serve_http, with what it needs around it. What
   it answers stands in the connection's send buffer. Returns the file that it would send behind
   that, at its beginning, which the caller closes; null when the answer is there as a whole. */
FILE* LibraryServeFile(struct mg_connection* pConn, struct http_message* pMsg,
                       const struct mg_serve_http_opts* pOpts);

/* The library's media type for a file of this name, or "text/plain". */
const char* LibraryMediaType(const char* pszPath);

#ifdef __cplusplus
}
#endif
