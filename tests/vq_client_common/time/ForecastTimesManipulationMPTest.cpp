#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <support/diagnostics/TDiag.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

// Opens what the class keeps for its derived classes.
class OpenForecastTimes : public ForecastTimesManipulationMP {
 public:
  using ForecastTimesManipulationMP::FindDcTimeInfo;
  using ForecastTimesManipulationMP::GetCommAdminStructByDc;
  using ForecastTimesManipulationMP::GetUtcOffset;
};

struct RecordTexts {
  const char* name = "DC";
  const char* timeZone = "(GMT)";
  const char* newDay = "";
  const char* odat = "";
  const char* summerStart = "";
  const char* summerEnd = "";
};

const os_time_and_date kNow(os_time(12, 0, 0), os_date(2024, 7, 1));
constexpr std::int64_t kJuly1 = 1719792000;  // 2024-07-01 00:00 UTC
using Lines = std::vector<std::string>;

class ForecastTimesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TDiag::Instance()->SetMinimumDebugLevel(5);
    TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
      m_lines.push_back(std::to_string(line.level) + " " + std::string(line.text));
      if (line.level == 4) m_onRefusal(++m_refusals);
    });
  }
  void TearDown() override {
    TDiag::Instance()->RemoveAllSinks();
    TDiag::Instance()->SetMinimumDebugLevel(1);
    os_time_and_date::set_clock(nullptr);
  }
  void Append(const RecordTexts& texts) {
    m_records.length(m_records.length() + 1);
    QCSCommAdminStruct& record = m_records[m_records.length() - 1];
    record.m_Name = texts.name;
    record.m_TimeZone = texts.timeZone;
    record.m_NewDayTime = texts.newDay;
    record.m_Odat = texts.odat;
    record.m_StartSummerTime = texts.summerStart;
    record.m_EndSummerTime = texts.summerEnd;
  }
  void InitWith(const RecordTexts& texts, bool useOdat = false,
                const os_time_and_date& now = kNow) {
    m_records.length(0);
    Append(texts);
    m_times.Init(now, false, &m_records, useOdat);
  }

  QCSCommAdminSeq m_records;
  OpenForecastTimes m_times;
  Lines m_lines;
  int m_refusals = 0;
  std::function<void(int)> m_onRefusal;
};

TEST_F(ForecastTimesTest, ReadsTheOffsetInTheBrackets) {
  const struct {
    const char* text;
    int seconds;
    const char* missing = nullptr;
  } cases[] = {{"(GMT+02:00) Jerusalem", -7200},
               {"(GMT-05:00)", 18000},
               {"(GMT+05.30)", -19800},
               {"a (GMT+1:30) (+9:00)", -5400},
               {"(GMT-00:30)", 1800},
               {"(GMT-1:30)", -1800},
               {"(a-b+05:30)", 19800},
               {"(05:30+-)", -19800},
               {"(ab:x)", 0},
               {"(ab:99999999999)", 60},
               {"(GMT)", 0},
               {"(GMT+02:)", 0},
               {"x(GMT) 05:30", 0},
               {"(:)", 0},
               {"GMT+2", 0, "left"},
               {"GMT+02:00)", 0, "left"},
               {"()", 0, "right"},
               {")(GMT+02:00", 0, "right"}};
  for (const auto& c : cases) {
    m_lines.clear();
    EXPECT_EQ(m_times.GetUtcOffset(c.text), c.seconds) << c.text;
    const std::string line = "1 Unsupported GMT string '" + std::string(c.text) + "', missing ";
    EXPECT_EQ(m_lines, c.missing == nullptr ? Lines() : Lines{line + c.missing + " bracket"});
  }
  for (const char* text : {"(1:00)", "(:00)", "x(.5)"}) {
    EXPECT_THROW(m_times.GetUtcOffset(text), std::out_of_range) << text;
  }
}

TEST_F(ForecastTimesTest, ReadsTheNewDay) {
  const struct {
    const char* text;
    std::int32_t seconds;
  } usable[] = {{"", 0},          {"0000", 0},       {"07:30", 27000},  {"+7:30", 27000},
                {"-1:30", -1800}, {"07030", 253800}, {"99:99", 362340}, {"abcde", 0}};
  for (const auto& c : usable) {
    EXPECT_TRUE(OpenForecastTimes::IsUsableNewDay(c.text)) << c.text;
    InitWith({.newDay = c.text});
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->newDayOffset, c.seconds) << c.text;
  }
  for (const char* text : {"0700", "0", "0000 0", "7:00"}) {
    EXPECT_FALSE(OpenForecastTimes::IsUsableNewDay(text)) << text;
  }
}

