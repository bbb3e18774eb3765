/* What the HTTP library knows of a connection and does not tell. Also read as C. */
#pragma once

#include <stddef.h> /* NOLINT: also C */

#ifdef __cplusplus
extern "C" {
#endif

struct mbuf;
struct mg_connection;

/* What FirstRequestLength returns instead of a length. */
enum {
  kRequestNotWhole = 0,
  kRequestBroken = -1,   /* or with a head of MG_MAX_HTTP_REQUEST_SIZE bytes or more */
  kRequestToTheEnd = -2, /* its body ends with the connection */
};

/* The length of the first request in the received bytes, head and body, once it is there as a
   whole. A body in chunks counts with their frames. The bytes stay as they are. */
ptrdiff_t FirstRequestLength(const struct mbuf* pReceived);

/* Whether a file is on its way: the reply to the last request is not complete yet. */
int IsSendingFile(const struct mg_connection* pConn);

#ifdef __cplusplus
}
#endif
