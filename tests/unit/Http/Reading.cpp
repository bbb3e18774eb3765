#include "tests/unit/Http/Reading.h"

#include <gtest/gtest.h>

#include <numeric>

#include "CBB/Http/Request.h"
#include "tests/unit/Http/Guarded.h"

namespace {

std::string Text(const mg_str& text) { return text.len == 0 ? "-" : std::string(text.p, text.len); }

std::string DescribeWhole(const CRequest& request, char* pReceived) {
  http_message msg;
  request.Fill(pReceived, msg);
  EXPECT_EQ(pReceived, msg.message.p);
  EXPECT_EQ(request.Length(), msg.message.len);
  std::string strText = std::to_string(request.Length()) + ":";
  for (const mg_str* pPart : {&msg.method, &msg.uri, &msg.query_string, &msg.proto}) {
    strText += " " + Text(*pPart);
  }
  strText += " ";
  for (size_t i = 0; msg.header_names[i].len > 0; ++i) {
    strText += "{" + Text(msg.header_names[i]) + "=" + Text(msg.header_values[i]) + "}";
  }
  strText += " " + Text(msg.body) + ";";
  if (!request.KeepsOpen()) strText += " closes";
  if (request.IsHead()) strText += " head";
  return strText + (request.AwaitsContinue() ? " awaits a sign" : "");
}

}  // namespace

std::string Read(std::string_view bytes, const std::vector<size_t>& cuts) {
  CGuarded places[] = {CGuarded(bytes.size()), CGuarded(bytes.size())};
  CRequest request;
  size_t nPlace = 0;
  for (const size_t nCut : cuts) {
    const std::string_view part = bytes.substr(0, nCut);
    request.Read({places[nPlace].Put(part), part.size()});
    nPlace = 1 - nPlace;
    places[nPlace].Put({});
  }
  char* const pReceived = places[nPlace].Put(bytes);
  switch (request.Read({pReceived, bytes.size()})) {
    case Reading::kPartial:
      return request.AwaitsContinue() ? "partial, awaits a sign" : "partial";
    case Reading::kRefused:
      return "refused " + std::to_string(request.Refusal());
    case Reading::kWhole:
      break;
  }
  return DescribeWhole(request, pReceived);
}

std::string ReadHoweverCut(std::string_view bytes) {
  const std::string strRead = Read(bytes);
  for (size_t nCut = 1; nCut < bytes.size(); ++nCut) {
    EXPECT_EQ(strRead, Read(bytes, {nCut})) << bytes << "\ncut at " << nCut;
  }
  std::vector<size_t> all(bytes.size());
  std::iota(all.begin(), all.end(), 0);
  EXPECT_EQ(strRead, Read(bytes, all)) << bytes << "\nbyte by byte";
  if (strRead.compare(0, 7, "partial") == 0) return strRead;
  for (const char* pszBehind : {"GET / HTTP/1.1\r\n\r\n", "\r\n", " ", "\xFF", "0"}) {
    EXPECT_EQ(strRead, Read(std::string(bytes) + pszBehind)) << bytes << "\nbefore " << pszBehind;
  }
  return strRead;
}
