// An HTTP connection without a socket: its send buffer holds what the client would receive.
#pragma once

#include <mongoose.h>

#include <string>
#include <vector>

class CHttpConn {
 public:
  CHttpConn() = default;
  ~CHttpConn() { mbuf_free(&m_conn.send_mbuf); }
  CHttpConn(const CHttpConn&) = delete;
  CHttpConn& operator=(const CHttpConn&) = delete;

  mg_connection* Get() { return &m_conn; }

  std::string Sent() const { return {m_conn.send_mbuf.buf, m_conn.send_mbuf.len}; }

 private:
  mg_connection m_conn{};
};

// A POST request with a form as its body.
std::string Post(const std::string& strUri, const std::string& strForm);

// Splits a chunked reply: the head with its empty line, the chunks without the closing one, and the
// bytes after the reply. Records a failure when it is not one.
struct stReply {
  std::string strHead;
  std::vector<std::string> chunks;
  std::string strRest;
  std::string Body() const;
};
stReply TakeReply(const std::string& strSent);