TEST_F(ForecastTimesTest, AnUnusableNewDayIsTakenUpAgainForAsLongAsItStands) {
  Append({.name = "DC1"});
  Append({.name = "DC2", .newDay = "0700"});
  Append({.name = "DC3", .newDay = "x"});
  m_onRefusal = [this](int refusals) {
    if (refusals == 1000) m_records[1].m_NewDayTime = "07:00";
    if (refusals == 1003) m_records.length(2);
  };
  m_times.Init(kNow, false, &m_records, false);
  Lines lines(1000, "4 Invalid new day time format (0700) for datacenter DC2, skip it");
  lines.resize(1003, "4 Invalid new day time format (x) for datacenter DC3, skip it");
  EXPECT_EQ(m_lines, lines);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC2")->newDayOffset, 25200);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC3"), nullptr);
}

TEST_F(ForecastTimesTest, TakesTheWorkingDateFromTheRecordOrTheClock) {
  os_time_and_date::set_clock(
      [] { return os_time_and_date(os_time(3, 0, 0), os_date(2031, 5, 6)).utc_time_and_date(); });
  const struct {
    const char* odat;
    bool useOdat;
    os_date date;
    std::size_t lines;
    std::int64_t reference;  // what an unknown data center gets
  } cases[] = {{"20240229", true, {2024, 2, 29}, 0, 1709164800},
               {"", true, {2031, 5, 6}, 1, 1935802800},
               {"2024229", true, {2031, 5, 6}, 1, 1935802800},
               {"202402290", true, {2031, 5, 6}, 1, 1935802800},
               {"20240229", false, {2024, 7, 1}, 0, kJuly1 + 43200}};
  for (const auto& c : cases) {
    m_lines.clear();
    InitWith({.odat = c.odat}, c.useOdat);
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->date, c.date) << c.odat;
    EXPECT_EQ(m_lines, Lines(c.lines, "5 VLT: DC ODAT is empty - using Current Time"));
    EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), c.reference) << c.odat;
  }
  EXPECT_THROW(InitWith({.odat = "20230229"}, true), os_toolkit_error);
}

TEST_F(ForecastTimesTest, SummerMarksMakeARuleOrNoneOrRaise) {
  const struct {
    const char *start, *end;
    os_calendar_date from, to;
    int firstYear, lastYear;
  } cases[] = {{"20240331", "20241027", {3, 31}, {10, 27}, 2024, 2024},
               {"20240331", "202410", {3, 31}, {10, 0}, 2024, 2024},
               {"2024 3", "2025102799", {3, 0}, {10, 27}, 2024, 2025},
               {"abcdefgh", "-123-4-5", {0, 0}, {-4, -5}, 0, -123}};
  for (const auto& c : cases) {
    InitWith({.summerStart = c.start, .summerEnd = c.end});
    const os_time_zone& zone = m_times.GetOsTimeZone("DC");
    EXPECT_EQ(zone.name() + zone.abbreviation(), "UTCUTC");
    ASSERT_EQ(zone.rules().size(), 1U) << c.start;
    const os_simple_time_zone_rule& rule = zone.rules().front();
    EXPECT_EQ(rule.start(), c.from);
    EXPECT_EQ(rule.end(), c.to);
    EXPECT_EQ(rule.first_year(), c.firstYear);
    EXPECT_EQ(rule.last_year(), c.lastYear);
    EXPECT_EQ(rule.adjustment(), os_time_period(3600));
  }
  InitWith({.summerStart = "2024033", .summerEnd = "2024102"});
  EXPECT_TRUE(m_times.GetOsTimeZone("DC").rules().empty());
  // The first twice: nothing half-made is kept under the key of the marks that raised.
  const RecordTexts raising[] = {{.summerStart = "20240331"},
                                 {.summerStart = "20240331"},
                                 {.summerStart = "20241", .summerEnd = "20241027"},
                                 {.timeZone = "(1:00)"}};
  for (const RecordTexts& texts : raising) EXPECT_THROW(InitWith(texts), std::out_of_range);
}

