#include "tests/unit/Http/ParsedRequest.h"

#include <gtest/gtest.h>

CParsedRequest::CParsedRequest(std::string_view text) : m_text(text.size()) {
  char* const pText = m_text.Put(text);
  const bool bWhole = m_request.Read({pText, text.size()}) == Reading::kWhole;
  EXPECT_TRUE(bWhole) << text;
  if (!bWhole) return;
  EXPECT_EQ(text.size(), m_request.Length()) << text;
  m_request.Fill(pText, m_msg);
}
