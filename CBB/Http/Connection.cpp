#include "CBB/Http/Connection.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string_view>

#include "CBB/Http/LibraryMemory.h"
#include "CBB/Http/Refusals.h"

namespace {

constexpr uint64_t kPartMs = 2000;        // for a client to read the last reply
constexpr size_t kMostAtOnce = 1U << 20;  // sent before others have their turn
constexpr size_t kMostReceived = MG_TCP_IO_SIZE;

std::string_view Text(const mbuf& buffer) { return {buffer.buf, buffer.len}; }

// Takes bytes off the front of a buffer, and gives their memory back.
void TakeOff(mbuf& buffer, size_t nSize) {
  if (nSize == buffer.len) {
    mbuf_free(&buffer);
  } else if (nSize != 0) {
    mbuf_remove(&buffer, nSize);
    mbuf_trim(&buffer);
  }
}

// A reply to HEAD ends with its head, however many replies the endpoint writes.
void CutBody(mbuf& sent, size_t nFrom) {
  const size_t nHead = Text(sent).find("\r\n\r\n", nFrom);
  if (nHead != std::string_view::npos) sent.len = nHead + 4;
}

}  // namespace

CConnection::CConnection(CHost& host, mg_connection& conn)
    : m_host(host),
      m_conn(conn),
      m_nAcceptMs(host.NowMs()),
      m_nUsedMs(m_nAcceptMs),
      m_nLastUse(host.NextUse()) {}

CConnection& CConnection::Of(const mg_connection& conn) {
  return *static_cast<CConnection*>(conn.user_data);
}

size_t CConnection::Held() const {
  return m_conn.recv_mbuf.size + m_conn.send_mbuf.size + m_request.Held() + m_body.Held();
}

bool CConnection::WantsBytes() const {
  if (m_bEnded || m_state == State::kClosed) return false;
  if (m_state == State::kLastReply) return true;
  return m_state == State::kReading && m_request.State() == Reading::kPartial;
}

// Other clients get their turn before more of this client's bytes are received.
void CConnection::OnReadable() {
  if (!WantsBytes()) {
    m_host.Events().Want(m_conn, false, !AllSent(), true);
    return;
  }
  const std::string_view received = Receive();
  if (m_state == State::kLastReply || received.empty()) return;
  // Exactly as large as needed: much may be waiting for the rest of a request.
  mbuf_resize(&m_conn.recv_mbuf, m_conn.recv_mbuf.len + received.size());
  mbuf_append(&m_conn.recv_mbuf, received.data(), received.size());
  Advance();
}

// The next bytes, which stay valid until the next call; none when the socket has none.
std::string_view CConnection::Receive() {
  static char s_buffer[kMostReceived];
  const ssize_t nGot = recv(m_conn.sock, s_buffer, sizeof(s_buffer), 0);
  if (nGot == 0) EndOfStream();
  if (nGot < 0 && errno != EAGAIN && errno != EINTR) Close();
  return {s_buffer, static_cast<size_t>(std::max<ssize_t>(nGot, 0))};
}

void CConnection::OnWritable() { Send(); }

void CConnection::EndOfStream() {
  m_bEnded = true;
  m_host.Events().Want(m_conn, false, !AllSent(), true);
  if (m_state == State::kReading) {
    m_state = State::kHungUp;
    Advance();
  } else if (AllSent()) {
    Close();
  }
}

// Handles what has arrived once the earlier reply has been sent in full.
void CConnection::Advance() {
  if (m_state == State::kReading || m_state == State::kHungUp) {
    if (m_request.State() == Reading::kPartial) {
      if (m_request.Held() == 0) TakeOff(m_conn.recv_mbuf, EmptyLines(Text(m_conn.recv_mbuf)));
      m_request.Read(Text(m_conn.recv_mbuf));
    }
  }
  Act(NextTurn(m_state, m_request, AllSent()));
}

