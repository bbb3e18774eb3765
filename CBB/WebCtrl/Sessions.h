// The pages' web sessions, which decide who may fetch the style sheets.
//
// One object in CWebCtrl owns the list. It is kept in memory only, is used only on the HTTP server
// thread and holds at most five logins, oldest first.
#pragma once

#include <cstdint>
#include <list>
#include <string_view>

class CSessions {
 public:
  // Appends a session with the identifier (its first 32 characters count) and the time stamp in
  // seconds since the epoch. A sixth entry removes the oldest. Equal identifiers are not merged.
  void AddSession(const char* pszSessionId, int32_t nTimeStamp);

  // The session gate. `request` is the raw request text as received: request line, headers, body;
  // it need not be terminated and is never read past its length. nNow is the current time in
  // seconds since the epoch. Returns 0 when the request may pass, -1 when it must be refused. A
  // check that passes renews the entry's time stamp; an entry idle for more than 1800 s is removed.
  int CheckSession(std::string_view request, int32_t nNow);

  uint32_t Count() const { return static_cast<uint32_t>(m_listSession.size()); }

 private:
  struct stSession {
    int32_t nTimeStamp;  // of its creation, later of the last check that passed
    char SessionID[64];  // 32 characters, the rest zero
  };

  std::list<stSession> m_listSession;
};
