#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <support/diagnostics/TDiag.h>
#include <tests/TestEnvironment.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

// Opens what the class keeps for its derived classes.
class OpenForecastTimes : public ForecastTimesManipulationMP {
 public:
  using ForecastTimesManipulationMP::FindDcTimeInfo;
  using ForecastTimesManipulationMP::GetCommAdminStructByDc;
  using ForecastTimesManipulationMP::GetOsTimeZone;
  using ForecastTimesManipulationMP::GetUtcOffset;
  using ForecastTimesManipulationMP::GetUtcTime_T;
};

struct RecordTexts {
  std::string name;
  std::string timeZone = "(GMT)";
  std::string newDay = "";
  std::string odat = "";
  std::string summerStart = "";
  std::string summerEnd = "";
};

void Append(QCSCommAdminSeq& records, const RecordTexts& texts) {
  const CORBA::ULong index = records.length();
  records.length(index + 1);
  QCSCommAdminStruct& record = records[index];
  record.m_Name = texts.name.c_str();
  record.m_TimeZone = texts.timeZone.c_str();
  record.m_NewDayTime = texts.newDay.c_str();
  record.m_Odat = texts.odat.c_str();
  record.m_StartSummerTime = texts.summerStart.c_str();
  record.m_EndSummerTime = texts.summerEnd.c_str();
}

const os_time_and_date kNow(os_time(12, 0, 0), os_date(2024, 7, 1));
constexpr std::int64_t kJuly1 = 1719792000;  // 2024-07-01 00:00 UTC

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
  void InitWith(const RecordTexts& texts, bool useOdat = false,
                const os_time_and_date& now = kNow) {
    m_records.length(0);
    Append(m_records, texts);
    m_times.Init(now, false, &m_records, useOdat);
  }

  QCSCommAdminSeq m_records;
  OpenForecastTimes m_times;
  std::vector<std::string> m_lines;
  int m_refusals = 0;
  std::function<void(int)> m_onRefusal;
};

TEST_F(ForecastTimesTest, ReadsTheOffsetInTheBrackets) {
  constexpr const char* kLeft = "left";
  constexpr const char* kRight = "right";
  const struct {
    const char* text;
    int seconds;
    const char* missing;
  } cases[] = {
      {"(GMT+02:00) Jerusalem", -7200, nullptr},
      {"(GMT-05:00)", 18000, nullptr},
      {"(GMT+05.30)", -19800, nullptr},
      {"Zone (GMT+1:30) x (GMT+9:00)", -5400, nullptr},
      {"(GMT-00:30)", 1800, nullptr},
      {"(05:45)", -20700, nullptr},
      {"(a-b+05:30)", 19800, nullptr},
      {"(GMT+05:30+)", -19800, nullptr},
      {"(ab:99999999999)", static_cast<int>(0U - 2147483647U * 60U), nullptr},
      {"(ab:x)", 0, nullptr},
      {"(GMT)", 0, nullptr},
      {"(GMT+02:)", 0, nullptr},
      {"(:)", 0, nullptr},
      {"GMT+2", 0, kLeft},
      {"", 0, kLeft},
      {"GMT+02:00)", 0, kLeft},
      {"()", 0, kRight},
      {")(GMT+02:00", 0, kRight},
  };
  for (const auto& c : cases) {
    m_lines.clear();
    EXPECT_EQ(m_times.GetUtcOffset(c.text), c.seconds) << c.text;
    std::vector<std::string> lines;
    if (c.missing != nullptr) {
      lines.push_back("1 Unsupported GMT string '" + std::string(c.text) + "', missing " +
                      c.missing + " bracket");
    }
    EXPECT_EQ(m_lines, lines);
  }
  for (const char* text : {"(1:00)", "(:00)", "x(.5)"}) {
    EXPECT_THROW(m_times.GetUtcOffset(text), std::out_of_range) << text;
  }
}

