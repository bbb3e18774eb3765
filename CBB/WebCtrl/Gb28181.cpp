// The GB28181 platform's endpoints.
#include "CBB/WebCtrl/Gb28181.h"

#include <unistd.h>

#include <cstring>

#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/FormReader.h"
#include "CBB/WebCtrl/JsonReply.h"

namespace {

constexpr int kSubDevices = 8;
constexpr size_t kIdSize = 32;
constexpr size_t kFormSize = 512;
constexpr uint8_t kEnabled = 0x01;
constexpr uint8_t kStreamType = 0x80;
constexpr useconds_t kPauseUs = 500;

constexpr stQuery<stGB28181> kQuery{QUERY("<stGB28181>"), IMPORT(stGB28181)};

int StoreServerIp(stGB28181& stGB28181Info, const char* pszText) {
  Store<&stGB28181::strFD_ServerIp>(stGB28181Info, pszText);
  printf("stGB28181Info.strFD_ServerIp===========%s\n", stGB28181Info.strFD_ServerIp);
  return 0;
}

constexpr stFormField<stGB28181> kForm[] = {
    {"strFD_Manufacturer", Presence::kNonEmpty, Store<&stGB28181::strFD_Manufacturer>},
    {"strFD_ModelName", Presence::kNonEmpty, Store<&stGB28181::strFD_ModelName>},
    {"strFD_ServerIp", Presence::kNonEmpty, StoreServerIp},
    {"usFD_ServerPort", Presence::kNonEmpty, Store<&stGB28181::usFD_ServerPort>},
    {"strFD_ServerID", Presence::kNonEmpty, Store<&stGB28181::strFD_ServerID>},
    {"strFD_DeviceId", Presence::kNonEmpty, Store<&stGB28181::strFD_DeviceId>},
    {"usFD_DevicePort", Presence::kNonEmpty, Store<&stGB28181::usFD_DevicePort>},
    {"strFD_DeviceUser", Presence::kNonEmpty, Store<&stGB28181::strFD_DeviceUser>},
    {"strFD_DevicePass", Presence::kNonEmpty, Store<&stGB28181::strFD_DevicePass>}};

bool IsOdd(CFormReader<kFormSize>& form, const char* pszName) {
  const char* pszText = form.Get(pszName, Presence::kNonEmpty);
  return pszText != nullptr && (TextToInt(pszText) & 1) != 0;
}

uint8_t ReadFlags(CFormReader<kFormSize>& form) {
  if (!IsOdd(form, "ucFD_GB28181Enable")) return 0;
  return IsOdd(form, "ucFD_StreamType") ? kEnabled | kStreamType : kEnabled;
}

// At most 31 characters; the bytes after them are cleared, because the place may already hold
// another identifier.
void StoreId(char* pszDst, const std::string& strId) {
  memset(pszDst, 0, kIdSize);
  memcpy(pszDst, strId.data(), std::min(strId.size(), kIdSize - 1));
}

// An identifier that fills its 32 bytes has no terminator.
std::string_view IdText(const char* pszId) { return {pszId, strnlen(pszId, kIdSize)}; }

bool IsSubDevice(int64_t nIndex) { return nIndex >= 0 && nIndex < kSubDevices; }

}  // namespace

void SplitIdList(std::string strList, uint32_t uiChannels, const char* pszListTrace,
                 const char* pszItemTrace,
                 const std::function<void(int64_t nIndex, const std::string& strId)>& pfnItem) {
  constexpr size_t kNothing = 2;
  if (!strList.empty()) strList.pop_back();
  if (strList.size() <= kNothing) return;
  printf("%s = %s\n", pszListTrace, strList.c_str());
  int64_t nIndex = static_cast<int64_t>(uiChannels) - 1;
  for (size_t nStar = strList.rfind('*'); nStar != std::string::npos; nStar = strList.rfind('*')) {
    const std::string strId = strList.substr(nStar + 1);
    printf("%s = %s\n", pszItemTrace, strId.c_str());
    pfnItem(nIndex--, strId);
    strList.resize(nStar);
  }
}

int CWebCtrl::getGB28181InfoFromNet(stGB28181& rec) { return Ask(kQuery, rec); }

