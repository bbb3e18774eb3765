// Replies that the edge writes itself: refusals, redirects and the like. HTTP server thread only.
#pragma once

#include <mongoose.h>

#include <string_view>

// The status's reason phrase; "Unknown" for a status that the service never sends.
const char* ReasonPhrase(int nStatus);

// Writes a whole reply into the connection's send buffer: the reason as plain text, or no body when
// bBody is false or the status has none. fields holds more field lines, each with its line end.
void SendStatus(mg_connection* pConn, int nStatus, bool bKeepOpen, bool bBody,
                std::string_view fields = {});