TEST_F(ForecastTimesTest, ReadsTheNewDay) {
  const struct {
    const char* text;
    std::int32_t seconds;
  } usable[] = {{"", 0},          {"0000", 0},       {"07:30", 27000}, {"00:00", 0},
                {"+7:30", 27000}, {"07030", 253800}, {"-1:30", -1800}, {"99:99", 362340},
                {"abcde", 0},     {"23h59", 86340}};
  for (const auto& c : usable) {
    EXPECT_TRUE(OpenForecastTimes::IsUsableNewDay(c.text)) << c.text;
    InitWith({.name = "DC", .newDay = c.text});
    ASSERT_NE(m_times.FindDcTimeInfo("DC"), nullptr) << c.text;
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->newDayOffset, c.seconds) << c.text;
  }
  for (const char* text : {"0700", "0", "000", "0000 0", "07:00:00", "7:00"}) {
    EXPECT_FALSE(OpenForecastTimes::IsUsableNewDay(text)) << text;
  }
}

TEST_F(ForecastTimesTest, AnUnusableNewDayIsTakenUpAgainForAsLongAsItStands) {
  Append(m_records, {.name = "DC1"});
  Append(m_records, {.name = "DC2", .newDay = "0700"});
  Append(m_records, {.name = "DC3", .newDay = "x"});
  m_onRefusal = [this](int refusals) {
    if (refusals == 1000) m_records[1].m_NewDayTime = "07:00";
    if (refusals == 1003) m_records.length(2);
  };
  m_times.Init(kNow, false, &m_records, false);
  std::vector<std::string> lines(
      1000, "4 Invalid new day time format (0700) for datacenter DC2, skip it");
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
  } cases[] = {{"20240229", true, {2024, 2, 29}, 0}, {"", true, {2031, 5, 6}, 1},
               {"2024229", true, {2031, 5, 6}, 1},   {"202402290", true, {2031, 5, 6}, 1},
               {"20240229", false, {2024, 7, 1}, 0}, {"", false, {2024, 7, 1}, 0}};
  for (const auto& c : cases) {
    m_lines.clear();
    InitWith({.name = "DC", .odat = c.odat}, c.useOdat);
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->date, c.date) << c.odat;
    EXPECT_EQ(m_lines,
              std::vector<std::string>(c.lines, "5 VLT: DC ODAT is empty - using Current Time"));
  }
  EXPECT_THROW(InitWith({.name = "DC", .odat = "20230229"}, true), os_toolkit_error);
}

TEST_F(ForecastTimesTest, TheReferenceTimeIsThatOfTheLastRecord) {
  m_times.Init(os_time_and_date(), false, &m_records, true);
  EXPECT_TRUE(m_lines.empty());
  EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), 0);
  Append(m_records, {.name = "DC1", .odat = "20240229"});
  Append(m_records, {.name = "DC2", .odat = "20240301"});
  m_times.Init(kNow, false, &m_records, true);
  EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), 1709251200);
  m_times.Init(kNow, false, &m_records, false);
  EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), kJuly1 + 43200);
}

TEST_F(ForecastTimesTest, SummerMarksMakeARuleOrNoneOrRaise) {
  const struct {
    const char *start, *end;
    std::size_t rules;
    os_calendar_date from, to;
    int firstYear, lastYear;
  } cases[] = {
      {"", "", 0, {0, 0}, {0, 0}, 0, 0},
      {"2024033", "2024102", 0, {0, 0}, {0, 0}, 0, 0},
      {"20240331", "20241027", 1, {3, 31}, {10, 27}, 2024, 2024},
      {"20240331", "202410", 1, {3, 31}, {10, 0}, 2024, 2024},
      {"2024 3", "20251027xx", 1, {3, 0}, {10, 27}, 2024, 2025},
      {"abcdefgh", "-123-4-5", 1, {0, 0}, {-4, -5}, 0, -123},
  };
  for (const auto& c : cases) {
    InitWith({.name = "DC", .summerStart = c.start, .summerEnd = c.end});
    const os_time_zone& zone = m_times.GetOsTimeZone("DC");
    EXPECT_EQ(zone.name(), "UTC");
    EXPECT_EQ(zone.abbreviation(), "UTC");
    ASSERT_EQ(zone.rules().size(), c.rules) << c.start;
    if (c.rules == 0) continue;
    const os_simple_time_zone_rule& rule = zone.rules().front();
    EXPECT_EQ(rule.start(), c.from);
    EXPECT_EQ(rule.end(), c.to);
    EXPECT_EQ(rule.first_year(), c.firstYear);
    EXPECT_EQ(rule.last_year(), c.lastYear);
    EXPECT_EQ(rule.adjustment(), os_time_period(3600));
  }
  EXPECT_THROW(InitWith({.name = "DC", .summerStart = "20240331"}), std::out_of_range);
  EXPECT_THROW(InitWith({.name = "DC", .summerStart = "20241", .summerEnd = "20241027"}),
               std::out_of_range);
  // Nothing half-made is kept under the key of the marks that raised.
  EXPECT_THROW(InitWith({.name = "DC", .summerStart = "20240331"}), std::out_of_range);
  EXPECT_THROW(InitWith({.name = "DC", .timeZone = "(1:00)"}), std::out_of_range);
}

