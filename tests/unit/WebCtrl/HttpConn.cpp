#include "tests/unit/WebCtrl/HttpConn.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdlib>
#include <cstring>

#include "CBB/WebCtrl/HttpLoop.h"

CHttpConn::CHttpConn() {
  mg_mgr_init(&m_mgr, nullptr);
  m_listener.mgr = m_conn.mgr = &m_mgr;
  m_listener.iface = m_conn.iface = m_mgr.ifaces[0];
  m_conn.listener = &m_listener;
  m_conn.sock = INVALID_SOCKET;
  m_conn.recv_mbuf_limit = ~static_cast<size_t>(0);
  m_conn.handler = m_listener.handler = &HttpEvent;
  m_listener.sock = INVALID_SOCKET;
  ServeHttp(&m_listener);
  m_conn.proto_handler = m_listener.proto_handler;
  m_mgr.active_connections = &m_conn;
}

CHttpConn::~CHttpConn() {
  m_mgr.active_connections = nullptr;
  if (m_conn.proto_data != nullptr) m_conn.proto_data_destructor(m_conn.proto_data);
  if (m_pPages != nullptr) munmap(m_pPages, m_nPages);
  mbuf_free(&m_conn.send_mbuf);
  mg_mgr_free(&m_mgr);
}

void CHttpConn::ReplaceReceived(std::string_view bytes) {
  constexpr size_t kPage = 4096;
  const size_t nData = (bytes.size() + kPage - 1) / kPage * kPage;
  if (m_pPages != nullptr) munmap(m_pPages, m_nPages);
  m_nPages = nData + kPage;
  m_pPages = mmap(nullptr, m_nPages, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(MAP_FAILED, m_pPages);
  char* const pGuard = static_cast<char*>(m_pPages) + nData;
  ASSERT_EQ(0, mprotect(pGuard, kPage, PROT_NONE));
  m_conn.recv_mbuf = {pGuard - bytes.size(), bytes.size(), bytes.size()};
  memcpy(m_conn.recv_mbuf.buf, bytes.data(), bytes.size());
}

void CHttpConn::Arrive(std::string_view bytes) {
  std::string strAll =
      m_pPages != nullptr ? std::string(m_conn.recv_mbuf.buf, m_conn.recv_mbuf.len) : std::string();
  ReplaceReceived(strAll.append(bytes));
}

void CHttpConn::Deliver() {
  int nBytes = static_cast<int>(m_conn.recv_mbuf.len);
  m_conn.proto_handler(&m_conn, MG_EV_RECV, &nBytes);
  while (!IsClosing() && Poll()) continue;
}

bool CHttpConn::Poll() {
  const size_t nLeft = m_conn.recv_mbuf.len;
  const bool bMore = ResumeReceiving(m_mgr);
  if (bMore) ServeWaiting(m_mgr);
  return bMore && m_conn.recv_mbuf.len != nLeft;
}

void CHttpConn::Receive(std::string_view bytes) {
  Arrive(bytes);
  Deliver();
}

void CHttpConn::Close() {
  m_conn.flags |= MG_F_SEND_AND_CLOSE;
  ResumeReceiving(m_mgr);
  Break();
}

void CHttpConn::Break() {
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
