#include "tools/devsim/Fault.h"

#include <string.h>

#include <algorithm>
#include <utility>

#include "tools/devsim/Text.h"

enum class ArgRule { kNone, kNumber, kText, kAddress, kFile };

struct stFaultKind {
  const char* pszName;
  ArgRule rule;
  const char* pszDefault;  // null: the argument must be given
  long nMax;               // of a number
  void (*pfnApply)(const stFault&, stPlan&);
  const char* pszHelp;
};

namespace {

constexpr long kDatagramMax = 65507;
constexpr long kMsMax = 600000;

// clang-format off
constexpr stFaultKind kKinds[] = {
    {"silent", ArgRule::kNone, "", 0,
     [](const stFault&, stPlan& plan) { plan.bHandle = false; },
     "silent         the request is lost: nothing is applied or answered"},
    {"lost", ArgRule::kNone, "", 0,
     [](const stFault&, stPlan& plan) { plan.bAnswer = false; },
     "lost           the request is carried out, its answer is lost"},
    {"delay", ArgRule::kNumber, nullptr, kMsMax,
     [](const stFault& f, stPlan& plan) { plan.nDelayMs = f.nArg; },
     "delay:MS       the answer comes MS milliseconds later"},
    {"port", ArgRule::kNumber, "0", 65535,
     [](const stFault& f, stPlan& plan) {
       plan.bOwnPort = false;
       plan.usFromPort = static_cast<uint16_t>(f.nArg);
     },
     "port[:N]       the answer comes from port N (any free one)"},
    {"address", ArgRule::kAddress, nullptr, 0,
     [](const stFault& f, stPlan& plan) { plan.strFromAddr = f.strArg; },
     "address:A      the answer comes from address A, for example 127.0.0.2"},
    {"oversize", ArgRule::kNumber, "30001", kDatagramMax,
     [](const stFault& f, stPlan& plan) { plan.nPadTo = f.nArg; },
     "oversize[:N]   the answer is N bytes long (30001), filled up by one more root attribute"},
    {"truncate", ArgRule::kNumber, "40", kDatagramMax,
     [](const stFault& f, stPlan& plan) { plan.nCutTo = f.nArg; },
     "truncate[:N]   the answer ends after N bytes (40)"},
    {"notxml", ArgRule::kNone, "", 0,
     [](const stFault&, stPlan& plan) { plan.text = "no XML at all"; },
     "notxml         the answer is a plain sentence"},
    {"result", ArgRule::kText, nullptr, 0,
     [](const stFault& f, stPlan& plan) {
       plan.result = f.strArg;
       plan.bRefuse = f.strArg != "0";
     },
     "result:TEXT    Result is TEXT; a set is then not applied, unless TEXT is 0"},
    {"noresult", ArgRule::kNone, "", 0,
     [](const stFault&, stPlan& plan) { plan.bResult = false; },
     "noresult       the answer has no Result"},
    {"order", ArgRule::kNone, "", 0,
     [](const stFault&, stPlan& plan) { plan.bActionFirst = false; },
     "order          Result stands before Action"},
    {"text", ArgRule::kText, "", 0,
     [](const stFault& f, stPlan& plan) { plan.text = f.strArg; },
     "text[:TEXT]    the answer is TEXT as it stands (an empty datagram)"},
    {"file", ArgRule::kFile, nullptr, 0,
     [](const stFault& f, stPlan& plan) { plan.text = f.strArg; },
     "file:PATH      the answer is the content of a file (read when the fault is set)"},
    {"early", ArgRule::kText, kStaleText, 0,
     [](const stFault& f, stPlan& plan) { plan.early = f.strArg; },
     "early[:TEXT]   a stale datagram comes before the answer"},
    {"late", ArgRule::kNumber, "0", kMsMax,
     [](const stFault& f, stPlan& plan) { plan.nLateMs = f.nArg; },
     "late[:MS]      a stale datagram comes MS milliseconds after the answer"},
};
// clang-format on

// Parses the words before the kind. Returns 0, or -1 with the reason.
int ReadConditions(std::string_view& line, stFault& fault, std::string& strError) {
  for (;;) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view word = line.substr(0, line.find(' '));
    if (word.substr(0, 4) == "for=") {
      std::string_view who = word.substr(4);
      while (!who.empty()) {
        fault.who.emplace_back(who.substr(0, who.find(',')));
        who.remove_prefix(std::min(who.size(), fault.who.back().size() + 1));
      }
    } else if (word.substr(0, 6) == "times=") {
      if (ReadNumber(word.substr(6), 1000000, fault.nTimes) != 0) {
        strError = "times= needs a number";
        return -1;
      }
    } else {
      return 0;
    }
    line.remove_prefix(word.size());
  }
}

