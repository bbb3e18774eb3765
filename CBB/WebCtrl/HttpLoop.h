// The HTTP loop: the service's HTTP server and the handler of its events.
#pragma once

#include <mongoose.h>

// Serves HTTP on TCP port 80 with the document root pszWebRoot, which must outlive the call, and
// passes every whole request to CWebCtrl::DoHttpRequeset on the calling thread. Returns only on
// failure (-1): the port cannot be bound, or the document root does not exist.
int RunHttpLoop(const char* pszWebRoot);

// The only handler of the HTTP library's events; the event number determines the type of pData. A
// request may throw std::bad_alloc.
void HttpEvent(mg_connection* pConn, int nEvent, void* pData);
