// The query endpoints: each has one request, one importer and one list of JSON fields. Endpoints
// with logic of their own are in Wifi, Login, SystemStatus and Gb28181.
#include <cstring>
#include <ctime>

#include "CBB/Util/LocalTime.h"
#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/JsonReply.h"

namespace {

// Deliberate: most section tags are left open, as the device application expects.
constexpr stQuery<stDisplay> kLangQuery{QUERY("<stDisplay>"), IMPORT(stDisplay), 512};
constexpr stQuery<stBaseInfo> kBaseQuery{QUERY("<stBaseInfo>"), IMPORT(stBaseInfo), 512};
constexpr stQuery<stVideoMirror> kMirrorQuery{QUERY("<stVideoMirror>"), IMPORT(stVideoMirror)};
constexpr stQuery<stMainStream> kMainStreamQuery{QUERY("<stMainStream StartChn=\"0\">"),
                                                 IMPORT(stMainStream)};
constexpr stQuery<stSubStream> kSubStreamQuery{QUERY("<stSubStream>"), IMPORT(stSubStream)};
constexpr stQuery<stNetWorkMode> kNetWModeQuery{QUERY("<stNetWorkMode>"), IMPORT(stNetWorkMode)};
constexpr stQuery<stMobileGNet> kGNetQuery{QUERY("<stMobileGNet>"), IMPORT(stMobileGNet)};
constexpr stQuery<stLocalEth0> kLocalNetQuery{QUERY("<stLocalEth0>"), IMPORT(stLocalEth0)};
constexpr stQuery<stVersion> kVersionQuery{QUERY("<stVersion />"), IMPORT(stVersion)};

int ImportFirstCms(TiXmlElement* pSection, stCMS& rec) {
  CConfig_Task task;
  const int nRet = task.Import_stCMS(pSection, 0);
  if (nRet == 0) rec = task.Record().stCMSInfo[0];
  return nRet;
}
constexpr stQuery<stCMS> kVCmsQuery{QUERY("<stCMS>"), ImportFirstCms};

void EmitLanguage(CJsonReply& reply, const char* pszKey, const stDisplay& rec) {
  reply.Add(pszKey, strcmp(rec.strLanguage, "CN") == 0 ? "CN" : "EN");
}
constexpr stJsonField<stDisplay> kLangJson[] = {{"strLanguage", EmitLanguage}};

// The time zone's piece ends with a blank.
void EmitTimeZone(CJsonReply& reply, const char* pszKey, const stBaseInfo& rec) {
  reply.Piece({", \"", pszKey, "\": \"", std::to_string(rec.ucFD_TimeZone), "\" "});
}
// Deliberate: this shows the service's own clock, not the device's strFD_CurTime; the handler puts
// it into the record.
constexpr stJsonField<stBaseInfo> kBaseJson[] = {
    {"strFD_DeviceNo", Emit<&stBaseInfo::strFD_DeviceNo>},
    {"ucFD_TimeZone", EmitTimeZone},
    {"ucFD_GpsSTFlag", Emit<&stBaseInfo::ucFD_GpsSTFlag>},
    {"strFD_CurTime", Emit<&stBaseInfo::strFD_CurTime>}};

constexpr auto kMirrorItem = &stVideoMirror::stVideoMirrorPara;
constexpr stJsonField<stVideoMirror> kMirrorJson[] = {
    {"strFD_LeftRight", EmitItem<kMirrorItem, &stVideoMirrorItem::ucFD_LeftRight>},
    {"strFD_UpDown", EmitItem<kMirrorItem, &stVideoMirrorItem::ucFD_UpDown>}};

constexpr auto kVideoItem = &stMainStream::stVideoPara;
constexpr stJsonField<stMainStream> kMainStreamJson[] = {
    {"ucFD_FrameRate", EmitItem<kVideoItem, &stVideoItem::ucFD_FrameRate>},
    {"uiFD_BitRate", EmitItem<kVideoItem, &stVideoItem::uiFD_BitRate>}};

constexpr stJsonField<stSubStream> kSubStreamJson[] = {
    {"ucFD_SFrameRate", Emit<&stSubStream::ucFD_FrameRate>},
    {"uiFD_SBitRate", Emit<&stSubStream::uiFD_BitRate>}};

constexpr stJsonField<stNetWorkMode> kNetWModeJson[] = {
    {"ucFD_NetWType", Emit<&stNetWorkMode::ucFD_NetType>}};

void EmitCmsAddress(CJsonReply& reply, const char* pszKey, const stCMS& rec) {
  if (rec.ucFD_AddressType == 0) {
    reply.AddAddress(pszKey, rec.uiFD_IP);
  } else {
    reply.Add(pszKey, rec.strFD_Domain);
  }
}
constexpr stJsonField<stCMS> kVCmsJson[] = {{"ucFD_AddressType", Emit<&stCMS::ucFD_AddressType>},
                                            {"strFD_Address", EmitCmsAddress},
                                            {"usFD_Port", Emit<&stCMS::usFD_Port>}};

constexpr stJsonField<stMobileGNet> kGNetJson[] = {
    {"ucFD_NetType", Emit<&stMobileGNet::ucFD_NetType>},
    {"strFD_Apn", Emit<&stMobileGNet::strFD_Apn>},
    {"strFD_PhoneNo", Emit<&stMobileGNet::strFD_PhoneNo>},
    {"strFD_UserName", Emit<&stMobileGNet::strFD_UserName>},
    {"strFD_UserPasswd", Emit<&stMobileGNet::strFD_UserPasswd>}};

constexpr stJsonField<stLocalEth0> kLocalNetJson[] = {
    {"strFD_LocalIp", EmitAddress<&stLocalEth0::uiFD_LocalIp>},
    {"strFD_NetMask", EmitAddress<&stLocalEth0::uiFD_NetMask>},
    {"strFD_GateWay", EmitAddress<&stLocalEth0::uiFD_GateWay>},
    {"strFD_Mac", Emit<&stLocalEth0::strFD_Mac>}};

// Deliberate: the pages expect no comma here, and the application's version under both keys.
void EmitKernelVersion(CJsonReply& reply, const char* pszKey, const stVersion& rec) {
  reply.Piece({" \"", pszKey, "\": \"", rec.strAppVer, "\""});
}
constexpr stJsonField<stVersion> kVersionJson[] = {
    {"strFD_AppVersion", Emit<&stVersion::strAppVer>}, {"strFD_KnlVersion", EmitKernelVersion}};

// A whole query endpoint: a failed query is still answered, with zero and empty values.
// The traces carry the name of the handler that calls it.
template <class R, size_t N>
void Answer(mg_connection* pConn, CWebCtrl& self, int (CWebCtrl::*pfnQuery)(R& rec),
            const stJsonField<R> (&rows)[N], const char* pszHandler = __builtin_FUNCTION()) {
  TraceFun(pszHandler);
  R rec{};
  const int nRet = (self.*pfnQuery)(rec);
  ReplyFields(pConn, rows, rec, nRet == 0);
  TraceFun(pszHandler);
}

}  // namespace

