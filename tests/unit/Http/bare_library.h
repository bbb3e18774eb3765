/* A server that answers every request with mg_serve_http alone. One at a time, on one thread. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Serves pszRoot, which must outlive it, on a loopback port. Returns the port, or -1. */
__attribute__((visibility("default"))) int BareOpen(const char* pszRoot);
__attribute__((visibility("default"))) void BarePoll(void);
__attribute__((visibility("default"))) void BareClose(void);

#ifdef __cplusplus
}
#endif
