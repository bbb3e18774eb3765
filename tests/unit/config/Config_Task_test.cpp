// What single importers do beyond the walk, and the task itself.
#include "config/Config_Task.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

namespace {

bool g_bRefuseMemory = false;
int g_nRefused = 0;

// The first element of a reply's text.
class CSection {
 public:
  explicit CSection(const char* pszText) { m_doc.Parse(pszText); }
  operator TiXmlElement*() { return m_doc.RootElement(); }

 private:
  TiXmlDocument m_doc;
};

// Makes calloc fail as long as it lives.
class CRefuseMemory {
 public:
  CRefuseMemory() { g_bRefuseMemory = true; }
  ~CRefuseMemory() { g_bRefuseMemory = false; }
};

std::unique_ptr<CConfig_Task> NewTaskWithoutMemory() {
  const CConfig_Task other;  // holds the lists left by an earlier task
  const CRefuseMemory refuse;
  return std::make_unique<CConfig_Task>();
}

}  // namespace

// Linked in place of calloc (--wrap), so that a test can make it fail.
extern "C" void* __real_calloc(size_t nCount, size_t nSize);
extern "C" void* __wrap_calloc(size_t nCount, size_t nSize);
void* __wrap_calloc(size_t nCount, size_t nSize) {
  if (!g_bRefuseMemory) return __real_calloc(nCount, nSize);
  ++g_nRefused;
  return nullptr;
}

static_assert(!std::is_copy_constructible_v<CConfig_Task>);
static_assert(!std::is_copy_assignable_v<CConfig_Task>);
static_assert(std::has_virtual_destructor_v<CConfig_Task>);

TEST(ConfigTask, StartsWithAZeroedRecord) {
  const CConfig_Task task;
  const auto* pBytes = reinterpret_cast<const unsigned char*>(&task.Record());
  EXPECT_TRUE(std::all_of(pBytes, pBytes + sizeof(stConfig), [](unsigned char c) { return !c; }));
}

TEST(ConfigTask, FillsItsOwnRecordWithoutADestination) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stSubStream(CSection(R"(<s uiFD_BitRate="2048"/>)")), 0);
  EXPECT_EQ(task.Record().stSubStreamInfo.uiFD_BitRate, 2048u);
}

TEST(ConfigTask, LeavesItsOwnRecordWithADestination) {
  CConfig_Task task;
  stConfig config{};
  EXPECT_EQ(task.Import_stSubStream(CSection(R"(<s uiFD_BitRate="2048"/>)"), &config), 0);
  EXPECT_EQ(config.stSubStreamInfo.uiFD_BitRate, 2048u);
  EXPECT_EQ(task.Record().stSubStreamInfo.uiFD_BitRate, 0u);
}

TEST(ConfigTask, ImportsWithoutMemoryForItsLists) {
  const int nBefore = g_nRefused;
  const std::unique_ptr<CConfig_Task> pTask = NewTaskWithoutMemory();
  EXPECT_EQ(g_nRefused - nBefore, 2);
  EXPECT_EQ(pTask->Import_stSubStream(CSection(R"(<s uiFD_BitRate="2048"/>)")), 0);
  EXPECT_EQ(pTask->Record().stSubStreamInfo.uiFD_BitRate, 2048u);
}

TEST(BaseInfo, AcceptsDeviceNumbersOf5To12Characters) {
  const struct {
    const char* pszDeviceNo;
    int nRet;
  } kRows[] = {{"", -1},
               {"1234", -1},
               {"12345", 0},
               {"123456789012", 0},
               {"1234567890123", -1},
               {"12345678901234567890", -1}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.pszDeviceNo);
    CConfig_Task task;
    const std::string strXml = std::string("<s strFD_DeviceNo=\"") + row.pszDeviceNo + "\"/>";
    testing::internal::CaptureStdout();
    EXPECT_EQ(task.Import_stBaseInfo(CSection(strXml.c_str())), row.nRet);
    const std::string strComplaint =
        std::string("CConfig_Task::Import_stBaseInfo, invalid device id:") + row.pszDeviceNo +
        ".\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.nRet ? strComplaint : "");
    EXPECT_STREQ(task.Record().stBaseInfoInfo.strFD_DeviceNo, row.nRet ? "" : row.pszDeviceNo);
  }
}

TEST(BaseInfo, ReadsNothingBehindARejectedDeviceNumber) {
  CConfig_Task task;
  testing::internal::CaptureStdout();
  EXPECT_EQ(task.Import_stBaseInfo(
                CSection(R"(<s ucFD_TimeZone="8" strFD_DeviceNo="1234" ucFD_DateStyle="2"/>)")),
            -1);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(task.Record().stBaseInfoInfo.ucFD_TimeZone, 8);
  EXPECT_EQ(task.Record().stBaseInfoInfo.ucFD_DateStyle, 0);
}

