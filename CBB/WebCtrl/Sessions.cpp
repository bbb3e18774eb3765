#include "CBB/WebCtrl/Sessions.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kMaxSessions = 5;
constexpr int32_t kIdleLimitSec = 1800;
constexpr size_t kIdLength = 32;
constexpr size_t kIdOffset = 10;  // the key "SessionID" and one separator character

bool Contains(std::string_view text, std::string_view word) {
  return text.find(word) != std::string_view::npos;
}

}  // namespace

void CSessions::AddSession(const char* pszSessionId, int32_t nTimeStamp) {
  if (m_listSession.size() >= kMaxSessions) m_listSession.pop_front();
  stSession session{};
  session.nTimeStamp = nTimeStamp;
  memcpy(session.SessionID, pszSessionId, strnlen(pszSessionId, kIdLength));
  m_listSession.push_back(session);
}

int CSessions::CheckSession(std::string_view request, int32_t nNow) {
  if (!Contains(request, "page.css") && !Contains(request, "sets.css")) return 0;
  if (!Contains(request, "time")) return 0;
  const size_t nKey = request.find("SessionID");
  if (nKey == std::string_view::npos) return -1;
  // An identifier cut short by the end of the request matches no entry.
  const std::string_view id = request.substr(std::min(nKey + kIdOffset, request.size()), kIdLength);
  // Deliberate: with no session at all the gate lets the request through.
  if (m_listSession.empty()) return 0;

  const auto it = std::find_if(m_listSession.begin(), m_listSession.end(),
                               [id](const stSession& session) { return id == session.SessionID; });
  if (it == m_listSession.end()) return -1;
  if (static_cast<int64_t>(nNow) - it->nTimeStamp <= kIdleLimitSec) {
    it->nTimeStamp = nNow;
    return 0;
  }
  m_listSession.erase(it);
  return -1;
}