void CWebCtrl::get_GB28181Info(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stVersion version{};
  getVersionInfoFromNet(version);
  usleep(kPauseUs);
  stGB28181 rec{};
  const int nRet = getGB28181InfoFromNet(rec);
  CJsonReply reply(pConn, kJsonHeader);
  reply.Add("ucFD_GB28181Enable", rec.ucFD_Enable != 0 ? 1 : 0);
  reply.Add("strFD_Manufacturer", rec.strFD_Manufacturer);
  reply.Add("strFD_ModelName", rec.strFD_ModelName);
  reply.Add("strFD_ServerIp", rec.strFD_ServerIp);
  reply.Add("usFD_ServerPort", rec.usFD_ServerPort);
  reply.Add("strFD_ServerID", rec.strFD_ServerID);
  reply.Add("strFD_DeviceId", rec.strFD_DeviceId);
  reply.Add("usFD_DevicePort", rec.usFD_DevicePort);
  reply.Add("strFD_DeviceUser", rec.strFD_DeviceUser);
  reply.Add("strFD_DevicePass", rec.strFD_DevicePass);
  reply.Piece({", \"strFD_LensId\": \"*", IdText(rec.LensId(0)), "*\""});
  reply.Add("iVideoChnCount", static_cast<int>(version.VideoCnt));
  reply.Add("ucFD_StreamType", rec.ucFD_Enable >> 7);
  reply.Piece({", \"strFD_AlarmInId\": \"*", IdText(rec.AlarmInId(0)), "*\""});
  reply.Result(nRet == 0);
  TraceFun();
}

int CWebCtrl::setGB28181InfoToNet(const stGB28181& rec) {
  TraceFun();
  std::string strSubDevices;
  for (int k = 0; k < kSubDevices; ++k) {
    char szItem[160];
    // Deliberate: the alarm-input ID's place holds lens ID k + 2.
    snprintf(szItem, sizeof(szItem),
             "<SUBDEVID_%d strFD_LensId=\"%.32s\" strFD_AlarmInId=\"%.32s\"/>", k, rec.LensId(k),
             rec.LensId(k + 2));
    strSubDevices += szItem;
  }
  CSetExchange exchange(*this);
  const int nRet = exchange.Send(
      SET("<stGB28181 ucFD_Enable=\"%d\" strFD_Manufacturer=\"%s\" strFD_ModelName=\"%s\""
          " strFD_ServerIp=\"%s\" usFD_ServerPort=\"%d\" strFD_ServerID=\"%s\""
          " strFD_DeviceId=\"%s\" usFD_DevicePort=\"%d\" strFD_DeviceUser=\"%s\""
          " strFD_DevicePass=\"%s\"><stGB28181SubID>%s</stGB28181SubID></stGB28181>"),
      rec.ucFD_Enable, rec.strFD_Manufacturer, rec.strFD_ModelName, rec.strFD_ServerIp,
      rec.usFD_ServerPort, rec.strFD_ServerID, rec.strFD_DeviceId, rec.usFD_DevicePort,
      rec.strFD_DeviceUser, rec.strFD_DevicePass, strSubDevices.c_str());
  TraceFun();
  return nRet;
}

void CWebCtrl::set_GB28181Info(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  CFormReader<kFormSize> form(*pMsg);
  stGB28181 rec{};
  rec.ucFD_Enable = ReadFlags(form);
  ReadForm<kFormSize>(*pMsg, kForm, rec);

  stVersion version{};
  getVersionInfoFromNet(version);
  SplitIdList(form.Get("strFD_LensId", Presence::kAlways), version.VideoCnt, "strParaValue",
              "strIndex", [&rec](int64_t nIndex, const std::string& strId) {
                if (IsSubDevice(nIndex)) StoreId(rec.LensId(static_cast<int>(nIndex)), strId);
              });
  SplitIdList(form.Get("strFD_AlarmInId", Presence::kAlways), version.VideoCnt, "strParaValue_1",
              "strIndex_1", [&rec](int64_t nIndex, const std::string& strId) {
                if (IsSubDevice(nIndex)) StoreId(rec.AlarmInId(static_cast<int>(nIndex)), strId);
              });
  ReplyResult(pConn, setGB28181InfoToNet(rec) == 0);
  TraceFun();
}
