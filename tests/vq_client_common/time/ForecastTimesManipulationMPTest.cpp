#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#include <climits>
#include <sstream>

#include <tests/fixture/UnitTest.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using vq::test::ExpectRows;
using vq::test::Take;

// Makes protected members public.
struct OpenForecastTimes : ForecastTimesManipulationMP {
  using ForecastTimesManipulationMP::FindDcTimeInfo;
  using ForecastTimesManipulationMP::GetCommAdminStructByDc;
  using ForecastTimesManipulationMP::GetUtcOffset;
};

// Of a text such as "(GMT+02:00)|07:00|20240701|20240331|20241027|NAME": the time zone, the new-day
// time, the working date and the marks of summer time.
QCSCommAdminStruct Record(std::string text) {
  QCSCommAdminStruct record;
  for (auto member : {&QCSCommAdminStruct::m_TimeZone, &QCSCommAdminStruct::m_NewDayTime,
                      &QCSCommAdminStruct::m_Odat, &QCSCommAdminStruct::m_StartSummerTime,
                      &QCSCommAdminStruct::m_EndSummerTime, &QCSCommAdminStruct::m_Name}) {
    record.*member = Take(text, '|').c_str();
  }
  if (*record.m_Name.in() == '\0') record.m_Name = "DC";
  return record;
}

const os_time_and_date kNow(os_time(12, 0, 0), os_date(2024, 7, 1));
constexpr std::int64_t kJuly1 = 1719792000;  // 2024-07-01 00:00 UTC
using Lines = std::vector<std::string>;

class ForecastTimesTest : public ::testing::Test {
 protected:
  ~ForecastTimesTest() override { os_time_and_date::set_clock(nullptr); }
  void Init(const Lines& records, bool useOdat = false) {
    m_records.length(static_cast<CORBA::ULong>(records.size()));
    for (CORBA::ULong i = 0; i < m_records.length(); ++i) m_records[i] = Record(records[i]);
    m_times.Init(kNow, false, &m_records, useOdat);
  }

  QCSCommAdminSeq m_records;
  OpenForecastTimes m_times;
  vq::test::LogCapture m_log{5};
};

TEST_F(ForecastTimesTest, ReadsOffset) {
  const auto offset = [&](const std::string& text) -> std::string {  // with the bracket it misses
    m_log.Clear();
    try {
      const std::string seconds = std::to_string(m_times.GetUtcOffset(text));
      return seconds + (m_log.Contains("', missing left bracket") ? " left" : "") +
             (m_log.Contains("', missing right bracket") ? " right" : "");
    } catch (const std::out_of_range&) {
      return "raised";
    }
  };
  ExpectRows(offset, {"(GMT+02:00) Jerusalem -> -7200",
                      "(GMT-05:00) -> 18000",
                      "(GMT+05.30) -> -19800",
                      "a (GMT+1:30) (+9:00) -> -5400",
                      "(GMT-00:30) -> 1800",
                      "(GMT-1:30) -> -1800",
                      "(a-b+05:30) -> 19800",
                      "(05:30+-) -> -19800",
                      "(ab:x) -> 0",
                      "(ab:99999999999) -> 60",
                      "(GMT) -> 0",
                      "(GMT+02:) -> 0",
                      "x(GMT) 05:30 -> 0",
                      "(:) -> 0",
                      "(1:00) -> raised",
                      "(:00) -> raised",
                      "x(.5) -> raised",
                      "GMT+2 -> 0 left",
                      "GMT+02:00) -> 0 left",
                      "() -> 0 right",
                      ")(GMT+02:00 -> 0 right"});
}

TEST_F(ForecastTimesTest, ReadsNewDay) {
  const auto seconds = [&](const std::string& text) -> std::string {
    if (!OpenForecastTimes::IsUsableNewDay(text)) return "no";
    Init({"(GMT)|" + text});
    return std::to_string(m_times.FindDcTimeInfo("DC")->newDayOffset);
  };
  ExpectRows(seconds, {" -> 0", "0000 -> 0", "07:30 -> 27000", "+7:30 -> 27000", "-1:30 -> -1800",
                       "07030 -> 253800", "99:99 -> 362340", "abcde -> 0", "0700 -> no", "0 -> no",
                       "0000 0 -> no", "7:00 -> no"});
}