int CWebCtrl::getLangInfoFromNet(stDisplay& rec) { return Ask(kLangQuery, rec); }

void CWebCtrl::get_LangInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getLangInfoFromNet, kLangJson);
}

int CWebCtrl::getBaseInfoFromNet(stBaseInfo& rec) { return Ask(kBaseQuery, rec); }

void CWebCtrl::get_BaseInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  const tm now = LocalNow();
  stBaseInfo rec{};
  const int nRet = getBaseInfoFromNet(rec);
  strftime(rec.strFD_CurTime, sizeof(rec.strFD_CurTime), "%Y-%m-%d %H:%M:%S", &now);
  ReplyFields(pConn, kBaseJson, rec, nRet == 0);
  TraceFun();
}

int CWebCtrl::getMirrorInfoFromNet(stVideoMirror& rec) { return Ask(kMirrorQuery, rec); }

void CWebCtrl::get_MirrorInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getMirrorInfoFromNet, kMirrorJson);
}

int CWebCtrl::getMainStreamInfoFromNet(stMainStream& rec) { return Ask(kMainStreamQuery, rec); }

void CWebCtrl::get_MainStreamInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getMainStreamInfoFromNet, kMainStreamJson);
}

int CWebCtrl::getSubStreamInfoFromNet(stSubStream& rec) { return Ask(kSubStreamQuery, rec); }

void CWebCtrl::get_SubStreamInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getSubStreamInfoFromNet, kSubStreamJson);
}

int CWebCtrl::getNetWModeInfoFromNet(stNetWorkMode& rec) { return Ask(kNetWModeQuery, rec); }

void CWebCtrl::get_NetWModeInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getNetWModeInfoFromNet, kNetWModeJson);
}

int CWebCtrl::getVCmsInfoFromNet(stCMS& rec) { return Ask(kVCmsQuery, rec); }

void CWebCtrl::get_VCmsInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getVCmsInfoFromNet, kVCmsJson);
}

int CWebCtrl::getGNetInfoFromNet(stMobileGNet& rec) { return Ask(kGNetQuery, rec); }

void CWebCtrl::get_GNetInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getGNetInfoFromNet, kGNetJson);
}

int CWebCtrl::getLocalNetInfoFromNet(stLocalEth0& rec) { return Ask(kLocalNetQuery, rec); }

void CWebCtrl::get_LocalNetInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getLocalNetInfoFromNet, kLocalNetJson);
}

int CWebCtrl::getVersionInfoFromNet(stVersion& rec) { return Ask(kVersionQuery, rec); }

void CWebCtrl::get_VersionInfo(mg_connection* pConn, http_message* /*pMsg*/) {
  Answer(pConn, *this, &CWebCtrl::getVersionInfoFromNet, kVersionJson);
}
