// The set endpoints: each has one list of form fields and one message. Wi-Fi, passwords, GB28181
// and the whole configuration have files of their own.
#include <arpa/inet.h>

#include <cstring>

#include "CBB/Util/NetTool.h"
#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/FormReader.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"

namespace {

// A switch: 1 when the number is above 0, otherwise 0. In "1-0" the first number counts.
template <auto M>
int StoreSwitch(typename MemberOf<M>::Record& rec, const char* pszText) {
  rec.*M = TextToInt(pszText) > 0 ? 1 : 0;
  return 0;
}

// A placeholder becomes its platform's address; text that is not an address becomes all ones.
template <auto M>
int StoreShownAddress(typename MemberOf<M>::Record& rec, const char* pszText) {
  char szReal[64] = {};
  MaskSvrAddr(kUnmask, pszText, szReal);
  rec.*M = inet_addr(szReal);
  return 0;
}

// A field of the first item in the record's item array A, filled by that field's store.
template <auto A, auto pfnStore>
int StoreItem(typename MemberOf<A>::Record& rec, const char* pszText) {
  return pfnStore((rec.*A)[0], pszText);
}

constexpr stFormField<stBaseInfo> kDeviceNoForm[] = {
    {"strFD_DeviceNo", Presence::kAlways, Store<&stBaseInfo::strFD_DeviceNo>}};

constexpr stFormField<stBaseInfo> kBaseForm[] = {
    {"strFD_DeviceNo", Presence::kAlways, Store<&stBaseInfo::strFD_DeviceNo>},
    {"ucFD_TimeZone", Presence::kLengthAbove0, Store<&stBaseInfo::ucFD_TimeZone>},
    {"ucFD_GpsSTFlag", Presence::kLengthAbove0, StoreSwitch<&stBaseInfo::ucFD_GpsSTFlag>}};

constexpr auto kMirrorItem = &stVideoMirror::stVideoMirrorPara;
constexpr stFormField<stVideoMirror> kMirrorForm[] = {
    {"strFD_UpDown", Presence::kNonEmpty,
     StoreItem<kMirrorItem, StoreSwitch<&stVideoMirrorItem::ucFD_UpDown>>},
    {"strFD_LeftRight", Presence::kNonEmpty,
     StoreItem<kMirrorItem, StoreSwitch<&stVideoMirrorItem::ucFD_LeftRight>>}};

constexpr auto kVideoItem = &stMainStream::stVideoPara;
constexpr stFormField<stMainStream> kMainStreamForm[] = {
    {"ucFD_FrameRate", Presence::kLengthAbove0,
     StoreItem<kVideoItem, Store<&stVideoItem::ucFD_FrameRate>>},
    {"uiFD_BitRate", Presence::kLengthAbove0,
     StoreItem<kVideoItem, Store<&stVideoItem::uiFD_BitRate>>}};

constexpr stFormField<stSubStream> kSubStreamForm[] = {
    {"ucFD_SFrameRate", Presence::kLengthAbove0, Store<&stSubStream::ucFD_FrameRate>},
    {"uiFD_SBitRate", Presence::kLengthAbove0, Store<&stSubStream::uiFD_BitRate>}};

constexpr stFormField<stNetWorkMode> kNetWModeForm[] = {
    {"ucFD_NetWType", Presence::kNonEmpty, Store<&stNetWorkMode::ucFD_NetType>}};

constexpr stFormField<stCMS> kVCmsForm[] = {
    {"ucFD_AddressType", Presence::kNonEmpty, Store<&stCMS::ucFD_AddressType>},
    {"usFD_Port", Presence::kNonEmpty, Store<&stCMS::usFD_Port>}};

constexpr stFormField<stMobileGNet> kGNetForm[] = {
    {"ucFD_NetType", Presence::kNonEmpty, Store<&stMobileGNet::ucFD_NetType>},
    {"strFD_Apn", Presence::kNonEmpty, Store<&stMobileGNet::strFD_Apn>},
    {"strFD_PhoneNo", Presence::kNonEmpty, Store<&stMobileGNet::strFD_PhoneNo>},
    {"strFD_UserName", Presence::kNonEmpty, Store<&stMobileGNet::strFD_UserName>},
    {"strFD_UserPasswd", Presence::kNonEmpty, Store<&stMobileGNet::strFD_UserPasswd>}};

constexpr stFormField<stLocalEth0> kLocalNetForm[] = {
    {"strFD_LocalIp", Presence::kAlways, StoreShownAddress<&stLocalEth0::uiFD_LocalIp>},
    {"strFD_NetMask", Presence::kAlways, StoreShownAddress<&stLocalEth0::uiFD_NetMask>},
    {"strFD_GateWay", Presence::kAlways, StoreShownAddress<&stLocalEth0::uiFD_GateWay>},
    {"strFD_Mac", Presence::kAlways, Store<&stLocalEth0::strFD_Mac>}};

// A whole set endpoint: variables missing from the form are sent as empty text or 0.
template <class R, size_t N>
void Answer(mg_connection* pConn, const http_message& msg, const stFormField<R> (&rows)[N],
            CWebCtrl& self, int (CWebCtrl::*pfnSet)(R rec),
            const char* pszHandler = __builtin_FUNCTION()) {
  TraceFun(pszHandler);
  R rec{};
  ReadForm(msg, rows, rec);
  ReplyResult(pConn, (self.*pfnSet)(rec) == 0);
  TraceFun(pszHandler);
}

}  // namespace