TEST_F(ForecastTimesTest, MidnightAndOffsetFollowTheSummerMarks) {
  const struct {
    const char *timeZone, *newDay, *odat, *start, *end;
    std::int64_t midnight;
    std::int32_t utcOffset;
  } cases[] = {
      {"(GMT+02:00)", "", "20240701", "", "", kJuly1 - 7200, -7200},
      {"(GMT+02:00)", "", "20240701", "20240331", "20241027", kJuly1 - 10800, -10800},
      {"(GMT-05:00)", "", "20240701", "20231001", "20240401", kJuly1 + 18000, 18000},
      // The day on which summer begins and the one on which it ends, at midnight.
      {"(GMT)", "", "20240701", "20240701", "20241027", kJuly1 - 3600, -3600},
      {"(GMT)", "", "20240701", "20240331", "20240701", kJuly1, 0},
      // The offset is that at the new-day time, which may lie beyond the day.
      {"(GMT)", "24:00", "20240630", "20240701", "20241027", kJuly1 - 86400, -3600},
      {"(GMT)", "-1:00", "20240701", "20240701", "20241027", kJuly1 - 3600, 0},
      {"(GMT)", "-1:00", "20240701", "20240331", "20240701", kJuly1, -3600},
      // Beyond 32 bits the midnight wraps.
      {"(GMT)", "", "20400101", "", "", 2208988800 - 4294967296, 0},
  };
  for (const auto& c : cases) {
    InitWith({"DC", c.timeZone, c.newDay, c.odat, c.start, c.end}, true);
    EXPECT_EQ(m_times.GetOdatMidnightForDc("DC"), c.midnight) << "case " << &c - cases;
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->utcOffset, c.utcOffset) << "case " << &c - cases;
  }
}

TEST_F(ForecastTimesTest, MidnightsAgreeWithTheCLibraryAllYear) {
  const struct {
    const char *posix, *timeZone, *start, *end;
  } cases[] = {{"CET-1CEST,J90/0,J300/0", "(GMT+01:00)", "20200331", "20361027"},
               {"EST5EDT,J90/0,J300/0", "(GMT-05:00)", "20200331", "20361027"},
               {"AEST-10AEDT,J274/0,J91/0", "(GMT+10:00)", "20201001", "20360401"}};
  for (const auto& c : cases) {
    const vq::test::Variable zone("TZ", c.posix);
    tzset();
    int skipped = 0;
    for (os_date date(2021, 1, 1); date < os_date(2036, 1, 1);
         date += os_time_period(1, 0, 0, 0, 0)) {
      std::tm local{};
      local.tm_year = date.year() - 1900;
      local.tm_mon = date.month() - 1;
      local.tm_mday = date.day();
      local.tm_isdst = -1;
      const std::time_t expected = std::mktime(&local);
      InitWith({.name = "DC", .timeZone = c.timeZone, .summerStart = c.start, .summerEnd = c.end},
               false, os_time_and_date(os_time(0), date));
      if (local.tm_hour != 0) {
        ++skipped;  // summer begins, so the clock does not show this midnight
      } else {
        ASSERT_EQ(m_times.GetOdatMidnightForDc("DC"), expected) << c.posix << asctime(&local);
      }
    }
    EXPECT_EQ(skipped, 15) << c.posix;
  }
  tzset();
}

