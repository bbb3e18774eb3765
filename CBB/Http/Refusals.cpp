#include "CBB/Http/Refusals.h"

#include <cstring>
#include <iterator>

namespace {

constexpr struct {
  int nStatus;
  const char* pszReason;
} kReasons[] = {
    {200, "OK"},
    {204, "No Content"},
    {206, "Partial Content"},
    {301, "Moved Permanently"},
    {304, "Not Modified"},
    {400, "Bad Request"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {411, "Length Required"},
    {412, "Precondition Failed"},
    {413, "Content Too Large"},
    {414, "URI Too Long"},
    {416, "Range Not Satisfiable"},
    {417, "Expectation Failed"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {503, "Service Unavailable"},
    {505, "HTTP Version Not Supported"},
};

}  // namespace

const char* ReasonPhrase(int nStatus) {
  for (const auto& row : kReasons) {
    if (row.nStatus == nStatus) return row.pszReason;
  }
  return "Unknown";
}

void SendStatus(mg_connection* pConn, int nStatus, bool bKeepOpen, bool bBody,
                std::string_view fields) {
  const char* const pszReason = ReasonPhrase(nStatus);
  const char* const pszConnection = bKeepOpen ? "keep-alive" : "close";
  mg_printf(pConn, "HTTP/1.1 %d %s\r\nServer: Mongoose/" MG_VERSION "\r\n%.*sConnection: %s\r\n",
            nStatus, pszReason, static_cast<int>(fields.size()), fields.data(), pszConnection);
  if (nStatus == 204 || nStatus == 304) {
    mg_send(pConn, "\r\n", 2);
    return;
  }
  mg_printf(pConn, "Content-Type: text/plain\r\nContent-Length: %zu\r\n\r\n", strlen(pszReason));
  if (bBody) mg_send(pConn, pszReason, static_cast<int>(strlen(pszReason)));
}
