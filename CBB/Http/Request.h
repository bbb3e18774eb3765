// Reads one request: bytes in, a whole request out, or the status to refuse it with. The parser
// library does the reading; HeadRules settles what it leaves open. An object belongs to one
// connection and the HTTP server thread.
#pragma once

#include <mongoose.h>

#include <cstddef>
#include <memory>
#include <string_view>

// Longer heads are refused. A browser's long cookies and a long Referer fit.
constexpr size_t kMaxHeadBytes = 8191;
constexpr size_t kMaxFieldLines = MG_MAX_HTTP_HEADERS - 1;

enum class Reading {
  kPartial,  // nothing yet, or only a part
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

  // Reads on. received holds everything from the request's first byte to the last that has arrived,
  // so it begins with what was passed before, wherever that lies now. The caller removes empty
  // lines before a request (EmptyLines). The outcome never depends on how the bytes were cut or on
  // what follows the request. If memory runs out the request is refused with 503, and the shortage
  // is noted.
  Reading Read(std::string_view received);

  Reading State() const { return m_reading; }

  // For a refused request: the status.
  int Refusal() const { return m_nRefusal; }

  // For a whole request: how many of the received bytes belong to it.
  size_t Length() const;

  // For a partial or whole request: its head is there, and the client waits for "100 Continue"
  // before it sends the body.
  bool AwaitsContinue() const;

  // For a whole request: whether the client wants to keep the connection; whether it wants only the
  // reply's head.
  bool KeepsOpen() const;
  bool IsHead() const;

  // For a whole request: the library's record of it. Its texts lie in the bytes that were read,
  // which now begin at pReceived; a chunked body lies in this object, without its framing. The
  // record must not outlive either. A missing path is "/". Fields behind the first one without a
  // name are left as they were.
  void Fill(char* pReceived, http_message& msg) const;

  // Forgets the request: the next one is read from its beginning.
  void Clear();

  // The bytes that the request holds besides those received.
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

// How many bytes of empty lines precede a request.
size_t EmptyLines(std::string_view received);
