#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#include <array>
#include <climits>
#include <stdexcept>

#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

// Opens what the class keeps for its derived classes.
struct OpenForecastTimes : ForecastTimesManipulationMP {
  using ForecastTimesManipulationMP::FindDcTimeInfo;
  using ForecastTimesManipulationMP::GetCommAdminStructByDc;
  using ForecastTimesManipulationMP::GetUtcOffset;
};

QCSCommAdminStruct Record(const char* timeZone, const char* newDay = "", const char* odat = "",
                          const char* summerStart = "", const char* summerEnd = "",
                          const char* name = "DC") {
  QCSCommAdminStruct record;
  record.m_Name = name;
  record.m_TimeZone = timeZone;
  record.m_NewDayTime = newDay;
  record.m_Odat = odat;
  record.m_StartSummerTime = summerStart;
  record.m_EndSummerTime = summerEnd;
  return record;
}
QCSCommAdminStruct Named(const char* name, const char* timeZone, const char* newDay = "") {
  return Record(timeZone, newDay, "", "", "", name);
}

const os_time_and_date kNow(os_time(12, 0, 0), os_date(2024, 7, 1));
constexpr std::int64_t kJuly1 = 1719792000;  // 2024-07-01 00:00 UTC
using Lines = std::vector<std::string>;

class ForecastTimesTest : public ::testing::Test {
 protected:
  ~ForecastTimesTest() override { os_time_and_date::set_clock(nullptr); }
  void Init(const std::vector<QCSCommAdminStruct>& records, bool useOdat = false) {
    m_records.length(0);
    for (const QCSCommAdminStruct& record : records) {
      m_records.length(m_records.length() + 1);
      m_records[m_records.length() - 1] = record;
    }
    m_times.Init(kNow, false, &m_records, useOdat);
  }

  QCSCommAdminSeq m_records;
  OpenForecastTimes m_times;
  vq::test::LogCapture m_log{5};
};

TEST_F(ForecastTimesTest, ReadsOffset) {
  const std::pair<const char*, int> offsets[] = {{"(GMT+02:00) Jerusalem", -7200},
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
                                                 {"(:)", 0}};
  for (const auto& [text, seconds] : offsets) {
    EXPECT_EQ(m_times.GetUtcOffset(text), seconds) << text;
  }
  EXPECT_EQ(m_log.Take(), Lines());
  const std::pair<std::string, std::string> missing[] = {
      {"GMT+2", "left"}, {"GMT+02:00)", "left"}, {"()", "right"}, {")(GMT+02:00", "right"}};
  for (const auto& [text, side] : missing) {
    EXPECT_EQ(m_times.GetUtcOffset(text), 0) << text;
    EXPECT_EQ(m_log.Take(),
              Lines{"1 Unsupported GMT string '" + text + "', missing " + side + " bracket"});
  }
  for (const char* text : {"(1:00)", "(:00)", "x(.5)"}) {
    EXPECT_THROW(m_times.GetUtcOffset(text), std::out_of_range) << text;
  }
}

TEST_F(ForecastTimesTest, ReadsNewDay) {
  const std::pair<const char*, std::int32_t> usable[] = {
      {"", 0},           {"0000", 0},      {"07:30", 27000},  {"+7:30", 27000},  {"+0700", 25200},
      {"-0700", -25200}, {"-1:30", -1800}, {"07030", 253800}, {"99:99", 362340}, {"abcde", 0}};
  for (const auto& [text, seconds] : usable) {
    EXPECT_TRUE(OpenForecastTimes::IsUsableNewDay(text)) << text;
    Init({Record("(GMT)", text)});
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->newDayOffset, seconds) << text;
  }
  for (const char* text : {"0700", "0", "0000 0", "7:00"}) {
    EXPECT_FALSE(OpenForecastTimes::IsUsableNewDay(text)) << text;
  }
}

