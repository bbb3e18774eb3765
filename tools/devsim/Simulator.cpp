#include "tools/devsim/Simulator.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "tools/devsim/Text.h"

namespace {

// Limits the memory that a flood of requests can hold while a delay is set.
constexpr size_t kOutgoingMax = 4096;

// Requests come before commands, so that requests sent before a command take effect before it. But
// a flood of requests must not block commands.
constexpr int kRequestsPerTurn = 256;

int OpenSocket(CSocket& socket, const std::string& strAddr, uint16_t usPort,
               std::string& strError) {
  sockaddr_in addr;
  if (MakeAddr(strAddr, usPort, addr) == 0 && socket.Open(addr) == 0) return 0;
  strError = "cannot listen on " + strAddr + ":" + std::to_string(usPort) + ": " + strerror(errno);
  return -1;
}

bool SameAddr(const sockaddr_in& a, const sockaddr_in& b) {
  return a.sin_addr.s_addr == b.sin_addr.s_addr && a.sin_port == b.sin_port;
}

}  // namespace

CSimulator::~CSimulator() {
  if (m_nSignalFd >= 0) close(m_nSignalFd);
}

int CSimulator::Open(const stOptions& options, std::string& strError) {
  if (m_device.Open(options.strDefaults, options.strState, strError) != 0) return -1;
  if (!options.strLog.empty() && m_log.Open(options.strLog) != 0) {
    strError = "cannot write " + options.strLog + ": " + strerror(errno);
    return -1;
  }
  for (const std::string& strFault : options.faults) {
    const int nRet = m_faults.Add(strFault, strError);
    if (nRet != 0) return nRet;
  }
  // Done before anyone can see that it runs, and stop it.
  if (OpenSignals() != 0) {
    strError = std::string("cannot wait for signals: ") + strerror(errno);
    return -1;
  }
  if (OpenSocket(m_socket, options.strAddress, options.usPort, strError) != 0) return -1;
  printf("devsim: listening on %s\n", AddrText(m_socket.Addr()).c_str());
  if (options.nControlPort >= 0) {
    const auto usPort = static_cast<uint16_t>(options.nControlPort);
    if (OpenSocket(m_control, "127.0.0.1", usPort, strError) != 0) return -1;
    printf("devsim: control on %s\n", AddrText(m_control.Addr()).c_str());
  }
  fflush(stdout);
  return 0;
}

int CSimulator::OpenSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  m_nSignalFd = signalfd(-1, &signals, SFD_CLOEXEC);
  return m_nSignalFd < 0 ? -1 : 0;
}

int CSimulator::Run() {
  pollfd fds[] = {
      {m_nSignalFd, POLLIN, 0}, {m_socket.Fd(), POLLIN, 0}, {m_control.Fd(), POLLIN, 0}};
  for (;;) {
    if (poll(fds, 3, WaitMs()) < 0 && errno != EINTR) return -1;
    if (fds[0].revents) return 0;
    std::string_view bytes;
    sockaddr_in from;
    for (int i = 0; i < kRequestsPerTurn && m_socket.Receive(bytes, from) == 0; ++i) {
      OnRequest(bytes, from);
      SendDue();
    }
    if (fds[2].revents && m_control.Receive(bytes, from) == 0) OnControl(bytes, from);
    SendDue();
  }
}

void CSimulator::OnRequest(std::string_view text, const sockaddr_in& from) {
  m_log.Add("recv", from, m_socket.Addr(), text);
  stRequest req;
  const bool bReadable = ReadRequest(text, req) == 0;
  stPlan plan;
  m_faults.Apply(req, plan);
  if (!plan.bHandle || (!bReadable && !plan.text)) return;
  const bool bCarryOut = bReadable && !plan.bRefuse;
  const stReply reply = bCarryOut ? m_device.Answer(req) : stReply(req.action);
  if (plan.bAnswer) SendAnswer(plan, Spoil(plan, reply), from);
}

void CSimulator::SendAnswer(const stPlan& plan, std::string strText, const sockaddr_in& to) {
  sockaddr_in source = m_socket.Addr();
  if (!plan.strFromAddr.empty()) MakeAddr(plan.strFromAddr, ntohs(source.sin_port), source);
  if (!plan.bOwnPort) source.sin_port = htons(plan.usFromPort);
  if (plan.early) Queue(plan.nDelayMs, *plan.early, to, m_socket.Addr());
  Queue(plan.nDelayMs, std::move(strText), to, source);
  if (plan.nLateMs >= 0) Queue(plan.nDelayMs + plan.nLateMs, kStaleText, to, m_socket.Addr());
}

void CSimulator::Queue(long nDelayMs, std::string strBytes, const sockaddr_in& to,
                       const sockaddr_in& from) {
  if (m_outgoing.size() >= kOutgoingMax) return;
  m_outgoing.insert({Clock::now() + std::chrono::milliseconds(nDelayMs),
                     stOutgoing{std::move(strBytes), to, from}});
}

void CSimulator::SendDue() {
  while (!m_outgoing.empty() && m_outgoing.begin()->first <= Clock::now()) {
    SendNow(m_outgoing.begin()->second);
    m_outgoing.erase(m_outgoing.begin());
  }
}

void CSimulator::SendNow(const stOutgoing& out) {
  if (SameAddr(out.from, m_socket.Addr())) {
    SendFrom(m_socket, out);
    return;
  }
  CSocket other;
  if (other.Open(out.from, true) == 0) {
    SendFrom(other, out);
  } else {
    fprintf(stderr, "devsim: cannot send from %s: %s\n", AddrText(out.from).c_str(),
            strerror(errno));
  }
}

void CSimulator::SendFrom(CSocket& socket, const stOutgoing& out) {
  // The line is written first: when a client has its answer, the line is in the log.
  m_log.Add("send", socket.Addr(), out.to, out.strBytes);
  if (socket.Send(out.strBytes, out.to) != 0)
    fprintf(stderr, "devsim: cannot send to %s: %s\n", AddrText(out.to).c_str(), strerror(errno));
}

int CSimulator::WaitMs() const {
  if (m_outgoing.empty()) return -1;
  const auto wait = m_outgoing.begin()->first - Clock::now();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(wait).count();
  return static_cast<int>(std::max<long>(0, ms + 1));  // rounded up: never wakes too early
}

void CSimulator::OnControl(std::string_view command, const sockaddr_in& from) {
  std::string strError;
  const int nRet = Command(command, strError);
  m_control.Send(nRet == 0 ? "ok" : "error: " + strError, from);
}

int CSimulator::Command(std::string_view command, std::string& strError) {
  if (command.substr(0, 6) == "fault ")
    return m_faults.Add(std::string(command.substr(6)), strError);
  if (command == "reset") return m_device.Reset(strError);
  if (command != "clear") {
    strError = "unknown command";
    return -1;
  }
  m_faults.Clear();
  m_outgoing.clear();
  return 0;
}
