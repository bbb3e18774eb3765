// The web sessions of the pages: who may fetch the style sheets.
//
// One object in CWebCtrl owns the list. It lives in memory only, is touched only from the HTTP
// server thread and holds at most five logins, the oldest at the front.
#pragma once

#include <cstdint>
#include <list>
#include <string_view>

class CSessions {
 public:
  // Appends a session with the identifier (its first 32 characters count) and the time stamp in
  // seconds since the epoch. A sixth entry pushes the oldest out. Equal identifiers are not merged.
  void AddSession(const char* pszSessionId, int32_t nTimeStamp);

  // The session gate. `request` is the raw request text as received: request line, headers, body;
  // it need not be terminated and is never read beyond its length. nNow is the current time in
  // seconds since the epoch. Returns 0 when the request may pass, -1 when it is to be refused. A
  // passed check renews the entry's time stamp; an entry idle for more than 1800 s is removed.
  int CheckSession(std::string_view request, int32_t nNow);

  uint32_t Count() const { return static_cast<uint32_t>(m_listSession.size()); }

 private:
  struct stSession {
    int32_t nTimeStamp;  // creation, then the last check that passed
    char SessionID[64];  // 32 characters, the rest zero
  };

  std::list<stSession> m_listSession;
};