void CConnection::Act(stTurn turn) {
  switch (turn.action) {
    case stTurn::kNothing:
      break;
    case stTurn::kWait:
      Watch();
      break;
    case stTurn::kContinue:
      Continue();
      break;
    case stTurn::kServe:
      m_bServed = true;
      m_nLastUse = m_host.NextUse();
      m_nUsedMs = m_host.NowMs();
      m_host.Enqueue(*this);
      break;
    case stTurn::kRefuse:
      Refuse(turn.nStatus);
      break;
    case stTurn::kPart:
      Part();
      break;
    case stTurn::kClose:
      Close();
      break;
  }
}

void CConnection::Continue() {
  Watch();
  if (m_bContinued) return;
  m_bContinued = true;
  mg_printf(&m_conn, "HTTP/1.1 100 Continue\r\n\r\n");
  Send();
}

void CConnection::Refuse(int nStatus) {
  m_state = State::kLastReply;
  m_request.Clear();
  mbuf_free(&m_conn.recv_mbuf);
  SendStatus(&m_conn, nStatus, false, true);
  Send();
}

// Closing while bytes arrive would reset the connection, and the client would lose the reply.
void CConnection::Part() {
  if (m_bEnded) {
    Close();
  } else if (m_bSilent) {
    Watch();
  } else if (m_nPartMs == 0) {
    m_nPartMs = m_host.NowMs() + kPartMs;
    shutdown(m_conn.sock, SHUT_WR);
    m_host.Parting(*this);
    m_host.Events().Want(m_conn, true, false, true);
  }
}

void CConnection::Close() {
  m_state = State::kClosed;
  m_conn.flags |= MG_F_CLOSE_IMMEDIATELY;
}

void CConnection::Serve() {
  const size_t nLength = m_request.Length();
  const bool bCloses = !m_request.KeepsOpen();
  if (m_state == State::kReading) m_state = State::kAnswering;
  Answer();
  const bool bAnswered = !AllSent();
  // This is how the library ends a reply without a length.
  const bool bEnds = (m_conn.flags & MG_F_SEND_AND_CLOSE) != 0;
  m_conn.flags &= ~static_cast<unsigned long>(MG_F_SEND_AND_CLOSE);
  m_request.Clear();
  m_bContinued = false;
  TakeOff(m_conn.recv_mbuf, nLength);
  if (bCloses || (bAnswered && bEnds)) {
    m_state = State::kLastReply;
    m_bSilent = !bAnswered;
    mbuf_free(&m_conn.recv_mbuf);
  }
}

void CConnection::Answer() {
  http_message& msg = m_host.Message();
  m_request.Fill(m_conn.recv_mbuf.buf, msg);
  try {
    m_conn.handler(&m_conn, MG_EV_HTTP_REQUEST, &msg);
  } catch (const std::bad_alloc&) {
    NoteMemoryShortage();
  }
  if (m_request.IsHead()) CutBody(m_conn.send_mbuf, 0);
}

// If memory was short the reply may have a gap: then none of it is sent.
void CConnection::Send() {
  size_t nTotal = 0;
  while (!AllSent() && nTotal < kMostAtOnce) {
    const ssize_t nSent = IsMemoryShort() ? -1 : SendSome();
    if (nSent < 0) Close();
    if (nSent <= 0) break;
    nTotal += static_cast<size_t>(nSent);
  }
  if (m_state == State::kClosed) return;
  Watch();
  if (AllSent()) Sent();
}

void CConnection::Watch() { m_host.Events().Want(m_conn, WantsBytes(), !AllSent(), false); }

// The number of bytes sent: 0 when the socket is full, -1 when the client is gone.
ssize_t CConnection::SendSome() {
  mbuf& head = m_conn.send_mbuf;
  const ssize_t nSent = m_body.SendAfter(Text(head), m_conn.sock);
  if (nSent > 0) TakeOff(head, std::min(static_cast<size_t>(nSent), head.len));
  return nSent;
}

void CConnection::Sent() {
  m_body = CBody();
  if (m_state == State::kAnswering) m_state = State::kReading;
  Advance();
}
