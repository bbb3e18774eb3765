// The HTTP loop: the only place that drives the HTTP library's manager and sees its events.
#pragma once

#include <mongoose.h>

// The library's file-serving options: only the document root is set. One for the process.
mg_serve_http_opts& HttpOptions();

// Serves HTTP on TCP port 80 with the document root pszWebRoot, which must outlive the call, and
// hands every whole request to CWebCtrl::DoHttpRequeset on the calling thread. Returns only on
// failure (-1): the port cannot be bound, or the document root is not there.
int RunHttpLoop(const char* pszWebRoot);

// The one handler of the library's events; pData is what the event number says.
void HttpEvent(mg_connection* pConn, int nEvent, void* pData);

// Closes the longest-idle connections beyond the limit of open ones. Called between two polls.
void CloseIdleConnections(mg_mgr& mgr);
