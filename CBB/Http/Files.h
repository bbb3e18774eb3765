// Answering requests for files of the document root: from memory where nothing about them is odd,
// else through the HTTP library. HTTP server thread only.
#pragma once

#include <mongoose.h>

// Answers a request for a file: mg_serve_http's answer, with what the pages and today's HTTP need
// beside it (packed forms, lists of entity tags, ranges, freshness, right reasons). The connection
// is a server's, in the midst of the handler of this request. Throws std::bad_alloc.
void ServeFile(mg_connection* pConn, http_message* pMsg, const mg_serve_http_opts& opts);
