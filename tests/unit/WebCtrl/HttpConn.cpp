#include "tests/unit/WebCtrl/HttpConn.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "CBB/WebCtrl/HttpLoop.h"

CHttpConn::CHttpConn() {
  m_listener.mgr = m_conn.mgr = &m_mgr;
  m_conn.listener = &m_listener;
  m_conn.sock = INVALID_SOCKET;
  m_conn.recv_mbuf_limit = ~static_cast<size_t>(0);
  m_conn.handler = m_listener.handler = &HttpEvent;
  mg_set_protocol_http_websocket(&m_conn);
}

CHttpConn::~CHttpConn() {
  if (m_conn.proto_data != nullptr) m_conn.proto_data_destructor(m_conn.proto_data);
  mbuf_free(&m_conn.recv_mbuf);
  mbuf_free(&m_conn.send_mbuf);
}

void CHttpConn::Receive(std::string_view bytes) {
  mbuf& received = m_conn.recv_mbuf;
  received.buf = static_cast<char*>(realloc(received.buf, received.len + bytes.size()));
  memcpy(received.buf + received.len, bytes.data(), bytes.size());
  received.size = received.len += bytes.size();
  int nBytes = static_cast<int>(bytes.size());
  m_conn.proto_handler(&m_conn, MG_EV_RECV, &nBytes);
}

void CHttpConn::Close() {
  m_conn.flags |= MG_F_CLOSE_IMMEDIATELY;
  m_conn.proto_handler(&m_conn, MG_EV_CLOSE, nullptr);
}

CRequest::CRequest(std::string_view text) : m_text(text.begin(), text.end()) {
  const int nHead = mg_parse_http(m_text.data(), static_cast<int>(m_text.size()), &m_msg, 1);
  EXPECT_GT(nHead, 0) << text;
  m_msg.message.len = m_text.size();
  m_msg.body.len = m_text.size() - static_cast<size_t>(nHead);
}

std::string Post(const std::string& strUri, const std::string& strForm) {
  return "POST " + strUri + " HTTP/1.1\r\nContent-Length: " + std::to_string(strForm.size()) +
         "\r\n\r\n" + strForm;
}

std::string stReply::Body() const {
  std::string strBody;
  for (const std::string& strChunk : chunks) strBody += strChunk;
  return strBody;
}

stReply TakeReply(const std::string& strSent) {
  stReply reply;
  size_t nAt = strSent.find("\r\n\r\n");
  EXPECT_NE(std::string::npos, nAt) << strSent;
  if (nAt == std::string::npos) return reply;
  nAt += 4;
  reply.strHead = strSent.substr(0, nAt);
  for (;;) {
    const size_t nLine = strSent.find("\r\n", nAt);
    EXPECT_NE(std::string::npos, nLine) << strSent;
    if (nLine == std::string::npos) return reply;
    const size_t nLen = strtoul(strSent.c_str() + nAt, nullptr, 16);
    EXPECT_EQ("\r\n", strSent.substr(nLine + 2 + nLen, 2)) << strSent;
    nAt = nLine + 2 + nLen + 2;
    if (nLen == 0) break;
    reply.chunks.push_back(strSent.substr(nLine + 2, nLen));
  }
  reply.strRest = strSent.substr(std::min(nAt, strSent.size()));
  return reply;
}
