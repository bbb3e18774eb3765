/* The unmodified HTTP library with our switches: files, memory and events are its own. It is built
   into a shared object, so that it can be used beside the one of CBB/Http. */
#include "tests/unit/Http/bare_library.h"

#include <mongoose.c> /* NOLINT: the library in a build of its own */

static struct mg_mgr s_mgr;
static struct mg_serve_http_opts s_opts;

static void Serve(struct mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent == MG_EV_HTTP_REQUEST) mg_serve_http(pConn, (struct http_message*)pData, s_opts);
}

int BareOpen(const char* pszRoot) {
  struct mg_connection* pListener;
  s_opts.document_root = pszRoot;
  mg_mgr_init(&s_mgr, NULL);
  pListener = mg_bind(&s_mgr, "127.0.0.1:0", &Serve);
  if (pListener == NULL) return -1;
  mg_set_protocol_http_websocket(pListener);
  return ntohs(pListener->sa.sin.sin_port);
}

void BarePoll(void) { mg_mgr_poll(&s_mgr, 1); }

void BareClose(void) { mg_mgr_free(&s_mgr); }