int CWebCtrl::setLangInfoToNet(const char* pszLanguage) {
  CSetExchange exchange(*this);
  return exchange.Send(SET("<stDisplay strLanguage=\"%s\" />"), pszLanguage);
}

void CWebCtrl::set_LangInfo(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  CFormReader<> form(*pMsg);
  int nRet = 0;  // Deliberate: a missing language counts as success.
  if (const char* pszText = form.Get("strLanguage", Presence::kLengthAbove0)) {
    printf("CWebCtrl::set_LangInfo, lang:%s.\n", pszText);
    nRet = setLangInfoToNet(strcmp(pszText, "CN") == 0 ? "CN" : "US");
  }
  ReplyResult(pConn, nRet == 0);
  TraceFun();
}

int CWebCtrl::setBaseInfoToNet(stBaseInfo rec, const char* pszCurTime) {
  TraceFun();
  CSetExchange exchange(*this);
  const int nRet = exchange.Send(
      SET("<stBaseInfo strFD_DeviceNo=\"%s\" ucFD_TimeZone=\"%d\" ucFD_GpsSTFlag=\"%d\""
          " strFD_CurTime=\"%s\" />"),
      rec.strFD_DeviceNo, rec.ucFD_TimeZone, rec.ucFD_GpsSTFlag, pszCurTime);
  if (!exchange.IsAccepted()) TraceFun();
  return nRet;
}

void CWebCtrl::set_BaseInfo(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  stBaseInfo rec{};
  ReadForm(*pMsg, kBaseForm, rec);
  CFormReader<> form(*pMsg);
  const char* pszCurTime = form.Get("strFD_CurTime", Presence::kAlways);
  ReplyResult(pConn, setBaseInfoToNet(rec, pszCurTime) == 0);
  TraceFun();
}

int CWebCtrl::setDeviceNoToNet(stBaseInfo rec) {
  TraceFun();
  CSetExchange exchange(*this);
  const int nRet = exchange.Send(SET("<stBaseInfo strFD_DeviceNo=\"%s\"/>"), rec.strFD_DeviceNo);
  if (!exchange.IsAccepted()) TraceFun();
  return nRet;
}

void CWebCtrl::set_DeviceNo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kDeviceNoForm, *this, &CWebCtrl::setDeviceNoToNet);
}

int CWebCtrl::setMirrorInfoToNet(stVideoMirror rec) {
  CSetExchange exchange(*this);
  const stVideoMirrorItem& item = rec.stVideoMirrorPara[0];
  return exchange.Send(
      SET("<stVideoMirror><stVideoMirrorPara><VChn_0 ucFD_LeftRight=\"%d\" ucFD_UpDown=\"%d\"/>"
          "</stVideoMirrorPara></stVideoMirror>"),
      item.ucFD_LeftRight, item.ucFD_UpDown);
}

void CWebCtrl::set_MirrorInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kMirrorForm, *this, &CWebCtrl::setMirrorInfoToNet);
}

