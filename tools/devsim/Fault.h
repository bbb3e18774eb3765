// What can be wrong with an answer, and when. A fault is written in one line,
//   [for=WHO[,WHO]] [times=N] KIND[:ARGUMENT]
// where WHO is query, set or a section's name, and the argument runs to the end of the line.
// Several faults add up; of the same kind given twice, the later one counts. One thread.
#pragma once

#include <netinet/in.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/devsim/Device.h"

// How one request is to be answered.
struct stPlan {
  bool bHandle = true;                // false: the request is lost
  bool bAnswer = true;                // false: the answer is lost
  bool bRefuse = false;               // a set is not applied
  bool bResult = true;                // the reply carries Result
  bool bActionFirst = true;           // false: Result comes before Action
  std::optional<std::string> result;  // replaces the Result
  std::optional<std::string> text;    // replaces the reply
  long nPadTo = 0;                    // lengthens the reply to this many bytes
  long nCutTo = -1;                   // shortens the reply to this many bytes, unless -1
  long nDelayMs = 0;
  long nLateMs = -1;                 // sends kStaleText this long after the reply, unless -1
  std::optional<std::string> early;  // is sent before the reply
  uint16_t usFromPort = 0;  // the reply's source, where it is not the simulator's own socket
  std::string strFromAddr;
  bool bOwnPort = true;  // false: the source is some other port
};

struct stFaultKind;

struct stFault {
  const stFaultKind* pKind = nullptr;
  std::string strArg;
  long nArg = 0;
  std::vector<std::string> who;
  long nTimes = -1;  // requests still to be hit; -1: all
};

// An unsolicited datagram, with a section that nobody queried and its own Result.
constexpr const char* kStaleText =
    "<VariCfgSec Action=\"DEVICE_QUERY\" Result=\"99\"><stStale /></VariCfgSec>";

class CFaults {
 public:
  // Adds a fault given in a line. Returns 0, or -1 with the reason.
  int Add(const std::string& strLine, std::string& strError);
  void Clear() { m_faults.clear(); }
  bool Empty() const { return m_faults.empty(); }

  // Adds every fault that applies to this request to the plan. An unreadable request has neither
  // action nor section, so only faults without for= apply to it.
  void Apply(const stRequest& req, stPlan& plan);

 private:
  std::vector<stFault> m_faults;
};

// The text of the reply according to the plan.
std::string Spoil(const stPlan& plan, stReply reply);

// The list of kinds for --help, one per line.
std::string FaultHelp();