int CheckArg(stFault& fault) {
  sockaddr_in addr;
  std::string strBytes;
  switch (fault.pKind->rule) {
    case ArgRule::kNumber:
      return ReadNumber(fault.strArg, fault.pKind->nMax, fault.nArg);
    case ArgRule::kAddress:
      return MakeAddr(fault.strArg, 0, addr);
    case ArgRule::kFile:
      if (ReadFile(fault.strArg, strBytes) != 0) return -1;
      fault.strArg = strBytes;
      return 0;
    case ArgRule::kNone:
    case ArgRule::kText:
      return 0;
  }
  return -1;
}

bool Meets(const stFault& fault, const stRequest& req) {
  return std::all_of(fault.who.begin(), fault.who.end(), [&](const std::string& strWho) {
    if (strWho == "query") return req.action == "DEVICE_QUERY";
    if (strWho == "set") return req.action == "DEVICE_SET";
    return req.section == strWho;
  });
}

}  // namespace

int CFaults::Add(const std::string& strLine, std::string& strError) {
  std::string_view line(strLine);
  stFault fault;
  if (ReadConditions(line, fault, strError) != 0) return -1;
  const size_t nColon = line.find(':');
  const std::string strName(line.substr(0, nColon));
  for (const stFaultKind& kind : kKinds)
    if (strName == kind.pszName) fault.pKind = &kind;
  if (fault.pKind == nullptr) {
    strError = "unknown fault '" + strName + "'";
    return -1;
  }
  const bool bGiven = nColon != std::string_view::npos;
  if ((!bGiven && fault.pKind->pszDefault == nullptr) ||
      (bGiven && fault.pKind->rule == ArgRule::kNone)) {
    strError = "fault '" + strName + "' " + (bGiven ? "takes no" : "needs an") + " argument";
    return -1;
  }
  fault.strArg = bGiven ? std::string(line.substr(nColon + 1)) : fault.pKind->pszDefault;
  if (CheckArg(fault) != 0) {
    strError = "fault '" + strName + "' cannot use '" + fault.strArg + "'";
    return -1;
  }
  m_faults.push_back(fault);
  return 0;
}

void CFaults::Apply(const stRequest& req, stPlan& plan) {
  for (stFault& fault : m_faults) {
    if (fault.nTimes == 0 || !Meets(fault, req)) continue;
    if (fault.nTimes > 0) --fault.nTimes;
    fault.pKind->pfnApply(fault, plan);
  }
  m_faults.erase(std::remove_if(m_faults.begin(), m_faults.end(),
                                [](const stFault& fault) { return fault.nTimes == 0; }),
                 m_faults.end());
}

std::string Spoil(const stPlan& plan, stReply reply) {
  if (plan.result) reply.Result().strValue = *plan.result;
  if (!plan.bActionFirst) std::swap(reply.attrs[0], reply.attrs[1]);
  if (!plan.bResult) reply.attrs.erase(reply.attrs.begin() + (plan.bActionFirst ? 1 : 0));
  std::string strText = plan.text ? *plan.text : PrintReply(reply);
  const size_t nPadTo = static_cast<size_t>(plan.nPadTo);
  if (!plan.text && strText.size() + strlen(" strPad=\"\"") <= nPadTo) {
    const size_t nFill = nPadTo - strText.size() - strlen(" strPad=\"\"");
    reply.attrs.push_back({"strPad", std::string(nFill, 'x')});
    strText = PrintReply(reply);
  }
  if (plan.nCutTo >= 0) strText.resize(std::min(strText.size(), static_cast<size_t>(plan.nCutTo)));
  return strText;
}

std::string FaultHelp() {
  std::string strText;
  for (const stFaultKind& kind : kKinds) strText += std::string("  ") + kind.pszHelp + "\n";
  return strText;
}
