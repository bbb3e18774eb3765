#include "CBB/WebCtrl/FormReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "config/AttrTable.h"

namespace {

using Text = std::optional<std::string>;

// A request whose body ends with its last byte.
struct stForm {
  explicit stForm(const std::string& strBody) : pBody(new char[strBody.size()]) {
    memcpy(pBody.get(), strBody.data(), strBody.size());
    msg.body = {pBody.get(), strBody.size()};
  }
  std::unique_ptr<char[]> pBody;
  http_message msg{};
};

template <size_t N = 64>
Text Read(const std::string& strBody, const char* pszName, Presence rule) {
  const stForm form(strBody);
  CFormReader<N> reader(form.msg);
  const char* pszText = reader.Get(pszName, rule);
  return pszText != nullptr ? Text(pszText) : std::nullopt;
}

TEST(CFormReader, TellsPresenceByEachRule) {
  const std::string str63(63, 'x');
  const std::string str64(64, 'x');
  const std::string str500(500, 'x');
  const struct {
    std::string strBody;
    Text lengthAbove0;
    Text nonEmpty;
    std::string strAlways;
  } rows[] = {
      // missing
      {"", {}, {}, ""},
      {"b=1", {}, {}, ""},
      {"a", {}, {}, ""},
      {"xa=1", {}, {}, ""},
      {"ab=1", {}, {}, ""},
      // empty
      {"a=", {}, {}, ""},
      {"a=&b=1", {}, {}, ""},
      {"a=%00", "", {}, ""},  // decoded to one byte, which ends the text
      // there
      {"a=1", "1", "1", "1"},
      {"b=2&a=1", "1", "1", "1"},
      {"a=1&b=2", "1", "1", "1"},
      {"a=1&a=2", "1", "1", "1"},
      {"A=1", "1", "1", "1"},
      {"a=b=c", "b=c", "b=c", "b=c"},
      {"a=1+2", "1 2", "1 2", "1 2"},
      {"a=%26%3D%2b", "&=+", "&=+", "&=+"},
      {"a=%d6%D0", "\xD6\xD0", "\xD6\xD0", "\xD6\xD0"},
      {"a=x%00y", "x", "x", "x"},
      // as long as the buffer
      {"a=" + str63, str63, str63, str63},
      {"a=" + str64, {}, str63, str63},
      {"a=" + str500 + "&b=1", {}, str63, str63},
      // not decodable: the text before it counts, except under the length rule
      {"a=%", {}, {}, ""},
      {"a=%4", {}, {}, ""},
      {"a=%zz", {}, {}, ""},
      {"a=12%zz34", {}, "12", "12"},
      {"a=12%4", {}, "12", "12"},
      {"a=12%4&b=1", {}, "12", "12"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.lengthAbove0, Read(row.strBody, "a", Presence::kLengthAbove0)) << row.strBody;
    EXPECT_EQ(row.nonEmpty, Read(row.strBody, "a", Presence::kNonEmpty)) << row.strBody;
    EXPECT_EQ(Text(row.strAlways), Read(row.strBody, "a", Presence::kAlways)) << row.strBody;
  }
}

TEST(CFormReader, CutsToItsOwnSize) {
  const std::string strBody = "a=" + std::string(600, 'x');
  EXPECT_EQ(Text(std::string(127, 'x')), Read<128>(strBody, "a", Presence::kNonEmpty));
  EXPECT_EQ(Text(std::string(511, 'x')), Read<512>(strBody, "a", Presence::kAlways));
  EXPECT_EQ(Text(std::string(15, 'x')), Read<16>(strBody, "a", Presence::kAlways));
  EXPECT_EQ(Text(), Read<512>(strBody, "a", Presence::kLengthAbove0));
  EXPECT_EQ(Text(std::string(600, 'x')), Read<601>(strBody, "a", Presence::kLengthAbove0));
}

TEST(CFormReader, LeavesNothingOfThePreviousVariable) {
  const stForm form("a=long text&b=%zz&c=x");
  CFormReader<> reader(form.msg);
  EXPECT_STREQ("long text", reader.Get("a", Presence::kAlways));
  EXPECT_STREQ("", reader.Get("b", Presence::kAlways));
  EXPECT_STREQ("x", reader.Get("c", Presence::kAlways));
  EXPECT_STREQ("", reader.Get("d", Presence::kAlways));
}

TEST(CFormReader, ReadsNoBodyAsAnEmptyForm) {
  const http_message msg{};
  CFormReader<> reader(msg);
  EXPECT_EQ(nullptr, reader.Get("a", Presence::kLengthAbove0));
  EXPECT_EQ(nullptr, reader.Get("a", Presence::kNonEmpty));
  EXPECT_STREQ("", reader.Get("a", Presence::kAlways));
}

struct stSample {
  uint8_t ucNumber;
  char strText[8];
  char strAlways[4];
};

constexpr stFormField<stSample> kFields[] = {
    {"ucNumber", Presence::kLengthAbove0, Store<&stSample::ucNumber>},
    {"strText", Presence::kNonEmpty, Store<&stSample::strText>},
    {"strAlways", Presence::kAlways, Store<&stSample::strAlways>}};

TEST(ReadForm, StoresWhatIsThereAndLeavesTheRest) {
  const struct {
    const char* pszBody;
    stSample expected;
  } rows[] = {
      {"", {9, "old", ""}},
      {"ucNumber=300&strText=123456789&strAlways=abcde", {44, "1234567", "abc"}},
      {"UCNUMBER=1&STRTEXT=x&STRALWAYS=y", {1, "x", "y"}},
      {"ucNumber=&strText=&strAlways=", {9, "old", ""}},
      {"ucNumber=none", {0, "old", ""}},
  };
  for (const auto& row : rows) {
    stSample rec{9, "old", "old"};
    const stForm form(row.pszBody);
    ReadForm(form.msg, kFields, rec);
    EXPECT_EQ(row.expected.ucNumber, rec.ucNumber) << row.pszBody;
    EXPECT_STREQ(row.expected.strText, rec.strText) << row.pszBody;
    EXPECT_STREQ(row.expected.strAlways, rec.strAlways) << row.pszBody;
  }
}

TEST(ReadForm, ReadsThroughABufferOfTheGivenSize) {
  const stForm form("ucNumber=" + std::string(100, '0') + "7");
  stSample rec{9, "", ""};
  ReadForm(form.msg, kFields, rec);
  EXPECT_EQ(9, rec.ucNumber);
  ReadForm<256>(form.msg, kFields, rec);
  EXPECT_EQ(7, rec.ucNumber);
}

}  // namespace
