// Routing: the session gate, the endpoints, and files for everything else.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "CBB/Http/Files.h"
#include "CBB/Util/DebugPrint.h"
#include "CBB/WebCtrl/HttpOptions.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "CBB/WebCtrl/Routes.h"

void CWebCtrl::DoHttpRequeset(mg_connection* pConn, http_message* pMsg) {
  puts("--------------------------DoHttpRequeset, start.");
  const std::string_view request(pMsg->message.p, pMsg->message.len);
  if (m_sessions.CheckSession(request, static_cast<int32_t>(time(nullptr))) != 0) {
    // Deliberate: a refused request gets no answer at all.
    DebugPrint(4, "\033[31m\033[1mDoHttpRequeset error!\n\033[0m");
    return;
  }
  const std::string_view uri(pMsg->uri.p, pMsg->uri.len);
  for (const stRoute& route : kRoutes) {
    if (uri == route.strUri) {
      (this->*route.pfnHandler)(pConn, pMsg);
      return;
    }
  }
  puts("------------others-------mg_serve_http.");
  ServeFile(pConn, pMsg, HttpOptions());
}

// Deliberate: the value is a random number, not a measurement.
void CWebCtrl::get_cpu_usage(mg_connection* pConn, http_message* /*pMsg*/) {
  printf("-------------------handle_get_cpu_usage.\n");
  const double dUsage = rand() / 2147483647.0 * 100.0;
  CJsonReply reply(pConn);
  reply.Piece({"{ \"strFD_SSID\": \"new \""});
  reply.Piece({", \"result\": ", std::to_string(static_cast<int>(dUsage)), " }"});
  reply.End();
}