TEST_F(ForecastTimesTest, FindsFirstUnusableRecord) {
  const auto find = [&](const std::string& text) {
    m_records.length(3);
    m_records[0] = m_records[2] = Record("(GMT)|+0700|20240701");
    m_records[1] = Record(text);
    std::string reason = "none";
    const auto found = OpenForecastTimes::FirstUnusableRecord(m_records, true, reason);
    return (found ? std::to_string(*found) + ": " : "") + reason.substr(0, 41);
  };
  ExpectRows(find, {"(GMT)|+0700|20240701 -> none",
                    "(GMT)|0700 -> 1: the new-day time '0700' has not five char",
                    "(1:00) -> 1: the hours of the time zone '(1:00)' have ",
                    "(GMT)|||20240331 -> 1: the summer mark '' is not a date YYYYMMDD",
                    "(GMT)||20240230 -> 1: no such date: 2024-02-30"});
}

TEST_F(ForecastTimesTest, RetriesUnusableNewDay) {
  const auto sink = TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
    const std::ptrdiff_t refusals = m_log.Count(4, "");
    if (line.level == 4 && refusals == 1000) m_records[1].m_NewDayTime = "07:00";
    if (line.level == 4 && refusals == 1003) m_records.length(2);
  });
  Init({"(GMT)|||||DC1", "(GMT)|0700||||DC2", "(GMT)|x||||DC3"});
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
  const auto expect = [&](const std::string& odat, bool useOdat, os_date date,
                          std::int64_t reference) {  // what an unknown data center gets
    Init({"(GMT)||" + odat}, useOdat);
    EXPECT_EQ(m_times.FindDcTimeInfo("DC")->date, date) << odat;
    EXPECT_EQ(m_times.GetOdatMidnightForDc("none"), reference) << odat;
  };
  expect("20240229", true, {2024, 2, 29}, 1709164800);
  expect("20240229", false, {2024, 7, 1}, kJuly1 + 43200);
  for (const char* odat : {"", "2024229", "202402290"})
    expect(odat, true, {2031, 5, 6}, 1935802800);
  EXPECT_THROW(Init({"(GMT)||20230229"}, true), os_toolkit_error);
}

TEST_F(ForecastTimesTest, SummerMarksMakeARule) {
  const auto rules = [&](const std::string& marks) {  // days and years
    Init({"(GMT)|||" + marks});
    const os_time_zone& zone = m_times.GetOsTimeZone("DC");
    EXPECT_EQ(zone.name() + zone.abbreviation(), "UTCUTC");
    std::ostringstream text;
    for (const os_simple_time_zone_rule& rule : zone.rules()) {
      text << rule.start().month() << '/' << rule.start().day() << ' ' << rule.end().month() << '/'
           << rule.end().day() << ' ' << rule.first_year() << ' ' << rule.last_year() << ' '
           << rule.adjustment().to_seconds();
    }
    return text.str();
  };
  ExpectRows(rules, {"20240331|20241027 -> 3/31 10/27 2024 2024 3600",
                     "20240331|202410 -> 3/31 10/0 2024 2024 3600",
                     "2024 3|2025102799 -> 3/0 10/27 2024 2025 3600",
                     "abcdefgh|-123-4-5 -> 0/0 -4/-5 0 -123 3600", "2024033|2024102 -> "});
  // The first twice: nothing half-made is kept under the key of the marks that raised.
  for (const char* raising :
       {"(GMT)|||20240331|", "(GMT)|||20240331|", "(GMT)|||20241|20241027", "(1:00)"}) {
    EXPECT_THROW(Init({raising}), std::out_of_range) << raising;
  }
}

