// A request's record as the service's handlers get it, over an exact, unterminated copy of the
// text.
#pragma once

#include <mongoose.h>

#include <string_view>

#include "CBB/Http/Request.h"
#include "tests/unit/Http/Guarded.h"

class CParsedRequest {
 public:
  // Records a failure when the text is not exactly one whole request.
  explicit CParsedRequest(std::string_view text);

  http_message* Get() { return &m_msg; }

 private:
  CGuarded m_text;
  CRequest m_request;
  http_message m_msg{};
};
