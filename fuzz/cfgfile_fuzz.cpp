// The whole configuration in both directions through the real handlers: a posted text that becomes
// a datagram, and the same text as the device's export. The input is the text, 0x1E, and the
// device's reply to the set. For every text, the datagram is one VariCfgSec message that sets
// something, has no Result and can be parsed again; an export reaches the browser as valid UTF-8 or
// not at all.
#include <cstring>
#include <string>

#include "CBB/WebCtrl/WebCtrl.h"
#include "control/VariCfgSec.h"
#include "control/XmlText.h"
#include "fuzz/Input.h"
#include "fuzz/ReplyCheck.h"
#include "fuzz/ScriptedDevice.h"
#include "fuzz/Utf8Model.h"

namespace {

constexpr char kReplyMark = '\x1E';

std::string Encoded(std::string_view text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string strEncoded = "strFD_CfgPara=";
  for (const char c : text) {
    const auto uc = static_cast<unsigned char>(c);
    strEncoded += '%';
    strEncoded += kDigits[uc >> 4];
    strEncoded += kDigits[uc & 15];
  }
  return strEncoded;
}

void CheckSetMessage(std::string_view message) {
  Require(message.find('\0') == std::string_view::npos);
  TiXmlDocument doc;
  Require(ParseXml(doc, std::string(message).c_str()) == 0);
  TiXmlElement* const pRoot = doc.FirstChildElement("VariCfgSec");
  Require(pRoot != nullptr);
  const char* const pszAction = pRoot->Attribute("Action");
  Require(pszAction != nullptr && strcmp(pszAction, "DEVICE_SET") == 0 &&
          pRoot->Attribute("Result") == nullptr);
}

// Calls the handler of a URI with a body and returns the bodies of its replies.
std::vector<std::string> Call(const char* pszUri, std::string_view body) {
  const std::string strRequest = "POST " + std::string(pszUri) + " HTTP/1.1\r\n\r\n";
  const auto pText = ExactCopy(strRequest + std::string(body), false);
  http_message msg{};
  msg.message = {pText.get(), strRequest.size() + body.size()};
  msg.uri = {pText.get() + strlen("POST "), strlen(pszUri)};
  msg.body = {pText.get() + strRequest.size(), body.size()};
  mg_connection conn{};
  CWebCtrl::Instance().DoHttpRequeset(&conn, &msg);
  const auto bodies = TakeReplies({conn.send_mbuf.buf, conn.send_mbuf.len});
  mbuf_free(&conn.send_mbuf);
  Require(bodies.size() <= 1);
  return bodies;
}

void Import(std::string_view text, std::string_view reply) {
  size_t nSent = 0;
  SetDatagramCheck([&nSent](std::string_view message) {
    CheckSetMessage(message);
    ++nSent;
  });
  SetDeviceScript({reply});
  const auto bodies = Call("/import_CfgFile", Encoded(text));
  Require(nSent <= 1 && (nSent == 0 || bodies.size() == 1));
}

void Export(std::string_view text) {
  SetDatagramCheck([](std::string_view message) {
    Require(message == R"(<VariCfgSec Action="DEVICE_QUERY"></VariCfgSec>)");
  });
  SetDeviceScript({text});
  for (const std::string& strBody : Call("/export_CfgFile", "")) Require(IsUtf8(strBody));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  SilenceTraces();
  StartServiceOnce();
  const auto parts = Split(AsText(pData, nSize), kReplyMark);
  Import(parts[0], parts.size() > 1 ? parts[1] : std::string_view());
  Export(parts[0]);
  return 0;
}