TEST_F(ForecastTimesTest, MidnightAndOffsetFollowSummerMarks) {
  const auto times = [&](const std::string& record) {  // midnight, counted from July 1, and offset
    Init({record}, true);
    return std::to_string(m_times.GetOdatMidnightForDc("DC") - kJuly1) + " " +
           std::to_string(m_times.FindDcTimeInfo("DC")->utcOffset);
  };
  ExpectRows(times,
             {"(GMT+02:00)||20240701 -> -7200 -7200",
              "(GMT+02:00)||20240701|20240331|20241027 -> -10800 -10800",
              "(GMT-05:00)||20240701|20231001|20240401 -> 18000 18000",
              // The offset is that at the new-day time, which may lie beyond the day.
              "(GMT)|24:00|20240630|20240701|20241027 -> -86400 -3600",
              "(GMT)|-1:00|20240701|20240701|20241027 -> -3600 0",
              "(GMT)|-1:00|20240701|20240331|20240701 -> 0 -3600",
              // Beyond 32 bits the midnight wraps.
              "(GMT)||20400101 -> " + std::to_string(2208988800 - 4294967296 - kJuly1) + " 0"});
}

TEST_F(ForecastTimesTest, ZonesOutliveTheTable) {
  Init(
      {"(GMT+02:00)|||||DC1", "(GMT+02:00)|||||DC2", "(GMT+03:00)|||||DC3", "(GMT+03:00)|||||DC1"});
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
  Init({"(GMT)"});
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), nullptr);
  m_records[0].m_Name = const_cast<char*>(name.c_str());  // borrowed, and released below
  EXPECT_EQ(OpenForecastTimes::GetCommAdminStructByDc(m_records, name), &m_records[0]);
  EXPECT_EQ(m_records[0].m_Name._retn(), name.c_str());
}

TEST_F(ForecastTimesTest, ConvertsToClockTime) {
  Init({"(GMT+02:00)"});
  const auto known = [&](const std::string& t) {
    return m_times.ConvertTimeToString(kJuly1 - 7200 + std::stoll(t), "DC");
  };
  ExpectRows(known, {"0 -> 00:00:00", "111909 -> (+1)07:05:09", "-1 -> (-1)23:59:59", "-259201 -> ",
                     "-259200 -> (-3)00:00:00", "4294967296 -> 00:00:00"});
  EXPECT_EQ(m_times.ConvertTimeToString(NO_TIME, "DC"), "");
  // An unknown one is taken as UTC, up to the start of day 0.
  const auto unknown = [&](const std::string& t) {
    return m_times.ConvertTimeToString(std::stoll(t), "none");
  };
  ExpectRows(unknown, {"3660 -> 01:01", "259200 -> 00:00", "259201 -> ", "-60 -> 00:-1",
                       "-43200 -> -12:00", "-4294967296 -> 00:00", "-2147483648 -> -3:-14"});
  EXPECT_EQ(&m_times.GetOsTimeZone("none"), &os_time_zone::greenwich());
  EXPECT_EQ(OpenForecastTimes().GetOdatMidnightForDc("none"), 0);
}

using Times = ForecastTimesManipulationMP;

TEST(TimeConversionTest, SplitsPrintsAndJoins) {
  const auto split = [](const std::string& text) -> std::string {
    const auto t = static_cast<std::int32_t>(std::stoll(text));
    int day = 77, hour = 77, minute = 77, second = 77;
    const bool converted = Times::ConvertTimeToDayHourMin(t, day, hour, minute, second);
    EXPECT_TRUE(converted ? Times::ConvertToTime(day, hour, minute, second) == t
                          : day + hour + minute + second == 4 * 77);
    EXPECT_EQ(converted, !Times::ConvertTimeToStrWithDays(t, true).empty());
    if (!converted) return "refused";
    return (std::ostringstream() << day << ' ' << hour << ' ' << minute << ' ' << second << ' '
                                 << Times::ConvertTimeToStrWithDays(t, true) << ' '
                                 << Times::ConvertTimeToStrWithDays(t, false))
        .str();
  };
  ExpectRows(
      split,
      {"0 -> -3 0 0 0 (-3)00:00:00 (-3)00:00", "259199 -> -1 23 59 59 (-1)23:59:59 (-1)23:59",
       "259200 -> 0 0 0 0 00:00:00 00:00", "349261 -> 1 1 1 1 (+1)01:01:01 (+1)01:01",
       std::to_string(NO_TIME - 1) + " -> 24852 3 13 57 (+24852)03:13:57 (+24852)03:13",
       std::to_string(NO_TIME) + " -> refused", "2147483647 -> refused", "-1 -> refused"});
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
