#include "CBB/WebCtrl/JsonReply.h"

#include <arpa/inet.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "CBB/WebCtrl/MaskSvrAddr.h"

CJsonReply::CJsonReply(mg_connection* pConn, const char* pszHeader) : m_pConn(pConn) {
  mg_printf(m_pConn, "%s", pszHeader);
}

void CJsonReply::Add(const char* pszKey, const char* pszText) {
  Piece("%s\"%s\": \"%s\"", Lead(), pszKey, pszText);
}

void CJsonReply::Add(const char* pszKey, int nValue) {
  Piece("%s\"%s\": \"%d\"", Lead(), pszKey, nValue);
}

void CJsonReply::AddAddress(const char* pszKey, uint32_t uiAddress) {
  char szShown[64];
  MaskSvrAddr(kMask, inet_ntoa(in_addr{uiAddress}), szShown);
  Add(pszKey, szShown);
}

void CJsonReply::Piece(const char* pszFormat, ...) {
  ++m_nPieces;
  char szPiece[512];  // every value of a record fits; only the exported configuration does not
  va_list args;
  va_start(args, pszFormat);
  const int nLen = vsnprintf(szPiece, sizeof(szPiece), pszFormat, args);
  va_end(args);
  if (nLen < static_cast<int>(sizeof(szPiece))) {
    mg_send_http_chunk(m_pConn, szPiece, static_cast<size_t>(nLen));
    return;
  }
  std::string strPiece(static_cast<size_t>(nLen) + 1, '\0');
  va_start(args, pszFormat);
  vsnprintf(strPiece.data(), strPiece.size(), pszFormat, args);
  va_end(args);
  mg_send_http_chunk(m_pConn, strPiece.data(), static_cast<size_t>(nLen));
}

void CJsonReply::Result(bool bOk) {
  Piece("%s\"result\": %d }", Lead(), bOk ? 1 : 0);
  End();
}

void CJsonReply::End() { mg_send_http_chunk(m_pConn, "", 0); }

void ReplyResult(mg_connection* pConn, bool bOk) {
  CJsonReply reply(pConn);
  reply.Piece("{\"result\": %d }", bOk ? 1 : 0);
  reply.End();
}
