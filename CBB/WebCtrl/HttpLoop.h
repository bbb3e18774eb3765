// The HTTP loop: the service's HTTP server and the handler of its events.
#pragma once

#include <mongoose.h>

// Serves HTTP on TCP port 80 with the document root pszWebRoot, which must outlive the call, and
// hands every whole request to CWebCtrl::DoHttpRequeset on the calling thread. Returns only on
// failure (-1): the port cannot be bound, or the document root is not there.
int RunHttpLoop(const char* pszWebRoot);

// The one handler of the HTTP library's events; pData is what the event number says. Throws
// std::bad_alloc out of a request.
void HttpEvent(mg_connection* pConn, int nEvent, void* pData);
