// The running simulator: waits for requests, control commands and the time of delayed answers, on
// one thread, until SIGINT or SIGTERM. A delayed answer does not block anything else.
#pragma once

#include <chrono>
#include <map>
#include <string>

#include "tools/devsim/Device.h"
#include "tools/devsim/Fault.h"
#include "tools/devsim/Options.h"
#include "tools/devsim/Socket.h"
#include "tools/devsim/TrafficLog.h"

class CSimulator {
 public:
  CSimulator() = default;
  CSimulator(const CSimulator&) = delete;
  CSimulator& operator=(const CSimulator&) = delete;
  ~CSimulator();

  // Reads the settings and binds the ports. Returns 0, or -1 with the reason.
  int Open(const stOptions& options, std::string& strError);

  // Returns after a signal: 0, or -1 when waiting failed.
  int Run();

 private:
  using Clock = std::chrono::steady_clock;
  struct stOutgoing {
    std::string strBytes;
    sockaddr_in to;
    sockaddr_in from;  // port 0: any free one; the simulator's own address: its own socket
  };

  int OpenSignals();
  void OnRequest(std::string_view text, const sockaddr_in& from);
  void OnControl(std::string_view command, const sockaddr_in& from);
  int Command(std::string_view command, std::string& strError);
  void SendAnswer(const stPlan& plan, std::string strText, const sockaddr_in& to);
  void Queue(long nDelayMs, std::string strBytes, const sockaddr_in& to, const sockaddr_in& from);
  void SendDue();
  void SendNow(const stOutgoing& out);
  void SendFrom(CSocket& socket, const stOutgoing& out);
  int WaitMs() const;

  CDevice m_device;
  CFaults m_faults;
  CTrafficLog m_log;
  CSocket m_socket;
  CSocket m_control;
  int m_nSignalFd = -1;
  std::multimap<Clock::time_point, stOutgoing> m_outgoing;
};
