// The HTTP loop: the only place that drives the HTTP library's manager and sees its events.
#pragma once

#include <mongoose.h>

constexpr int kMaxConnections = 128;

// The library's file-serving options: only the document root is set. One for the process.
mg_serve_http_opts& HttpOptions();

// Makes the next request look at the file system anew: within one request the library's repeated
// questions about a file have one answer.
void ForgetFiles();

// Serves HTTP on TCP port 80 with the document root pszWebRoot, which must outlive the call, and
// hands every whole request to CWebCtrl::DoHttpRequeset on the calling thread. Returns only on
// failure (-1): the port cannot be bound, or the document root is not there.
int RunHttpLoop(const char* pszWebRoot);

// The one handler of the library's events; pData is what the event number says. When memory was
// short, the connection is closed and what was to be sent is dropped.
void HttpEvent(mg_connection* pConn, int nEvent, void* pData);

// Makes the listener's connections speak HTTP, one request of each at a time. The limits of the
// listener's socket are theirs, too.
void ServeHttp(mg_connection* pListener);

// Serves the next request of each connection that has more than one, where the reply before is
// complete. Called between two polls.
void ServeWaiting(mg_mgr& mgr);

// Lets every connection receive again: one that has received takes no more in the same poll, else a
// client that sends without a pause would be the only one served. Keeps those open whose client has
// sent its last request and waits for replies, and closes those whose request is longer than the
// service takes. Returns whether the next poll has work without waiting for the network. Called
// between two polls.
bool ResumeReceiving(mg_mgr& mgr);

// How many connections may be open at a time: kMaxConnections, or what the process's limit of
// descriptors leaves, but one at least.
int ConnectionLimit();

// Closes the longest-idle connections beyond nLimit open ones. Called between two polls.
void CloseIdleConnections(mg_mgr& mgr, int nLimit = kMaxConnections);