TEST_F(ForecastTimesTest, MidnightAndOffsetFollowTheSummerMarks) {
  const struct {
    RecordTexts texts;
    std::int64_t midnight;
    std::int32_t utcOffset;
  } cases[] = {
      {{"DC", "(GMT+02:00)", "", "20240701"}, kJuly1 - 7200, -7200},
      {{"DC", "(GMT+02:00)", "", "20240701", "20240331", "20241027"}, kJuly1 - 10800, -10800},
      {{"DC", "(GMT-05:00)", "", "20240701", "20231001", "20240401"}, kJuly1 + 18000, 18000},
      // The offset is that at the new-day time, which may lie beyond the day.
      {{"DC", "(GMT)", "24:00", "20240630", "20240701", "20241027"}, kJuly1 - 86400, -3600},
      {{"DC", "(GMT)", "-1:00", "20240701", "20240701", "20241027"}, kJuly1 - 3600, 0},
      {{"DC", "(GMT)", "-1:00", "20240701", "20240331", "20240701"}, kJuly1, -3600},
      // Beyond 32 bits the midnight wraps.
      {{"DC", "(GMT)", "", "20400101"}, 2208988800 - 4294967296, 0}};
  for (const auto& c : cases) {
    InitWith(c.texts, true);
    EXPECT_EQ(m_times.GetOdatMidnightForDc("DC"), c.midnight) << "case " << &c - cases;
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->utcOffset, c.utcOffset) << "case " << &c - cases;
  }
}

TEST_F(ForecastTimesTest, ZonesAreSharedAndOutliveTheTable) {
  Append({.name = "DC1", .timeZone = "(GMT+02:00)"});
  Append({.name = "DC2", .timeZone = "(GMT+02:00)"});
  Append({.name = "DC3", .timeZone = "(GMT+03:00)"});
  Append({.name = "DC1", .timeZone = "(GMT+03:00)"});
  m_times.Init(kNow, true, &m_records, false);
  EXPECT_TRUE(m_times.IsConvertTimeLocally());
  const os_time_zone& zone = m_times.GetOsTimeZone("DC2");
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &m_times.GetOsTimeZone("DC3")) << "the last record";

  m_records.length(2);
  OpenForecastTimes copy = m_times;
  m_times.Init(kNow, false, &m_records, false);
  EXPECT_FALSE(m_times.IsConvertTimeLocally());
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &zone);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC3"), nullptr);
  m_times = OpenForecastTimes();
  EXPECT_EQ(copy.GetOsTimeZone("DC3").offset(), os_time_period(-10800));
  copy.SetConvertTimeLocally(false);
  EXPECT_FALSE(copy.IsConvertTimeLocally());
}

TEST_F(ForecastTimesTest, ARecordIsFoundByTheBufferOfItsNameAndNotByACopy) {
  const std::string name = "DC";
  Append({});
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), nullptr);
  m_records[0].m_Name = const_cast<char*>(name.c_str());  // lent, and taken back below
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), &m_records[0]);
  EXPECT_EQ(m_records[0].m_Name._retn(), name.c_str());
}

TEST_F(ForecastTimesTest, ConvertsWhatADataCentersClockShows) {
  InitWith({.timeZone = "(GMT+02:00)"});
  const std::int64_t midnight = kJuly1 - 7200;
  const struct {
    const char* name;
    long long t;
    const char* text;
  } cases[] = {{"DC", midnight, "00:00:00"},
               {"DC", midnight + 86400 + 25509, "(+1)07:05:09"},
               {"DC", midnight - 1, "(-1)23:59:59"},
               {"DC", midnight - 259200, "(-3)00:00:00"},
               {"DC", midnight - 259201, ""},
               {"DC", NO_TIME, ""},
               {"DC", midnight + (1LL << 32), "00:00:00"},
               // An unknown one is logged and taken as UTC, up to the start of day 0.
               {"none", 3660, "01:01"},
               {"none", 259200, "00:00"},
               {"none", 259201, ""},
               {"none", NO_TIME, ""},
               {"none", -60, "00:-1"},
               {"none", -43200, "-12:00"},
               {"none", -(1LL << 32), "00:00"},
               {"none", INT_MIN, "-3:-14"}};
  for (const auto& c : cases) {
    m_lines.clear();
    EXPECT_EQ(m_times.ConvertTimeToString(c.t, c.name), c.text) << c.name << c.t;
    EXPECT_EQ(m_lines, *c.name == 'D' ? Lines()
                                      : Lines{"1 Failed to get DC Time Info for 'none',Time will "
                                              "be converted to NO_TIME"});
  }
  m_lines.clear();
  EXPECT_EQ(&m_times.GetOsTimeZone("none"), &os_time_zone::greenwich());
  EXPECT_EQ(OpenForecastTimes().GetOdatMidnightForDc("none"), 0);
  EXPECT_EQ(m_lines, (Lines{"1 Failed to get DC Time Info for 'none',Time Zone will be considered "
                            "as greenwich",
                            "1 Failed to get DC Time Info for 'none',Gmt midnight will be used"}));
}

}  // namespace