TEST_F(ForecastTimesTest, FindsTheFirstUnusableRecord) {
  const struct {
    QCSCommAdminStruct record;
    bool useOdat;
    const char* reason;
  } cases[] = {
      {Record("(GMT)", "0700"), false,
       "the new-day time '0700' has not five characters, such as '+0700'"},
      {Record("(1:00)"), false, "the time zone '(1:00)' has no hours before its minutes, "},
      {Record("(GMT)", "", "", "20240331"), false, "summer marks '20240331' and '' are not"},
      {Record("(GMT)", "", "20240230"), true, "no such date: 2024-02-30"},
  };
  m_records.length(3);
  m_records[0] = m_records[2] = Record("(GMT)", "+0700", "20240701");
  for (const auto& row : cases) {
    std::string reason = "none";
    m_records[1] = m_records[0];
    EXPECT_EQ(ForecastTimesManipulationMP::FirstUnusableRecord(m_records, row.useOdat, reason),
              std::nullopt);
    EXPECT_EQ(reason, "none");
    m_records[1] = row.record;
    EXPECT_EQ(ForecastTimesManipulationMP::FirstUnusableRecord(m_records, row.useOdat, reason), 1U);
    EXPECT_NE(reason.find(row.reason), std::string::npos) << reason;
  }
}

TEST_F(ForecastTimesTest, RetriesUnusableNewDay) {
  const auto sink = TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
    const std::ptrdiff_t refusals = m_log.Count(4, "");
    if (line.level == 4 && refusals == 1000) m_records[1].m_NewDayTime = "07:00";
    if (line.level == 4 && refusals == 1003) m_records.length(2);
  });
  Init({Named("DC1", "(GMT)"), Named("DC2", "(GMT)", "0700"), Named("DC3", "(GMT)", "x")});
  TDiag::Instance()->RemoveSink(sink);
  Lines lines(1000, "4 Invalid new day time format (0700) for datacenter DC2, skip it");
  lines.resize(1003, "4 Invalid new day time format (x) for datacenter DC3, skip it");
  EXPECT_EQ(m_log.Take(), lines);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC2")->newDayOffset, 25200);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC3"), nullptr);
}

TEST_F(ForecastTimesTest, ReadsWorkingDate) {
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
    Init({Record("(GMT)", "", c.odat)}, c.useOdat);
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->date, c.date) << c.odat;
    EXPECT_EQ(m_log.Take(), Lines(c.lines, "5 VLT: DC ODAT is empty - using Current Time"));
    EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), c.reference) << c.odat;
    m_log.Clear();
  }
  EXPECT_THROW(Init({Record("(GMT)", "", "20230229")}, true), os_toolkit_error);
}

TEST_F(ForecastTimesTest, SummerMarksMakeARule) {
  const struct {
    const char *start, *end;
    os_calendar_date from, to;
    int firstYear, lastYear;
  } cases[] = {{"20240331", "20241027", {3, 31}, {10, 27}, 2024, 2024},
               {"20240331", "202410", {3, 31}, {10, 0}, 2024, 2024},
               {"2024 3", "2025102799", {3, 0}, {10, 27}, 2024, 2025},
               {"abcdefgh", "-123-4-5", {0, 0}, {-4, -5}, 0, -123}};
  for (const auto& c : cases) {
    Init({Record("(GMT)", "", "", c.start, c.end)});
    const os_time_zone& zone = m_times.GetOsTimeZone("DC");
    EXPECT_EQ(zone.name() + zone.abbreviation(), "UTCUTC");
    ASSERT_EQ(zone.rules().size(), 1U) << c.start;
    const os_simple_time_zone_rule& rule = zone.rules().front();
    EXPECT_TRUE(rule.start() == c.from && rule.end() == c.to) << c.start << ' ' << c.end;
    EXPECT_EQ(rule.first_year(), c.firstYear);
    EXPECT_EQ(rule.last_year(), c.lastYear);
    EXPECT_EQ(rule.adjustment(), os_time_period(3600));
  }
  Init({Record("(GMT)", "", "", "2024033", "2024102")});
  EXPECT_TRUE(m_times.GetOsTimeZone("DC").rules().empty());
  // The first twice: nothing half-made is kept under the key of the marks that raised.
  const char* const raising[][3] = {{"(GMT)", "20240331", ""},
                                    {"(GMT)", "20240331", ""},
                                    {"(GMT)", "20241", "20241027"},
                                    {"(1:00)", "", ""}};
  for (const auto& [zone, start, end] : raising) {
    EXPECT_THROW(Init({Record(zone, "", "", start, end)}), std::out_of_range) << zone << start;
  }
}

