#include "CBB/WebCtrl/JsonReply.h"

#include <arpa/inet.h>

#include "CBB/WebCtrl/MaskSvrAddr.h"

CJsonReply::CJsonReply(mg_connection* pConn, const char* pszHeader) : m_pConn(pConn) {
  mg_printf(m_pConn, "%s", pszHeader);
}

void CJsonReply::Add(const char* pszKey, const char* pszText) {
  Piece({Lead(), "\"", pszKey, "\": \"", pszText, "\""});
}

void CJsonReply::Add(const char* pszKey, int nValue) {
  Piece({Lead(), "\"", pszKey, "\": \"", std::to_string(nValue), "\""});
}

void CJsonReply::AddAddress(const char* pszKey, uint32_t uiAddress) {
  char szShown[64];
  MaskSvrAddr(kMask, inet_ntoa(in_addr{uiAddress}), szShown);
  Add(pszKey, szShown);
}

void CJsonReply::Piece(std::initializer_list<std::string_view> texts) {
  // Put together by hand: formatted printing of a whole configuration takes twice its conversion.
  m_strPiece.clear();
  for (const std::string_view text : texts) m_strPiece += text;
  mg_send_http_chunk(m_pConn, m_strPiece.data(), m_strPiece.size());
  ++m_nPieces;
}

void CJsonReply::Result(bool bOk) {
  Piece({Lead(), "\"result\": ", bOk ? "1" : "0", " }"});
  End();
}

void CJsonReply::End() { mg_send_http_chunk(m_pConn, "", 0); }

void ReplyResult(mg_connection* pConn, bool bOk) {
  CJsonReply reply(pConn);
  reply.Piece({"{\"result\": ", bOk ? "1" : "0", " }"});
  reply.End();
}
