// Export and import of the whole configuration: GBK on the device side, UTF-8 on the browser side.
//
// Several paths leave the browser without any answer; they are part of the interface.
#include <algorithm>
#include <cstring>
#include <memory>

#include "CBB/Util/DebugPrint.h"
#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/Exchange.h"
#include "CBB/WebCtrl/JsonReply.h"
#include "control/XmlText.h"
#include "encoding/unicode_utf-8.h"

namespace {

// Capacity for a configuration text, in bytes and in code points.
constexpr int kCfgSize = 30720;

// What the two steps of a conversion returned: 1 done, 2 output full, 0 unconvertible.
struct stConverted {
  int nToCodePoints;
  int nToText;
};

// Converts the text in place through code points and terminates it after its last byte. The new
// text may be shorter in either direction: unassigned GBK codes become U+0001.
template <auto pfnToCodePoints, auto pfnToText>
stConverted Convert(char* pszText) {
  // Not zeroed: only what was written is read, and a text of kCfgSize - 1 bytes leaves room for a
  // terminator.
  const std::unique_ptr<uint32_t[]> points(new uint32_t[kCfgSize]);
  int nPoints = kCfgSize;
  int nBytes = kCfgSize;
  stConverted converted{};
  converted.nToCodePoints = pfnToCodePoints(pszText, points.get(), &nPoints);
  points[static_cast<size_t>(std::min(nPoints, kCfgSize - 1))] = 0;
  converted.nToText = pfnToText(points.get(), pszText, &nBytes);
  pszText[std::min(nBytes, kCfgSize - 1)] = '\0';
  return converted;
}

// Prints the configuration as one compact DEVICE_SET message; false, with a line printed, when the
// text has no root VariCfgSec. Anything before the root is dropped.
bool PrintSetMessage(const char* pszText, TiXmlPrinter& printer) {
  const char* pszXml = strstr(pszText, "<VariCfgSec");
  if (pszXml == nullptr) {
    puts("CWebCtrl::import_CfgFile, Invalid format.");
    return false;
  }
  TiXmlDocument doc;
  ParseXml(doc, pszXml);
  TiXmlElement* pRoot = doc.FirstChildElement("VariCfgSec");
  if (pRoot == nullptr) {
    puts("CWebCtrl::import_CfgFile, xmlDoc.FirstChildElement failed.");
    return false;
  }
  pRoot->SetAttribute("Action", "DEVICE_SET");
  pRoot->RemoveAttribute("Result");
  printer.SetIndent("");
  printer.SetLineBreak("");
  doc.Accept(&printer);
  return true;
}

}  // namespace

int CWebCtrl::export_CfgFileFromNet(char* pszText) {
  TraceFun();
  // A reply is no longer than kReplyMax: it fits with its terminator.
  static_assert(kReplyMax < kCfgSize);
  pszText[0] = '\0';
  int nLen = kCfgSize;
  int nRet = GetParaInfoByCmd(QUERY(""), pszText, nLen);
  if (nRet == 0) {
    printf("strXmlData*************%d\n", nLen);
    // Only checked, not parsed as a whole: parsing took three quarters of the time.
    nRet = CheckRoot(pszText);
    if (nRet != 0) pszText[0] = '\0';
  }
  TraceFun();
  return nRet == 0 ? 0 : -1;
}

void CWebCtrl::export_CfgFile(mg_connection* pConn, http_message* /*pMsg*/) {
  TraceFun();
  const std::unique_ptr<char[]> text(new char[kCfgSize]);
  const int nResult = export_CfgFileFromNet(text.get()) == 0 ? 1 : 0;
  const auto converted = Convert<enc_GBK_to_unicode_str, enc_unicode_to_utf8_str>(text.get());
  if (converted.nToCodePoints != 1 || converted.nToText != 1) {
    // Deliberate: no reply of any kind.
    printf("GBK to utf8 failed!ret2 = %d, ret3 = %d\n", converted.nToCodePoints, converted.nToText);
    TraceFun();
    return;
  }
  // Deliberate: the XML goes into the reply unescaped; the pages expect it so.
  CJsonReply reply(pConn);
  reply.Add("strFD_CfgPara", text.get());
  reply.Result(nResult == 1);
  DebugPrint(1, "\033[32m\033[1m----------------bResult = %d\n\033[0m", nResult);
  TraceFun();
}

int CWebCtrl::import_CfgFileFromNet(const char* pszXml) {
  TraceFun();
  CSetExchange exchange(*this);
  const int nRet = exchange.SendText(pszXml, static_cast<int>(strlen(pszXml)), kImportTimeoutSec);
  if (!exchange.IsAccepted()) TraceFun();
  return nRet;
}

void CWebCtrl::import_CfgFile(mg_connection* pConn, http_message* pMsg) {
  TraceFun();
  char szText[kCfgSize] = {};
  mg_get_http_var(&pMsg->body, "strFD_CfgPara", szText, sizeof(szText));
  const auto converted = Convert<enc_utf8_to_unicode_str, enc_unicode_to_GBK_str>(szText);
  if (converted.nToCodePoints == 0 || converted.nToText == 0) {
    puts("utf8 to GBK failed!");
    TraceFun();
    return;
  }
  TiXmlPrinter printer;
  if (PrintSetMessage(szText, printer)) {
    ReplyResult(pConn, import_CfgFileFromNet(printer.CStr()) == 0);
  }
  TraceFun();
}
