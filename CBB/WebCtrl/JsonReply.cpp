#include "CBB/WebCtrl/JsonReply.h"

#include <algorithm>
#include <cstring>

#include "CBB/Util/NetTool.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"

namespace {

// A chunk's first line: its size in upper-case hexadecimal.
std::string SizeLine(size_t nSize) {
  char szLine[] = "0000000000000000\r\n";
  char* p = szLine + 16;
  do {
    *--p = "0123456789ABCDEF"[nSize % 16];
    nSize /= 16;
  } while (nSize != 0);
  return p;
}

}  // namespace

CJsonReply::CJsonReply(mg_connection* pConn, const char* pszHeader) : m_pConn(pConn) {
  mg_printf(m_pConn, "%s", pszHeader);
  m_strChunks.reserve(1000);  // most replies are shorter
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
  // Framed by hand: for each chunk the library reads the clock three times and formats a number,
  // which took longer than everything else in a long reply of short chunks.
  size_t nSize = 0;
  for (const std::string_view text : texts) nSize += text.size();
  const std::string strLine = SizeLine(nSize);
  const size_t nBegin = m_strChunks.size();
  m_strChunks.resize(nBegin + strLine.size() + nSize + 2);
  char* p = std::copy(strLine.begin(), strLine.end(), &m_strChunks[nBegin]);
  for (const std::string_view text : texts) p = std::copy(text.begin(), text.end(), p);
  memcpy(p, "\r\n", 2);
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
