#include "CBB/WebCtrl/JsonReply.h"

#include <iterator>

#include "CBB/Util/NetTool.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"

namespace {

constexpr size_t kUsualReply = 512;

// A chunk's first line: its size, as a hexadecimal number in capitals.
void AppendSize(std::string& strOut, size_t nSize) {
  char szLine[2 * sizeof(nSize)];
  char* p = std::end(szLine);
  do {
    *--p = "0123456789ABCDEF"[nSize % 16];
    nSize /= 16;
  } while (nSize != 0);
  strOut.append(p, static_cast<size_t>(std::end(szLine) - p)).append("\r\n");
}

}  // namespace

CJsonReply::CJsonReply(mg_connection* pConn, const char* pszHeader) : m_pConn(pConn) {
  mg_printf(m_pConn, "%s", pszHeader);
  m_strChunks.reserve(kUsualReply);
}

void CJsonReply::Add(const char* pszKey, const char* pszText) {
  Piece({Lead(), "\"", pszKey, "\": \"", pszText, "\""});
}

void CJsonReply::Add(const char* pszKey, int nValue) {
  Piece({Lead(), "\"", pszKey, "\": \"", std::to_string(nValue), "\""});
}

void CJsonReply::AddAddress(const char* pszKey, uint32_t uiAddress) {
  char szShown[64];
  MaskSvrAddr(kMask, AddressText(uiAddress).c_str(), szShown);
  Add(pszKey, szShown);
}

void CJsonReply::Piece(std::initializer_list<std::string_view> texts) {
  // Framed by hand: the library looks at the clock three times and prints a number for each chunk,
  // which took longer than all else that a long reply of short chunks needs.
  size_t nSize = 0;
  for (const std::string_view text : texts) nSize += text.size();
  AppendSize(m_strChunks, nSize);
  for (const std::string_view text : texts) m_strChunks += text;
  m_strChunks += "\r\n";
  m_bBegun = true;
}

void CJsonReply::Result(bool bOk) {
  Piece({Lead(), "\"result\": ", bOk ? "1" : "0", " }"});
  End();
}

void CJsonReply::End() {
  mg_send(m_pConn, m_strChunks.data(), static_cast<int>(m_strChunks.size()));
  m_strChunks.clear();
  mg_send_http_chunk(m_pConn, "", 0);
}

void ReplyResult(mg_connection* pConn, bool bOk) {
  CJsonReply reply(pConn);
  reply.Piece({"{\"result\": ", bOk ? "1" : "0", " }"});
  reply.End();
}
