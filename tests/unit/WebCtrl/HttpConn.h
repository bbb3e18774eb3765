// An HTTP connection without a socket: what a client would send is handed to the HTTP library, what
// the client would receive stands in the send buffer. Received bytes end at a page that cannot be
// read, so that a step beyond them ends the test.
#pragma once

#include <mongoose.h>

#include <string>
#include <string_view>
#include <vector>

class CHttpConn {
 public:
  // A connection that was accepted by a listener as the service makes it.
  CHttpConn();
  ~CHttpConn();
  CHttpConn(const CHttpConn&) = delete;
  CHttpConn& operator=(const CHttpConn&) = delete;

  mg_connection* Get() { return &m_conn; }

  // Receive in two steps: the bytes are there; the library is told, until it wants to wait.
  void Arrive(std::string_view bytes);
  void Deliver();

  // A poll that brings nothing, if one is wanted without waiting. Returns whether it took a
  // request.
  bool Poll();

  // Bytes arrive; the client goes away in order; the connection breaks, or the service closes it.
  void Receive(std::string_view bytes);
  void Close();
  void Break();

  std::string Sent() const { return {m_conn.send_mbuf.buf, m_conn.send_mbuf.len}; }
  bool IsClosing() const {
    return (m_conn.flags & (MG_F_CLOSE_IMMEDIATELY | MG_F_SEND_AND_CLOSE)) != 0;
  }

 private:
  void ReplaceReceived(std::string_view bytes);

  void* m_pPages = nullptr;
  size_t m_nPages = 0;  // bytes, the guard included
  mg_mgr m_mgr{};
  mg_connection m_listener{};
  mg_connection m_conn{};
};

// A parsed request over a copy of the text that is neither longer nor terminated.
class CRequest {
 public:
  explicit CRequest(std::string_view text);
  http_message* Get() { return &m_msg; }

 private:
  std::vector<char> m_text;
  http_message m_msg{};
};

// A POST request with a form as its body.
std::string Post(const std::string& strUri, const std::string& strForm);

// A chunked reply taken apart: the head with its blank line, the chunks without the closing one,
// and what stands behind the reply. Records a failure when it is not one.
struct stReply {
  std::string strHead;
  std::vector<std::string> chunks;
  std::string strRest;
  std::string Body() const;
};
stReply TakeReply(const std::string& strSent);
