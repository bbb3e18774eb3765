// The Wi-Fi endpoints: one record for the station settings and the working mode, another for the
// access-point settings.
#include <cstring>

#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/FormReader.h"
#include "CBB/WebCtrl/JsonReply.h"

namespace {

constexpr uint8_t kAccessPoint = 2;  // ucFD_WorkMode

constexpr stQuery<stWifi> kStationQuery{QUERY("<stWifi>"), IMPORT(stWifi)};

int ImportAccessPoint(TiXmlElement* pSection, stWifiAp& rec) {
  const int nRet = IMPORT(stWifiAp)(pSection, rec);
  printf("-------------------AP ssid:%s.\n", rec.strFD_SSID);
  return nRet;
}
constexpr stQuery<stWifiAp> kAccessPointQuery{QUERY("<stWifiAp>"), ImportAccessPoint,
                                              kMaxQueryReply, "-------------------ap xml:"};

constexpr stJsonField<stWifi> kJson[] = {
    {"ucFD_WorkMode", Emit<&stWifi::ucFD_WorkMode>},
    {"strFD_SSID", Emit<&stWifi::strFD_SSID>},
    {"strFD_Passwd", Emit<&stWifi::strFD_Passwd>},
    {"ucFD_AuthMode", Emit<&stWifi::ucFD_AuthMode>},
    {"ucFD_CryptType", Emit<&stWifi::ucFD_CryptType>},
    {"ucFD_DhcpEnableFlag", Emit<&stWifi::ucFD_DhcpEnableFlag>}};

constexpr stFormField<stWifi> kForm[] = {
    {"ucFD_WorkMode", Presence::kNonEmpty, Store<&stWifi::ucFD_WorkMode>},
    {"strFD_SSID", Presence::kNonEmpty, Store<&stWifi::strFD_SSID>},
    {"strFD_Passwd", Presence::kNonEmpty, Store<&stWifi::strFD_Passwd>},
    {"ucFD_AuthMode", Presence::kNonEmpty, Store<&stWifi::ucFD_AuthMode>},
    {"ucFD_CryptType", Presence::kNonEmpty, Store<&stWifi::ucFD_CryptType>},
    {"ucFD_DhcpEnableFlag", Presence::kNonEmpty, Store<&stWifi::ucFD_DhcpEnableFlag>}};

// The access point's values replace the station's.
void ShowAccessPoint(const stWifiAp& ap, stWifi& rec) {
  memcpy(rec.strFD_SSID, ap.strFD_SSID, sizeof(rec.strFD_SSID));
  memcpy(rec.strFD_Passwd, ap.strFD_Passwd, sizeof(rec.strFD_Passwd));
  rec.ucFD_AuthMode = ap.ucFD_AuthMode;
  rec.ucFD_CryptType = ap.ucFD_CryptType;
  rec.ucFD_DhcpEnableFlag = ap.ucFD_DhcpEnableFlag;
}

}  // namespace

int CWebCtrl::getWifiInfoFromNet(stWifi& rec) {
  TraceFun();
  int nRet = Query(kStationQuery, rec);
  if (nRet == 0 && rec.ucFD_WorkMode == kAccessPoint) {
    stWifiAp ap{};
    nRet = Query(kAccessPointQuery, ap);
    if (nRet == 0) ShowAccessPoint(ap, rec);
  }
  TraceFun();
  return nRet;
}

void CWebCtrl::get_WifiInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stWifi rec{};
  const int nRet = getWifiInfoFromNet(rec);
  ReplyFields(pConn, kJson, rec, nRet == 0);
  TraceFun();
}

int CWebCtrl::setWifiInfoToNet(stWifi rec) {
  CSetExchange exchange(*this);
  if (rec.ucFD_WorkMode != kAccessPoint) {
    return exchange.Send(SET("<stWifi ucFD_WorkMode=\"%d\" strFD_SSID=\"%s\" strFD_Passwd=\"%s\""
                             " ucFD_AuthMode=\"%d\" ucFD_CryptType=\"%d\"/>"),
                         rec.ucFD_WorkMode, rec.strFD_SSID, rec.strFD_Passwd, rec.ucFD_AuthMode,
                         rec.ucFD_CryptType);
  }
  const int nRet = exchange.Send(SET("<stWifi ucFD_WorkMode=\"%d\"/>"), rec.ucFD_WorkMode);
  // Deliberate: the access point's values are sent only to a device that did not accept the mode.
  if (exchange.IsAccepted()) return nRet;
  return exchange.Send(SET("<stWifiAp strFD_SSID=\"%s\" strFD_Passwd=\"%s\" ucFD_AuthMode=\"%d\""
                           " ucFD_CryptType=\"%d\" ucFD_DhcpEnableFlag=\"%d\"/>"),
                       rec.strFD_SSID, rec.strFD_Passwd, rec.ucFD_AuthMode, rec.ucFD_CryptType,
                       rec.ucFD_DhcpEnableFlag);
}

void CWebCtrl::set_WifiInfo(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  stWifi rec{};
  ReadForm(*pMsg, kForm, rec);
  ReplyResult(pConn, setWifiInfoToNet(rec) == 0);
  TraceFun();
}
