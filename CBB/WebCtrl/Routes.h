// The endpoints: every URI that is not a file, with its handler. This is the only list of them;
// tests and fuzz targets use it, too.
#pragma once

#include <string_view>

#include "CBB/WebCtrl/WebCtrl.h"

struct stRoute {
  std::string_view strUri;
  CWebCtrl::Handler CWebCtrl::*pfnHandler;

  // The handler's name is the URI without its slash.
  constexpr std::string_view Name() const { return strUri.substr(1); }
};

// A request's URI is compared with the rows in this order.
inline constexpr stRoute kRoutes[] = {
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