TEST(BaseInfo, AcceptsASectionWithoutDeviceNumber) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stBaseInfo(CSection(R"(<s ucFD_TimeZone="8"/>)")), 0);
}

TEST(Cms, ChoosesTheSlot) {
  const struct {
    int nSlot;
    int nStored;
  } kRows[] = {{0, 0}, {1, 1}, {4, 4}, {5, 0}, {-1, 0}, {2147483647, 0}};
  for (const auto& row : kRows) {
    CConfig_Task task;
    EXPECT_EQ(task.Import_stCMS(CSection(R"(<s usFD_Port="6608"/>)"), row.nSlot), 0);
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(task.Record().stCMSInfo[i].usFD_Port, i == row.nStored ? 6608 : 0) << row.nSlot;
  }
}

TEST(Vehicle, ChoosesTheCopy) {
  const struct {
    int nCopy;
    int nStored;
  } kRows[] = {{0, 0}, {1, 1}, {2, 0}, {-1, 0}};
  for (const auto& row : kRows) {
    CConfig_Task task;
    EXPECT_EQ(task.Import_stVehicle(CSection(R"(<s strFD_CarVIN="VIN"/>)"), row.nCopy), 0);
    for (int i = 0; i < 2; ++i)
      EXPECT_STREQ(task.Record().stVehicleInfo[i].strFD_CarVIN, i == row.nStored ? "VIN" : "");
  }
}

TEST(MainStream, AlignsTheRegionOfInterest) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stMainStream(CSection(
                R"(<s><stVideoPara><CHN_0 ucFD_ROI_X="33" ucFD_ROI_Y="15" ucFD_ROI_Wight="32")"
                R"( ucFD_ROI_Height="31"/></stVideoPara></s>)")),
            0);
  const stVideoItem& item = task.Record().stMainStreamInfo.stVideoPara[0];
  EXPECT_EQ(item.ucFD_ROI_X, 32u);
  EXPECT_EQ(item.ucFD_ROI_Y, 0u);
  EXPECT_EQ(item.ucFD_ROI_Wight, 48u);
  EXPECT_EQ(item.ucFD_ROI_Height, 32u);
}

TEST(SystemInfo, KeepsTheRevisionOfTheModem) {
  const std::string strLong(200, 'R');
  const struct {
    std::string strAti, strStored;
  } kRows[] = {{"Modem X\r\nRevision: ABC123\r\n\r\nOK", " ABC123"},
               {"Revision:ABC123", "ABC123"},
               {"Revision:ABC\nDEF\rGHI\r\n", "ABC\nDEF\rGHI"},
               {"Revision:A\r\nRevision:B\r\n", "A"},
               {"Revision:", ""},
               {"Revision:\r\nABC", ""},
               {"Revision ABC: 1", ""},
               {"revision: ABC", ""},
               {"", ""},
               {"Revision:" + strLong, strLong.substr(0, 63)}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.strAti);
    CConfig_Task task;
    TiXmlElement elem("s");
    elem.SetAttribute("ATI", row.strAti);
    EXPECT_EQ(task.Import_stSystemInfo(&elem), 0);
    EXPECT_EQ(task.Record().stSystemInfoInfo.ATI, row.strStored);
  }
}

TEST(SystemInfo, EmptiesTheRevisionOfAnotherText) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stSystemInfo(CSection(R"(<s ATI="Revision:OLD"/>)")), 0);
  EXPECT_STREQ(task.Record().stSystemInfoInfo.ATI, "OLD");
  EXPECT_EQ(task.Import_stSystemInfo(CSection(R"(<s ATI="no carrier"/>)")), 0);
  EXPECT_STREQ(task.Record().stSystemInfoInfo.ATI, "");
}

TEST(Gb28181, SharesTheStorageOfLensAndAlarmIdentifiers) {
  stGB28181 rec{};
  for (int k = 0; k < 8; ++k) {
    EXPECT_EQ(rec.LensId(k), rec.strSubId[k]);
    EXPECT_EQ(rec.AlarmInId(k), rec.strSubId[k + 2]);
  }
  for (int k = 0; k < 6; ++k) EXPECT_EQ(rec.AlarmInId(k), rec.LensId(k + 2));
}

TEST(Gb28181, ReadsTheFirstSubDeviceOnly) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stGB28181(CSection(
                R"(<s><stGB28181SubID><SUBDEVID_0 strFD_LensId="L" strFD_AudioInId="A")"
                R"( strFD_AlarmInId="I"/><SUBDEVID_1 strFD_LensId="X"/></stGB28181SubID></s>)")),
            0);
  const stGB28181& rec = task.Record().stGB28181Info;
  EXPECT_STREQ(rec.LensId(0), "L");
  EXPECT_STREQ(rec.LensId(1), "");
  EXPECT_STREQ(rec.AlarmInId(0), "I");
  EXPECT_STREQ(rec.strFD_AudioInId[0], "A");
}