TEST_F(ForecastTimesTest, ZonesAreSharedAndOutliveTheTable) {
  Append(m_records, {.name = "DC1", .timeZone = "(GMT+02:00)"});
  Append(m_records, {.name = "DC2", .timeZone = "(GMT+02:00)"});
  Append(m_records, {.name = "DC3", .timeZone = "(GMT+03:00)"});
  Append(m_records, {.name = "DC1", .timeZone = "(GMT+03:00)", .newDay = "01:00"});
  m_times.Init(kNow, true, &m_records, false);
  EXPECT_TRUE(m_times.IsConvertTimeLocally());
  const os_time_zone& zone = m_times.GetOsTimeZone("DC2");
  EXPECT_NE(&m_times.GetOsTimeZone("DC1"), &zone) << "the last record of a name holds";
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &m_times.GetOsTimeZone("DC3"));

  m_records.length(2);
  OpenForecastTimes copy = m_times;
  m_times.Init(kNow, false, &m_records, false);
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &zone);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC3"), nullptr);
  EXPECT_EQ(copy.GetOsTimeZone("DC3").offset(), os_time_period(-10800));
  m_times = OpenForecastTimes();
  EXPECT_EQ(copy.GetOsTimeZone("DC2").offset(), os_time_period(-7200));
  copy.SetConvertTimeLocally(false);
  EXPECT_FALSE(copy.IsConvertTimeLocally());
}

TEST_F(ForecastTimesTest, ConvertsWhatADataCentersClockShows) {
  InitWith({.name = "DC", .timeZone = "(GMT+02:00)"});
  const std::int64_t midnight = kJuly1 - 7200;
  const struct {
    long long t;
    const char* text;
  } cases[] = {{midnight, "00:00:00"},
               {midnight + 25509, "07:05:09"},
               {midnight + 86400, "(+1)00:00:00"},
               {midnight - 1, "(-1)23:59:59"},
               {midnight - 259200, "(-3)00:00:00"},
               {midnight - 259201, ""},
               {NO_TIME, ""},
               {midnight + (1LL << 32), "00:00:00"}};
  for (const auto& c : cases) EXPECT_EQ(m_times.ConvertTimeToString(c.t, "DC"), c.text) << c.t;
  EXPECT_TRUE(m_lines.empty());
}

TEST_F(ForecastTimesTest, AnUnknownDataCenterIsLoggedAndTakenAsUtc) {
  const struct {
    long long t;
    const char* text;
  } cases[] = {{3660, "01:01"},    {259200, "00:00"}, {259201, ""},
               {NO_TIME, ""},      {0, "00:00"},      {-60, "00:-1"},
               {-43200, "-12:00"}, {-3600, "-1:00"},  {-(1LL << 32), "00:00"},
               {INT_MIN, "-3:-14"}};
  for (const auto& c : cases) {
    m_lines.clear();
    EXPECT_EQ(m_times.ConvertTimeToString(c.t, "none"), c.text) << c.t;
    EXPECT_EQ(m_lines, std::vector<std::string>{"1 Failed to get DC Time Info for 'none',Time will "
                                                "be converted to NO_TIME"});
  }
  m_lines.clear();
  EXPECT_EQ(&m_times.GetOsTimeZone("none"), &os_time_zone::greenwich());
  EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), 0);
  EXPECT_EQ(m_lines, (std::vector<std::string>{
                         "1 Failed to get DC Time Info for 'none',Time Zone will be considered as "
                         "greenwich",
                         "1 Failed to get DC Time Info for 'none',Gmt midnight will be used"}));
}

TEST_F(ForecastTimesTest, ARecordIsNotFoundByACopyOfItsName) {
  Append(m_records, {.name = "DC"});
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, "DC"), nullptr);
}

}  // namespace
