// Reading one request: bytes in, a whole request out, or the status to refuse it with. The reading
// is the parser library's; what it leaves open is settled by HeadRules. An object belongs to one
// connection and the HTTP server thread.
#pragma once

#include <mongoose.h>

#include <cstddef>
#include <memory>
#include <string_view>

// Longer heads are refused. A browser with long cookies and a long Referer fits.
constexpr size_t kMaxHeadBytes = 8191;
constexpr size_t kMaxFieldLines = MG_MAX_HTTP_HEADERS - 1;

enum class Reading {
  kPartial,  // nothing, or not all of it
  kWhole,
  kRefused,
};

struct stRequestParse;

class CRequest {
 public:
  CRequest();
  ~CRequest();
  CRequest(const CRequest&) = delete;
  CRequest& operator=(const CRequest&) = delete;

  // Reads on. received is everything from the request's first byte to the last that has arrived,
  // so it begins with what was given before, wherever that lies now. Empty lines in front of a
  // request are the caller's to take away (EmptyLines). What becomes of a request never depends on
  // how its bytes were cut, nor on what stands behind it. Without memory for it a request is
  // refused with 503, and the shortage is noted.
  Reading Read(std::string_view received);

  Reading State() const { return m_reading; }

  // Of a refused request: the status.
  int Refusal() const { return m_nRefusal; }

  // Of a whole request: how many of the received bytes it is.
  size_t Length() const;

  // Of a partial or whole request: its head is there, and the client waits for a sign before it
  // sends the body.
  bool AwaitsContinue() const;

  // Of a whole request: whether the client would go on using the connection; whether it only wants
  // the reply's head.
  bool KeepsOpen() const;
  bool IsHead() const;

  // Of a whole request: the library's record of it. Its texts lie in the same bytes that were read,
  // which begin at pReceived now, except that a body in chunks, freed of their frames, lies in this
  // object. The record must not outlive either. A missing path is "/". Fields behind the first one
  // without a name are left as they were.
  void Fill(char* pReceived, http_message& msg) const;

  // Forgets the request: the next one is read from its beginning.
  void Clear();

  // The bytes that the request holds beside those received.
  size_t Held() const;

 private:
  void Feed(std::string_view received);
  void Refuse(int nStatus);
  bool SkipExtension(std::string_view received);
  bool Conclude(int nError);

  std::unique_ptr<stRequestParse> m_pParse;  // null as long as nothing has arrived
  Reading m_reading = Reading::kPartial;
  int m_nRefusal = 0;
};

// How many bytes of empty lines stand in front of a request.
size_t EmptyLines(std::string_view received);
