// Routing: the session gate, the table of endpoint URIs, and files for everything else.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "CBB/Http/Files.h"
#include "CBB/Util/DebugPrint.h"
#include "CBB/Util/Print.h"
#include "CBB/WebCtrl/HttpLoop.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "CBB/WebCtrl/WebCtrl.h"

namespace {

struct CRoute {
  std::string_view strUri;
  CWebCtrl::Handler CWebCtrl::*pfnHandler;
};

constexpr CRoute kRoutes[] = {
    // compared in this order
    {"/get_LangInfo", &CWebCtrl::get_LangInfo},
    {"/set_LangInfo", &CWebCtrl::set_LangInfo},
    {"/get_BaseInfo", &CWebCtrl::get_BaseInfo},
    {"/set_BaseInfo", &CWebCtrl::set_BaseInfo},
    {"/get_UserSecurity", &CWebCtrl::get_UserSecurity},
    {"/set_UserSecurity", &CWebCtrl::set_UserSecurity},
    {"/cmp_UserSecurity", &CWebCtrl::cmp_UserSecurity},
    {"/get_LockOfPassword", &CWebCtrl::get_LockOfPassword},
    {"/set_LockOfPassword", &CWebCtrl::set_LockOfPassword},
    {"/set_DeviceNo", &CWebCtrl::set_DeviceNo},
    {"/get_MirrorInfo", &CWebCtrl::get_MirrorInfo},
    {"/set_MirrorInfo", &CWebCtrl::set_MirrorInfo},
    {"/get_MainStreamInfo", &CWebCtrl::get_MainStreamInfo},
    {"/set_MainStreamInfo", &CWebCtrl::set_MainStreamInfo},
    {"/get_SubStreamInfo", &CWebCtrl::get_SubStreamInfo},
    {"/set_SubStreamInfo", &CWebCtrl::set_SubStreamInfo},
    {"/get_NetWModeInfo", &CWebCtrl::get_NetWModeInfo},
    {"/set_NetWModeInfo", &CWebCtrl::set_NetWModeInfo},
    {"/get_VCmsInfo", &CWebCtrl::get_VCmsInfo},
    {"/set_VCmsInfo", &CWebCtrl::set_VCmsInfo},
    {"/get_WifiInfo", &CWebCtrl::get_WifiInfo},
    {"/set_WifiInfo", &CWebCtrl::set_WifiInfo},
    {"/get_GNetInfo", &CWebCtrl::get_GNetInfo},
    {"/set_GNetInfo", &CWebCtrl::set_GNetInfo},
    {"/get_GB28181Info", &CWebCtrl::get_GB28181Info},
    {"/set_GB28181Info", &CWebCtrl::set_GB28181Info},
    {"/get_cpu_usage", &CWebCtrl::get_cpu_usage},
    {"/get_VersionInfo", &CWebCtrl::get_VersionInfo},
    {"/get_SystemInfo", &CWebCtrl::get_SystemInfo},
    {"/set_Login", &CWebCtrl::set_Login},
    {"/get_Login", &CWebCtrl::get_Login},
    {"/get_LocalNetInfo", &CWebCtrl::get_LocalNetInfo},
    {"/set_LocalNetInfo", &CWebCtrl::set_LocalNetInfo},
    {"/export_CfgFile", &CWebCtrl::export_CfgFile},
    {"/import_CfgFile", &CWebCtrl::import_CfgFile},
};

}  // namespace

void CWebCtrl::DoHttpRequeset(mg_connection* pConn, http_message* pMsg) {
  printf("--------------------------DoHttpRequeset, start.\n");
  const std::string_view request(pMsg->message.p, pMsg->message.len);
  if (m_sessions.CheckSession(request, static_cast<int32_t>(time(nullptr))) != 0) {
    // Deliberate: a refused request is left without any answer.
    FlushPrinted();
    DebugPrint(4, "\033[31m\033[1mDoHttpRequeset error!\n\033[0m");
    return;
  }
  const std::string_view uri(pMsg->uri.p, pMsg->uri.len);
  for (const CRoute& route : kRoutes) {
    if (uri == route.strUri) {
      (this->*route.pfnHandler)(pConn, pMsg);
      return;
    }
  }
  printf("------------others-------mg_serve_http.\n");
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
