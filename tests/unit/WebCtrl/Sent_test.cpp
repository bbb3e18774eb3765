// What the sets send in edge cases: lists of identifiers, over-long numbers, lock times.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/WebCtrl/OneRequest.h"
#include "tests/unit/control/NetSpace.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kNeedsNetSpace[] = "no private network namespace";
constexpr char kRefusal[] = R"(<VariCfgSec Action="DEVICE_SET" Result="1"/>)";

std::string Set(const std::string& strSection) {
  return R"(<VariCfgSec Action="DEVICE_SET">)" + strSection + "</VariCfgSec>";
}

// The GB28181 set for a form and this many channels.
std::string Gb28181Set(const std::string& strForm, int nChannels) {
  const std::string strVersion = R"(<VariCfgSec Action="DEVICE_QUERY"><stVersion VideoCnt=")" +
                                 std::to_string(nChannels) + R"("/></VariCfgSec>)";
  const stOutcome outcome =
      Ask(Post("/set_GB28181Info", strForm), [&](const std::string& strRequest) {
        return strRequest.find("stVersion") != std::string::npos ? strVersion : kRefusal;
      });
  EXPECT_EQ(2U, outcome.requests.size());
  return outcome.requests.back();
}

// Sub-device k: its lens ID and, as its alarm-input ID, lens ID k + 2.
std::string SubDevice(int k, const std::string& strLens, const std::string& strAlarm) {
  return "<SUBDEVID_" + std::to_string(k) + " strFD_LensId=\"" + strLens + "\" strFD_AlarmInId=\"" +
         strAlarm + "\"/>";
}

TEST(SetGb28181, LeavesNothingOfALensIdBehindAShorterAlarmId) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const std::string strSent =
        Gb28181Set("strFD_LensId=*lens-0*lens-1*lens-2*lens-3*&strFD_AlarmInId=*a*bb*c**", 4);
    // The alarm IDs 0 to 3 are in the place of the lens IDs 2 to 5.
    EXPECT_THAT(strSent, HasSubstr(SubDevice(0, "lens-0", "a") + SubDevice(1, "lens-1", "bb") +
                                   SubDevice(2, "a", "c") + SubDevice(3, "bb", "") +
                                   SubDevice(4, "c", "") + SubDevice(5, "", "")));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(SetGb28181, IgnoresTheChannelsBeyondTheEighth) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const std::string strSent = Gb28181Set("strFD_LensId=*0*1*2*3*4*5*6*7*8*", 9);
    EXPECT_THAT(strSent, HasSubstr(SubDevice(5, "5", "7") + SubDevice(6, "6", "") +
                                   SubDevice(7, "7", "") + "</stGB28181SubID>"));
    const std::string strAlarms = Gb28181Set("strFD_AlarmInId=*0*1*2*3*4*5*6*7*8*", 9);
    EXPECT_THAT(strAlarms, HasSubstr(SubDevice(6, "4", "6") + SubDevice(7, "5", "7") + "</"));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// A list of 511 characters is read whole; of a longer one, the last character that fits is dropped