TEST_F(ForecastTimesTest, MidnightAndOffsetFollowSummerMarks) {
  const struct {
    const char *zone, *newDay, *odat, *start, *end;
    std::int64_t midnight;
    std::int32_t utcOffset;
  } cases[] = {{"(GMT+02:00)", "", "20240701", "", "", kJuly1 - 7200, -7200},
               {"(GMT+02:00)", "", "20240701", "20240331", "20241027", kJuly1 - 10800, -10800},
               {"(GMT-05:00)", "", "20240701", "20231001", "20240401", kJuly1 + 18000, 18000},
               // The offset is that at the new-day time, which may lie beyond the day.
               {"(GMT)", "24:00", "20240630", "20240701", "20241027", kJuly1 - 86400, -3600},
               {"(GMT)", "-1:00", "20240701", "20240701", "20241027", kJuly1 - 3600, 0},
               {"(GMT)", "-1:00", "20240701", "20240331", "20240701", kJuly1, -3600},
               // Beyond 32 bits the midnight wraps.
               {"(GMT)", "", "20400101", "", "", 2208988800 - 4294967296, 0}};
  for (const auto& c : cases) {
    Init({Record(c.zone, c.newDay, c.odat, c.start, c.end)}, true);
    EXPECT_EQ(m_times.GetOdatMidnightForDc("DC"), c.midnight) << "case " << &c - cases;
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->utcOffset, c.utcOffset) << "case " << &c - cases;
  }
}

TEST_F(ForecastTimesTest, ZonesOutliveTheTable) {
  Init({Named("DC1", "(GMT+02:00)"), Named("DC2", "(GMT+02:00)"), Named("DC3", "(GMT+03:00)"),
        Named("DC1", "(GMT+03:00)")});
  const os_time_zone& zone = m_times.GetOsTimeZone("DC2");
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &m_times.GetOsTimeZone("DC3")) << "the last record";
  OpenForecastTimes copy = m_times;
  m_records.length(2);
  m_times.Init(kNow, true, &m_records, false);
  EXPECT_TRUE(m_times.IsConvertTimeLocally() && !copy.IsConvertTimeLocally());
  EXPECT_EQ(&m_times.GetOsTimeZone("DC1"), &zone);
  EXPECT_EQ(m_times.FindDcTimeInfo("DC3"), nullptr);
  m_times = OpenForecastTimes();
  EXPECT_EQ(copy.GetOsTimeZone("DC3").offset(), os_time_period(-10800));
  copy.SetConvertTimeLocally(true);
  EXPECT_TRUE(copy.IsConvertTimeLocally());
}

TEST_F(ForecastTimesTest, FindsRecordByBuffer) {
  const std::string name = "DC";
  Init({Record("(GMT)")});
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), nullptr);
  m_records[0].m_Name = const_cast<char*>(name.c_str());  // lent, and taken back below
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), &m_records[0]);
  EXPECT_EQ(m_records[0].m_Name._retn(), name.c_str());
}

