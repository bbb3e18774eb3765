// The live status: one query, one long reply of nested objects.
#include <arpa/inet.h>

#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"
#include "CBB/WebCtrl/Trace.h"

namespace {

constexpr CQuery<stSystemInfo> kQuery{
    QUERY("<stSystemInfo />"), kMaxQueryReply,
    ImportRecord<&CConfig_Task::Import_stSystemInfo, &stConfig::stSystemInfoInfo>};

constexpr uint8_t kWifiClient = 1;

// A value's text: the record's own, or made in the scratch buffer.
using Scratch = char[64];
using ValueText = std::string_view (*)(const stSystemInfo& rec, Scratch& szScratch);

// One chunk of the reply: its exact text around one value of the record (null: no value).
struct CStatusPiece {
  const char* pszBefore;
  ValueText pfnValue;
  const char* pszAfter;
};

template <auto M>
std::string_view Value(const stSystemInfo& rec, Scratch& szScratch) {
  if constexpr (std::is_array_v<typename MemberOf<M>::Field>) {
    return rec.*M;
  } else {
    const CDecimal decimal(static_cast<int>(rec.*M));
    return {szScratch, std::string_view(decimal).copy(szScratch, sizeof(szScratch))};
  }
}

std::string_view WifiMode(const stSystemInfo& rec, Scratch& /*szScratch*/) {
  return rec.WifiMode == kWifiClient ? "Client" : "AP";
}

std::string_view CmsAddress(const stSystemInfo& rec, Scratch& szScratch) {
  MaskSvrAddr(kMask, inet_ntoa(in_addr{rec.CMS}), szScratch);
  return szScratch;
}

constexpr CStatusPiece kPieces[] = {
    {"{ ", nullptr, ""},
    {R"("gps":{ "ucFD_GpsExist": ")", Value<&stSystemInfo::GpsExist>, R"(")"},
    {R"(, "strFD_GpsPos": ")", Value<&stSystemInfo::GpsPos>, R"("},)"},
    {R"("gnet":{ "ucFD_GNetExist": ")", Value<&stSystemInfo::GNetExist>, R"(")"},
    {R"(, "strFD_GNetIMEI": ")", Value<&stSystemInfo::IMEI>, R"(")"},
    {R"(, "strFD_GNetRevision": ")", Value<&stSystemInfo::ATI>, R"(")"},
    {R"(, "ucFD_SimExist": ")", Value<&stSystemInfo::SimExist>, R"(")"},
    {R"(, "ucFD_SimIMSI": ")", Value<&stSystemInfo::IMSI>, R"(")"},
    {R"(, "ucFD_SimICCID": ")", Value<&stSystemInfo::ICCID>, R"(")"},
    {R"(, "uiFD_GNetSignal": ")", Value<&stSystemInfo::GNetSignal>, R"(")"},
    {R"(, "ucFD_GNetDail": ")", Value<&stSystemInfo::GNetDail>, R"("},)"},
    {R"("wifi":{ "ucFD_WifiExist": ")", Value<&stSystemInfo::WifiExist>, R"(")"},
    {R"(, "ucFD_WifiMode": ")", WifiMode, R"(")"},
    {R"(, "uiFD_WifiSignal": ")", Value<&stSystemInfo::WifiSignal>, R"(")"},
    {R"(, "ucFD_WifiDail": ")", Value<&stSystemInfo::WifiDail>, R"("},)"},
    {R"("cms":{ "ucFD_CmsStatus": ")", Value<&stSystemInfo::CmsStatus>, R"(")"},
    {R"(, "ucFD_JTT808Status": ")", Value<&stSystemInfo::JTT808Status>, R"(")"},
    {R"(, "ucFD_GB28181Status": ")", Value<&stSystemInfo::GB28181Status>, R"("},)"},
    {R"("disk":{)", nullptr, ""},
    {R"("list":[)", nullptr, ""},
    // Deliberate: always two disks, there or not; the third is never listed.
    {R"({"ucFD_DiskExist": ")", Value<&stSystemInfo::Disk1Exist>, R"(")"},
    {R"(, "strFD_DiskSize": ")", Value<&stSystemInfo::Disk1Size>, R"("},)"},
    {R"({"ucFD_DiskExist": ")", Value<&stSystemInfo::Disk2Exist>, R"(")"},
    {R"(, "strFD_DiskSize": ")", Value<&stSystemInfo::Disk2Size>, R"("})"},
    {R"(]},)", nullptr, ""},
    {R"("io":{ "strFD_IOStatus": ")", Value<&stSystemInfo::IO>, R"("},)"},
    {R"("version":{ "strFD_McuVersion": ")", Value<&stSystemInfo::McuVer>, R"(")"},
    {R"(, "strFD_LdrVersion": ")", Value<&stSystemInfo::BootVer>, R"(")"},
    {R"(, "strFD_KnlVersion": ")", Value<&stSystemInfo::KnlVer>, R"(")"},
    {R"(, "strFD_RfsVersion": ")", Value<&stSystemInfo::RfsVer>, R"(")"},
    {R"(, "strFD_AppVersion": ")", Value<&stSystemInfo::AppVer>, R"(")"},
    {R"(, "strFD_DbtVersion": ")", Value<&stSystemInfo::DBVer>, R"("},)"},
    {R"("acc":{ "ucFD_AccStatus": ")", Value<&stSystemInfo::ACC>, R"(")"},
    {R"(},)", nullptr, ""},
    {R"("net":{ "ucFD_NetStatus": ")", Value<&stSystemInfo::NetStatus>, R"(")"},
    {R"(, "uiFD_IP": ")", CmsAddress, R"(")"},
    {R"(, "strFD_DeviceNo": ")", Value<&stSystemInfo::DeviceNo>, R"("},)"},
};

}  // namespace

int CWebCtrl::getSystemInfoFromNet(stSystemInfo& rec) {
  const CFunTrace trace;
  return Query(kQuery, rec);
}

void CWebCtrl::get_SystemInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  const CFunTrace trace;
  stSystemInfo rec{};
  const int nRet = getSystemInfoFromNet(rec);
  CJsonReply reply(pConn);
  for (const CStatusPiece& piece : kPieces) {
    Scratch szScratch;
    const auto value = piece.pfnValue ? piece.pfnValue(rec, szScratch) : std::string_view();
    reply.Piece({piece.pszBefore, value, piece.pszAfter});
  }
  reply.Piece({"\"result\": ", nRet == 0 ? "1" : "0", " }"});
  reply.End();
}