// like the closing star.
TEST(SetGb28181, ReadsAListOfTheLongestLengthWhole) {
  const struct {
    size_t nLength;
    const char* pszLast;
  } rows[] = {{510, "XYZ"}, {511, "XYZ"}, {512, "XY"}, {513, "X"}};
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const char* pszName : {"strFD_LensId", "strFD_AlarmInId"}) {
      for (const auto& row : rows) {
        const std::string strList = "*" + std::string(row.nLength - 6, 'i') + "*XYZ*";
        EXPECT_THAT(Gb28181Set(std::string(pszName) + "=" + strList, 8),
                    HasSubstr("\"" + std::string(row.pszLast) + "\""))
            << row.nLength << pszName;
      }
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// 63 characters are read; a longer number counts as missing and is not cut.
TEST(SetStream, TakesAnOverLongNumberForMissing) {
  const std::string strLong(62, '0');
  const struct {
    std::string strNumber;
    int nFrames, nBits;
  } rows[] = {{"25", 25, 25}, {strLong + "7", 7, 7}, {"7" + strLong + "0", 0, 0}, {"", 0, 0}};
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const auto& row : rows) {
      const std::string strRates = "ucFD_FrameRate=\"" + std::to_string(row.nFrames) +
                                   "\" uiFD_BitRate=\"" + std::to_string(row.nBits) + "\" />";
      const auto Requests = [&](const char* pszUri, const std::string& strPrefix) {
        return Ask(Post(pszUri, "ucFD_" + strPrefix + "FrameRate=" + row.strNumber + "&uiFD_" +
                                    strPrefix + "BitRate=" + row.strNumber),
                   kRefusal)
            .requests;
      };
      EXPECT_THAT(Requests("/set_MainStreamInfo", ""),
                  testing::ElementsAre(Set("<stMainStream StartChn=\"0\"><stVideoPara><VChn_0 " +
                                           strRates + "</stVideoPara></stMainStream>")));
      EXPECT_THAT(Requests("/set_SubStreamInfo", "S"),
                  testing::ElementsAre(Set("<stSubStream ucFD_EncodeMode=\"3\" " + strRates)));
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

std::string LockSet(int nErrors, const std::string& strTime) {
  return Set("<stLockOfPassword ucFD_ErrorCount=\"" + std::to_string(nErrors) +
             "\" uiFD_LockTime=\"" + strTime + "\" />");
}

// From 2^31 on a lock time is sent and shown as the negative number with the same 32 bits.
TEST(LockTime, KeepsItsBitsFrom2To31On) {
  const struct {
    const char* pszGiven;
    const char* pszSent;
  } rows[] = {{"2147483647", "2147483647"},
              {"2147483648", "-2147483648"},
              {"4294967295", "-1"},
              {"4294967296", "0"}};
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const auto& row : rows) {
      EXPECT_THAT(
          Ask(Post("/set_LockOfPassword", std::string("ucFD_ErrorCount=3&time=") + row.pszGiven),
              kRefusal)
              .requests,
          testing::ElementsAre(LockSet(3, row.pszSent)));
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// A device's lock that lies ahead of our clock: with five errors it counts as over and is cleared.
TEST(LockTime, AheadOfTheClockCountsAsOver) {
  const struct {
    int nErrors;
    const char* pszTime;
    const char* pszShown;
  } rows[] = {{5, "2147483648", "-2147483648"}, {255, "3000000000", "-1294967296"}};
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const auto& row : rows) {
      const std::string strLock = R"(<VariCfgSec Action=""><stLockOfPassword ucFD_ErrorCount=")" +
                                  std::to_string(row.nErrors) + R"(" uiFD_LockTime=")" +
                                  row.pszTime + R"("/></VariCfgSec>)";
      const stOutcome outcome =
          Ask(Post("/get_LockOfPassword", ""), [&](const std::string& strRequest) {
            return strRequest.find("_SET") != std::string::npos ? kRefusal : strLock;
          });
      EXPECT_EQ(R"({ "ucFD_ErrorCount": "0", "time": ")" + std::string(row.pszShown) +
                    R"(" , "result": 1 })",
                TakeReply(outcome.strSent).Body());
      ASSERT_EQ(2U, outcome.requests.size());
      EXPECT_EQ(LockSet(0, row.pszShown), outcome.requests[1]);
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// With fewer errors the time since the lock is shown, which is negative here: the number wraps.
TEST(LockTime, AheadOfTheClockShowsANegativeTime) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const time_t before = time(nullptr);
    const std::string strLock = R"(<VariCfgSec Action=""><stLockOfPassword ucFD_ErrorCount="4")"
                                R"( uiFD_LockTime=")" +
                                std::to_string(before) + R"("/></VariCfgSec>)";
    const stOutcome outcome = Ask(Post("/get_LockOfPassword", ""), strLock);
    int nShown = 0;
    ASSERT_EQ(1, sscanf(TakeReply(outcome.strSent).Body().c_str(),
                        R"({ "ucFD_ErrorCount": "4", "time": "%d" , "result": 1 })", &nShown));
    EXPECT_GE(nShown, -28800);
    EXPECT_LE(nShown, -28800 + (time(nullptr) - before));
    EXPECT_EQ(1U, outcome.requests.size());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

}  // namespace
