// Answers requests for files of the document root: ordinary ones from memory, the others through
// the HTTP library. HTTP server thread only.
#pragma once

#include <mongoose.h>

// Answers a request for a file as mg_serve_http does, and adds what the pages and today's HTTP need
// (packed forms, lists of entity tags, ranges, freshness, correct reason phrases). Called inside
// the handler of this request. Throws std::bad_alloc.
void ServeFile(mg_connection* pConn, http_message* pMsg, const mg_serve_http_opts& opts);
