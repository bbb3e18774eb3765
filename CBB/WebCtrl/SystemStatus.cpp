// The live status: one query, one long reply of nested objects.
#include "CBB/Util/NetTool.h"
#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"

namespace {

constexpr stQuery<stSystemInfo> kQuery{QUERY("<stSystemInfo />"), IMPORT(stSystemInfo)};

constexpr uint8_t kWifiClient = 1;

// A value's text: the record's own, or formatted into the scratch buffer.
using Scratch = char[64];
using ValueText = std::string_view (*)(const stSystemInfo& rec, Scratch& szScratch);

// One chunk of the reply: the exact text around one value of the record (null: no value).
struct stStatusPiece {
  const char* pszBefore;
  ValueText pfnValue;
  const char* pszAfter;
};

template <auto M>
std::string_view FieldText(const stSystemInfo& rec, Scratch& szScratch) {
  if constexpr (std::is_array_v<typename MemberOf<M>::Field>) {
    return rec.*M;
  } else {
    const std::string strText = std::to_string(static_cast<int>(rec.*M));
    return {szScratch, strText.copy(szScratch, sizeof(szScratch))};
  }
}

std::string_view WifiMode(const stSystemInfo& rec, Scratch& /*szScratch*/) {
  return rec.WifiMode == kWifiClient ? "Client" : "AP";
}

std::string_view CmsAddress(const stSystemInfo& rec, Scratch& szScratch) {
  MaskSvrAddr(kMask, AddressText(rec.CMS).c_str(), szScratch);
  return szScratch;
}

constexpr stStatusPiece kPieces[] = {
    {"{ ", nullptr, ""},
    {R"("gps":{ "ucFD_GpsExist": ")", FieldText<&stSystemInfo::GpsExist>, R"(")"},
    {R"(, "strFD_GpsPos": ")", FieldText<&stSystemInfo::GpsPos>, R"("},)"},
    {R"("gnet":{ "ucFD_GNetExist": ")", FieldText<&stSystemInfo::GNetExist>, R"(")"},
    {R"(, "strFD_GNetIMEI": ")", FieldText<&stSystemInfo::IMEI>, R"(")"},
    {R"(, "strFD_GNetRevision": ")", FieldText<&stSystemInfo::ATI>, R"(")"},
    {R"(, "ucFD_SimExist": ")", FieldText<&stSystemInfo::SimExist>, R"(")"},
    {R"(, "ucFD_SimIMSI": ")", FieldText<&stSystemInfo::IMSI>, R"(")"},
    {R"(, "ucFD_SimICCID": ")", FieldText<&stSystemInfo::ICCID>, R"(")"},
    {R"(, "uiFD_GNetSignal": ")", FieldText<&stSystemInfo::GNetSignal>, R"(")"},
    {R"(, "ucFD_GNetDail": ")", FieldText<&stSystemInfo::GNetDail>, R"("},)"},
    {R"("wifi":{ "ucFD_WifiExist": ")", FieldText<&stSystemInfo::WifiExist>, R"(")"},
    {R"(, "ucFD_WifiMode": ")", WifiMode, R"(")"},
    {R"(, "uiFD_WifiSignal": ")", FieldText<&stSystemInfo::WifiSignal>, R"(")"},
    {R"(, "ucFD_WifiDail": ")", FieldText<&stSystemInfo::WifiDail>, R"("},)"},
    {R"("cms":{ "ucFD_CmsStatus": ")", FieldText<&stSystemInfo::CmsStatus>, R"(")"},
    {R"(, "ucFD_JTT808Status": ")", FieldText<&stSystemInfo::JTT808Status>, R"(")"},
    {R"(, "ucFD_GB28181Status": ")", FieldText<&stSystemInfo::GB28181Status>, R"("},)"},
    {R"("disk":{)", nullptr, ""},
    {R"("list":[)", nullptr, ""},
    // Deliberate: always two disks, present or not; the third is never listed.
    {R"({"ucFD_DiskExist": ")", FieldText<&stSystemInfo::Disk1Exist>, R"(")"},
    {R"(, "strFD_DiskSize": ")", FieldText<&stSystemInfo::Disk1Size>, R"("},)"},
    {R"({"ucFD_DiskExist": ")", FieldText<&stSystemInfo::Disk2Exist>, R"(")"},
    {R"(, "strFD_DiskSize": ")", FieldText<&stSystemInfo::Disk2Size>, R"("})"},
    {R"(]},)", nullptr, ""},
    {R"("io":{ "strFD_IOStatus": ")", FieldText<&stSystemInfo::IO>, R"("},)"},
    {R"("version":{ "strFD_McuVersion": ")", FieldText<&stSystemInfo::McuVer>, R"(")"},
    {R"(, "strFD_LdrVersion": ")", FieldText<&stSystemInfo::BootVer>, R"(")"},
    {R"(, "strFD_KnlVersion": ")", FieldText<&stSystemInfo::KnlVer>, R"(")"},
    {R"(, "strFD_RfsVersion": ")", FieldText<&stSystemInfo::RfsVer>, R"(")"},
    {R"(, "strFD_AppVersion": ")", FieldText<&stSystemInfo::AppVer>, R"(")"},
    {R"(, "strFD_DbtVersion": ")", FieldText<&stSystemInfo::DBVer>, R"("},)"},
    {R"("acc":{ "ucFD_AccStatus": ")", FieldText<&stSystemInfo::ACC>, R"(")"},
    {R"(},)", nullptr, ""},
    {R"("net":{ "ucFD_NetStatus": ")", FieldText<&stSystemInfo::NetStatus>, R"(")"},
    {R"(, "uiFD_IP": ")", CmsAddress, R"(")"},
    {R"(, "strFD_DeviceNo": ")", FieldText<&stSystemInfo::DeviceNo>, R"("},)"},
};

}  // namespace

int CWebCtrl::getSystemInfoFromNet(stSystemInfo& rec) { return Ask(kQuery, rec); }

void CWebCtrl::get_SystemInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  stSystemInfo rec{};
  const int nRet = getSystemInfoFromNet(rec);
  CJsonReply reply(pConn);
  for (const stStatusPiece& piece : kPieces) {
    Scratch szScratch;
    const auto value =
        piece.pfnValue != nullptr ? piece.pfnValue(rec, szScratch) : std::string_view();
    reply.Piece({piece.pszBefore, value, piece.pszAfter});
  }
  reply.Piece({"\"result\": ", nRet == 0 ? "1" : "0", " }"});
  reply.End();
  TraceFun();
}
