// What the device application does with a message: parses it, answers a query from the settings,
// applies a set to them. Knows nothing of sockets or faults. One thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/devsim/ConfigDoc.h"

// The longest message either side accepts, and the deepest nesting.
constexpr size_t kMessageMax = 30000;
constexpr int kDepthMax = 32;

struct stRequest {
  std::string_view text;         // the datagram
  std::string_view action;       // value of Action
  std::string_view section;      // the first section's name; empty when the root has no child
  int nStartChn = -1;            // the query's StartChn, or -1
  bool bSectionReadable = true;  // false: followed by neither a section nor the root's end
};

// An answer: the root's attributes in order, and the content of the root.
struct stReply {
  struct stAttr {
    std::string strName;
    std::string strValue;
  };
  explicit stReply(std::string_view action)
      : attrs{{"Action", std::string(action)}, {"Result", "0"}} {}

  stAttr& Result() { return attrs[1]; }

  std::vector<stAttr> attrs;
  std::string strSections;
};

// Reads the names of a message, well-formed or not. Returns 0, or -1 when it is not to be answered:
// no VariCfgSec root, Action not its first attribute, an unknown action, a zero byte, or a reply
// (Result is its second attribute). The views live as long as the text.
int ReadRequest(std::string_view text, stRequest& req);

// The text of a reply.
std::string PrintReply(const stReply& reply);

class CDevice {
 public:
  // Settings come from the state file if it exists, otherwise from the defaults. An empty state
  // path keeps changes in memory only. Returns 0, or -1 with the reason.
  int Open(const std::string& strDefaults, const std::string& strState, std::string& strError);

  // Restores the default settings (and writes the state file). Returns 0, or -1 with the reason.
  int Reset(std::string& strError);

  // Executes the message. A set that cannot be applied completely changes nothing and is answered
  // with Result 1.
  stReply Answer(const stRequest& req);

 private:
  int AnswerQuery(const stRequest& req, stReply& reply) const;
  int ApplySet(const stRequest& req);
  int Accept(CConfigDoc next, std::string& strError);

  CConfigDoc m_doc;
  std::string m_strDefaults;
  std::string m_strState;
};