TEST_F(ForecastTimesTest, ConvertsToClockTime) {
  Init({Record("(GMT+02:00)")});
  const std::int64_t midnight = kJuly1 - 7200;
  const std::pair<long long, const char*> known[] = {{midnight, "00:00:00"},
                                                     {midnight + 86400 + 25509, "(+1)07:05:09"},
                                                     {NO_TIME, ""},
                                                     {midnight - 1, "(-1)23:59:59"},
                                                     {midnight - 259201, ""},
                                                     {midnight - 259200, "(-3)00:00:00"},
                                                     {midnight + (1LL << 32), "00:00:00"}};
  for (const auto& [t, text] : known) EXPECT_EQ(m_times.ConvertTimeToString(t, "DC"), text) << t;
  EXPECT_EQ(m_log.Take(), Lines());
  // An unknown one is logged and taken as UTC, up to the start of day 0.
  const std::pair<long long, const char*> unknown[] = {
      {3660, "01:01"},         {259200, "00:00"},  {259201, ""},
      {NO_TIME, ""},           {-60, "00:-1"},     {-43200, "-12:00"},
      {-(1LL << 32), "00:00"}, {INT_MIN, "-3:-14"}};
  const std::string line = "1 Failed to get DC Time Info for 'none',";
  for (const auto& [t, text] : unknown) {
    EXPECT_EQ(m_times.ConvertTimeToString(t, "none"), text) << t;
    EXPECT_EQ(m_log.Take(), Lines{line + "Time will be converted to NO_TIME"});
  }
  EXPECT_EQ(&m_times.GetOsTimeZone("none"), &os_time_zone::greenwich());
  EXPECT_EQ(OpenForecastTimes().GetOdatMidnightForDc("none"), 0);
  EXPECT_EQ(m_log.Take(), (Lines{line + "Time Zone will be considered as greenwich",
                                 line + "Gmt midnight will be used"}));
}

using Times = ForecastTimesManipulationMP;
using Parts = std::array<int, 4>;  // day, hour, minute, second

TEST(TimeConversionTest, SplitsPrintsAndJoins) {
  constexpr Parts kUntouched{77, 77, 77, 77};  // a time that is refused
  const struct {
    std::int32_t t;
    Parts parts;
    const char *text, *minutes;
  } cases[] = {{0, {-3, 0, 0, 0}, "(-3)00:00:00", "(-3)00:00"},
               {259199, {-1, 23, 59, 59}, "(-1)23:59:59", "(-1)23:59"},
               {259200, {0, 0, 0, 0}, "00:00:00", "00:00"},
               {349261, {1, 1, 1, 1}, "(+1)01:01:01", "(+1)01:01"},
               {NO_TIME - 1, {24852, 3, 13, 57}, "(+24852)03:13:57", "(+24852)03:13"},
               {NO_TIME, kUntouched, "", ""},
               {INT_MAX, kUntouched, "", ""},
               {-1, kUntouched, "", ""}};
  for (const auto& [t, parts, text, minutes] : cases) {
    Parts p = kUntouched;
    EXPECT_EQ(Times::ConvertTimeToDayHourMin(t, p[0], p[1], p[2], p[3]), *text != '\0');
    EXPECT_EQ(p, parts) << t;
    EXPECT_EQ(Times::ConvertTimeToStrWithDays(t, true), text);
    EXPECT_EQ(Times::ConvertTimeToStrWithDays(t, false), minutes);
    EXPECT_TRUE(*text == '\0' || Times::ConvertToTime(p[0], p[1], p[2], p[3]) == t);
  }
}

TEST(TimeConversionTest, WrapsInThirtyTwoBits) {
  EXPECT_EQ(Times::ConvertToTime(0, 25, -1, 61), 259200 + 25 * 3600 - 60 + 61);
  EXPECT_EQ(Times::ConvertToTime(INT_MAX, INT_MAX, INT_MAX, INT_MAX),
            static_cast<std::int32_t>((INT_MAX + 3LL) * 86400 + INT_MAX * 3661LL));
  const struct {
    long long t;
    int newBase;
    long long oldBase;
    std::int32_t result;
  } cases[] = {{NO_TIME, 5, 7, NO_TIME},    {100, 5, 7, 98},
               {0x100000064, 5, 7, 98},     {100, 5, 0x300000007, 98},
               {INT_MAX, 1, 0, INT_MIN},    {0x100000000LL + NO_TIME, 5, 7, NO_TIME - 2},
               {LLONG_MIN, 0, LLONG_MAX, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(Times::ConvertTimeT(c.t, c.newBase, c.oldBase), c.result) << c.t;
  }
}

}  // namespace