int CWebCtrl::setMainStreamInfoToNet(stMainStream rec) {
  CSetExchange exchange(*this);
  constexpr int kChannel = 0;
  const stVideoItem& item = rec.stVideoPara[0];
  return exchange.Send(
      SET("<stMainStream StartChn=\"%d\"><stVideoPara><VChn_%d ucFD_FrameRate=\"%d\""
          " uiFD_BitRate=\"%d\" /></stVideoPara></stMainStream>"),
      kChannel, kChannel, item.ucFD_FrameRate, static_cast<int>(item.uiFD_BitRate));
}

void CWebCtrl::set_MainStreamInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kMainStreamForm, *this, &CWebCtrl::setMainStreamInfoToNet);
}

int CWebCtrl::setSubStreamInfoToNet(stSubStream rec) {
  CSetExchange exchange(*this);
  constexpr int kEncodeMode = 3;
  return exchange.Send(
      SET("<stSubStream ucFD_EncodeMode=\"%d\" ucFD_FrameRate=\"%d\" uiFD_BitRate=\"%d\" />"),
      kEncodeMode, rec.ucFD_FrameRate, static_cast<int>(rec.uiFD_BitRate));
}

void CWebCtrl::set_SubStreamInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kSubStreamForm, *this, &CWebCtrl::setSubStreamInfoToNet);
}

int CWebCtrl::setNetWModeInfoToNet(stNetWorkMode rec) {
  CSetExchange exchange(*this);
  return exchange.Send(SET("<stNetWorkMode ucFD_NetType=\"%d\"/>"), rec.ucFD_NetType);
}

void CWebCtrl::set_NetWModeInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kNetWModeForm, *this, &CWebCtrl::setNetWModeInfoToNet);
}

int CWebCtrl::setVCmsInfoToNet(stCMS rec) {
  CSetExchange exchange(*this);
  if (rec.ucFD_AddressType != 0) {
    return exchange.Send(
        SET("<stCMS ucFD_AddressType=\"%d\" strFD_Domain=\"%s\" usFD_Port=\"%d\"/>"),
        rec.ucFD_AddressType, rec.strFD_Domain, rec.usFD_Port);
  }
  return exchange.Send(SET("<stCMS ucFD_AddressType=\"%d\" uiFD_IP=\"%s\" usFD_Port=\"%d\"/>"),
                       rec.ucFD_AddressType, AddressText(rec.uiFD_IP).c_str(), rec.usFD_Port);
}

void CWebCtrl::set_VCmsInfo(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  stCMS rec{};
  ReadForm(*pMsg, kVCmsForm, rec);
  CFormReader<> form(*pMsg);
  const char* pszAddress = form.Get("strFD_Address", Presence::kAlways);
  if (rec.ucFD_AddressType != 0) {
    Store<&stCMS::strFD_Domain>(rec, pszAddress);
  } else {
    StoreShownAddress<&stCMS::uiFD_IP>(rec, pszAddress);
  }
  ReplyResult(pConn, setVCmsInfoToNet(rec) == 0);
  TraceFun();
}

int CWebCtrl::setGNetInfoToNet(stMobileGNet rec) {
  CSetExchange exchange(*this);
  return exchange.Send(SET("<stMobileGNet ucFD_NetType=\"%d\" strFD_Apn=\"%s\" strFD_PhoneNo=\"%s\""
                           " strFD_UserName=\"%s\" strFD_UserPasswd=\"%s\"/>"),
                       rec.ucFD_NetType, rec.strFD_Apn, rec.strFD_PhoneNo, rec.strFD_UserName,
                       rec.strFD_UserPasswd);
}

void CWebCtrl::set_GNetInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kGNetForm, *this, &CWebCtrl::setGNetInfoToNet);
}

int CWebCtrl::setLocalNetInfoToNet(stLocalEth0 rec) {
  CSetExchange exchange(*this);
  return exchange.Send(
      SET("<stLocalEth0 uiFD_LocalIp=\"%s\" uiFD_NetMask=\"%s\" uiFD_GateWay=\"%s\""
          " strFD_Mac=\"%s\"/>"),
      AddressText(rec.uiFD_LocalIp).c_str(), AddressText(rec.uiFD_NetMask).c_str(),
      AddressText(rec.uiFD_GateWay).c_str(), rec.strFD_Mac);
}

void CWebCtrl::set_LocalNetInfo(mg_connection* pConn, http_message* pMsg) {
  Answer(pConn, *pMsg, kLocalNetForm, *this, &CWebCtrl::setLocalNetInfoToNet);
}