TEST(GSensor, AsksForRecalibrationAndReadsOn) {
  CConfig_Task task;
  EXPECT_EQ(task.Import_stGSensor(CSection(R"(<s fFD_X="1.5" ReCalibrate="" fFD_Y="2.5"/>)")), 1);
  EXPECT_EQ(task.Record().stGSensorInfo.fFD_X, 1.5f);
  EXPECT_EQ(task.Record().stGSensorInfo.fFD_Y, 2.5f);
  EXPECT_EQ(task.Import_stGSensor(CSection(R"(<s recalibrate="0"/>)")), 1);
  EXPECT_EQ(task.Import_stGSensor(CSection(R"(<s fFD_X="1"/>)")), 0);
}

// Two containers in sequence: what ends the first one ends the import.
TEST(AlarmLinkage, LeavesLaterContainersUnreadBehindAnItemBeyondTheLast) {
  const struct {
    const char* pszItem;
    int nRet;
    uint8_t ucNumber;  // of the first item in the second container
  } kRows[] = {{"ITEM_7", 0, 3}, {"ITEM_8", 0, 0}, {"ITEM_9", 0, 0}, {"ITEM", -1, 0}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.pszItem);
    CConfig_Task task;
    const std::string strXml = std::string("<s><stAlarmLinkageItem><") + row.pszItem +
                               R"(/></stAlarmLinkageItem><stAlarmOutIO><IO_0 ucIONumber="3"/>)"
                               "</stAlarmOutIO></s>";
    EXPECT_EQ(task.Import_stAlarmLinkage(CSection(strXml.c_str())), row.nRet);
    EXPECT_EQ(task.Record().stAlarmLinkageInfo.stAlarmOutIO[0].ucIONumber, row.ucNumber);
  }
}

TEST(Ipc, LeavesLaterContainersUnreadBehindAnItemBeyondTheLast) {
  const struct {
    const char* pszItem;
    int nRet;
    uint32_t uiEnd;  // of the first item in the second container
  } kRows[] = {{"CHN_0", 0, 60}, {"CHN_9", 0, 0}, {"CHN_10", -1, 0}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.pszItem);
    CConfig_Task task;
    const std::string strXml = std::string("<s><stChnIpc><") + row.pszItem +
                               R"(/></stChnIpc><stFunTPeriod><T_0 strFD_EndT="00:01:00"/>)"
                               "</stFunTPeriod></s>";
    EXPECT_EQ(task.Import_stIpc(CSection(strXml.c_str())), row.nRet);
    EXPECT_EQ(task.Record().stIpcInfo.stFunTPeriod[0].strFD_EndT, row.uiEnd);
  }
}

TEST(Reserve, ReadsWholeBytes) {
  const struct {
    const char* pszText;
    std::string strBytes;
  } kRows[] = {{"", ""},  {"AB", "\xAB"}, {"0aFF", "\x0A\xFF"}, {"ABA", "\xAB"},
               {"A", ""}, {"ABxx", ""},   {"0xAB", ""}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.pszText);
    CConfig_Task task;
    TiXmlElement elem("s");
    elem.SetAttribute("ucReserveData", row.pszText);
    EXPECT_EQ(task.Import_stReserve(&elem), 0);
    stReserve expected{};
    memcpy(expected.ucReserveData, row.strBytes.data(), row.strBytes.size());
    EXPECT_EQ(memcmp(&task.Record().stReserveInfo, &expected, sizeof(expected)), 0);
  }
}

TEST(Reserve, StoresNothingOfATextLongerThanTheBlock) {
  constexpr size_t kBytes = sizeof(stReserve::ucReserveData);
  const struct {
    size_t nDigits;
    uint8_t ucStored;
  } kRows[] = {{2 * kBytes, 0xFF}, {2 * kBytes + 1, 0xFF}, {2 * kBytes + 2, 0}, {30000, 0}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.nDigits);
    CConfig_Task task;
    TiXmlElement elem("s");
    elem.SetAttribute("ucReserveData", std::string(row.nDigits, 'F'));
    EXPECT_EQ(task.Import_stReserve(&elem), 0);
    const stReserve& rec = task.Record().stReserveInfo;
    EXPECT_EQ(std::count(rec.ucReserveData, rec.ucReserveData + kBytes, row.ucStored), kBytes);
    EXPECT_EQ(task.Record().stIpcInfo.ucFD_Enable, 0);
  }
}
