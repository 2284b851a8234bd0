#include <vq_client_common/datacenters/TDC.h>

#include <chrono>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>

namespace {

std::string Hhmm(int minutes) {
  return fmt::format("{:02}{:02}", minutes / 60, minutes % 60);
}

TEST(TimeSynonymsTest, ClockTimesBeforeTheNewDayBecomeSynonymsAndComeBack) {
  const struct {
    const char *newDay, *source, *dest;
    bool synonym;
  } there[] = {{"0700", "0659", "3059", true},      {"0700", "0700", "0700", false},
               {"0700", "2400", "2400", false},     {"0000", "0000", "0000", false},
               {"x1200", "0800", "3200", true},     {"0700", "abcd", "2400", true},
               {"0700", "-001", "-001", false},  // a huge number
               {"-700", "-900", "1500", true},      {"9999", "9998", "12398", true},
               {"700", "0200", "untouched", false}, {"070000", "0200", "untouched", false},
               {"0700", "200", "untouched", false}, {"0700", "02000", "untouched", false}};
  for (const auto& c : there) {
    TDC dc;
    dc.SetNewDayTime(c.newDay);
    std::string dest = "untouched";
    EXPECT_EQ(dc.ConvertToTimeSynonym(c.source, dest), c.synonym);
    EXPECT_EQ(dest, c.dest) << c.newDay << ' ' << c.source;
  }
  const struct {
    const char *source, *dest;
    bool converted;
  } back[] = {{"2400", "0000", true},    {"3059", "0659", true}, {"2359", "2359", false},
              {"9999", "0399", true},    {"", "", false},        {"240", "240", false},
              {"24000", "24000", false}, {"-001", "1695", true}};  // 4294967295 modulo 2400
  for (const auto& c : back) {
    std::string dest = "before";
    EXPECT_EQ(TDC::ConvertFromTimeSynonym(c.source, dest), c.converted) << c.source;
    EXPECT_EQ(dest, c.dest) << c.source;
  }
}

TEST(TimeSynonymsTest, EveryClockTimeComesBackAndAScheduleDayAscends) {
  for (int newDay = 0; newDay < 1440; newDay += 7) {
    std::string before;
    for (int minute = 0; minute < 1440; ++minute) {
      const std::string clock = Hhmm((newDay + minute) % 1440);
      std::string synonym;
      std::string back;
      const bool converted = TDC::ConvertToTimeSynonymStatic(Hhmm(newDay), clock, synonym);
      ASSERT_EQ(synonym, Hhmm(newDay + minute));
      ASSERT_LT(before, synonym);
      ASSERT_EQ(TDC::ConvertFromTimeSynonym(synonym, back), converted);
      ASSERT_EQ(back, clock);
      before = synonym;
    }
  }
}

TEST(TimeSynonymsTest, NextTimesTakeTheirDateAlong) {
  const struct {
    const char* newDay;  // null: from synonym to clock
    const char *nextTime, *dest;
    bool converted;
  } cases[] = {{"0700", "20240301023015", "2024022926301", true},
               {"0200", "20240301023015", "20240301023015", false},
               {"+0700", "20240101023015", "2023123126301", true},
               {"0700", "20241301023015", "2024130126301", true},
               {"0700", "20230229023015", "2023022926301", true},
               {"0700", "00010101023015", "0000123126301", true},
               {"0700", "        0230  ", "        2630 ", true},
               {"0700", "0230", "2630", true},
               {"0700", "0800", "0800", false},
               {"0700", "", "", false},
               {"070", "20240301023015", "20240301023015", false},
               {"070", "0230", "0230", false},
               {"", "02301", "02301", false},
               {nullptr, "20240229263015", "2024030102301", true},
               {nullptr, "20231231240000", "2024010100000", true},
               {nullptr, "99991231240000", "10000010100000", true},
               {nullptr, "20240231263015", "2024023102301", true},
               {nullptr, "20240229233015", "20240229233015", false},
               {nullptr, "2630", "0230", true},
               {nullptr, "2024022926301", "2024022926301", false},
               {nullptr, "", "", false}};
  for (const auto& test : cases) {
    std::string dest = test.nextTime;  // `dest` may be the source itself.
    EXPECT_EQ(test.newDay != nullptr ? TDC::ConvertNextTimeToTimeSynonym(test.newDay, dest, dest)
                                     : TDC::ConvertNextTimeFromTimeSynonym(dest, dest),
              test.converted)
        << test.nextTime;
    EXPECT_EQ(dest, test.dest) << test.nextTime;
  }
}

TEST(TimeSynonymsTest, NextTimesComeBackOverTheYears) {
  using namespace std::chrono;
  for (sys_days day = year(1999) / 12 / 25; day < sys_days(year(2029) / 1 / 5); day += days(1)) {
    const year_month_day date = day;
    const std::string clock = fmt::format("{}{:02}{:02}0230", static_cast<int>(date.year()),
                                          unsigned{date.month()}, unsigned{date.day()});
    std::string synonym;
    std::string back;
    ASSERT_TRUE(TDC::ConvertNextTimeToTimeSynonym("0700", clock + "15", synonym));
    ASSERT_TRUE(TDC::ConvertNextTimeFromTimeSynonym(synonym + "5", back));
    ASSERT_EQ(back, clock + "1");
  }
}

TEST(TimeSynonymsTest, Checks) {
  const std::pair<std::string, bool> clockTimes[] = {
      {"2359", true},  {"2400", true},  {"", true},    {"abc", true},  {" 730", true},
      {"2401", false}, {"0060", false}, {"-1", false}, {"9999", false}};
  for (const auto& [time, valid] : clockTimes) {
    std::string err = "before";
    EXPECT_EQ(TDC::CheckTimeHHMMNoTimeSynonym(time, err), valid ? 1 : 0) << time;
    EXPECT_EQ(err, valid ? "" : "'" + time + "' is not a valid time value\t");
  }
  const struct {
    const char *time, *newDay;
    bool newDayValid;
    const char* err;
  } cases[] = {{"0700", "0700", true, ""},
               {"3059", "+0700", true, ""},
               {"3060", "0700", true, "'3060' is not a valid time value\t"},
               {"3099", "0700", true, "'3099' is not a valid time value\t"},
               {"3100", "0700", true, "Value '3100' is not in time range (0700 - 3059)\t"},
               {"0660", "0700", true, "Value '0660' is not in time range (0700 - 3059)\t"},
               {"-1", "0700", true, "Value '-1' is not in time range (0700 - 3059)\t"},
               {"2400", "0000", true, "Value '2400' is not in time range (0000 - 2359)\t"},
               {"2359", "", true, ""},
               {"0100", "0130", true, "Value '0100' is not in time range (0130 - 2529)\t"},
               {"4800", "2400", true, "Value '4800' is not in time range (2400 - 4759)\t"},
               {"9900", "2401", false, ""},
               {"0060", "0060", false, "'0060' is not a valid time value\t"},
               {"0000", "-1", false, ""}};
  for (const auto& c : cases) {
    bool newDayValid = !c.newDayValid;
    std::string err = "before";
    EXPECT_EQ(TDC::CheckTimeHHMMTimeSynonym(c.time, c.newDay, newDayValid, err), *c.err == '\0');
    EXPECT_EQ(newDayValid, c.newDayValid) << c.time << ' ' << c.newDay;
    EXPECT_EQ(err, c.err);
  }
}

TEST(TimeSynonymsTest, Log) {
  vq::test::LogCapture log(6);
  std::string dest;
  TDC::ConvertToTimeSynonymStatic("0700", "0200", dest);
  TDC::ConvertToTimeSynonymStatic("", "0800", dest);
  TDC::ConvertFromTimeSynonym("2600", dest);
  TDC::ConvertFromTimeSynonym("26000", dest);
  TDC::ConvertNextTimeToTimeSynonym("0700", "02301", dest);
  TDC::ConvertNextTimeFromTimeSynonym("02301", dest);
  TDC::ConvertNextTimeFromTimeSynonym("", dest);
  EXPECT_EQ(Convert_DBjobToTimeSynonym(nullptr, "0700"), 0);
  EXPECT_EQ(Convert_DBjobFromTimeSynonym(nullptr), 0);
  EXPECT_EQ(log.TakeText(), R"(6 TDC::ConvertToTimeSynonymStatic: Enter
5 TDC::ConvertToTimeSynonymStatic: NewDayTime = '0700'
5 TDC::ConvertToTimeSynonymStatic: Source Time = '0200'
5 TDC::ConvertToTimeSynonymStatic: Dest Time = '2600'
6 TDC::ConvertToTimeSynonymStatic: Enter
5 TDC::ConvertToTimeSynonymStatic: NewDayTime = ''
5 TDC::ConvertToTimeSynonymStatic: Source Time = '0800'
6 TDC::ConvertFromTimeSynonym: Enter
5 TDC::ConvertFromTimeSynonym: Source Time = 2600
5 TDC::ConvertFromTimeSynonym: Dest Time = 0200
6 TDC::ConvertFromTimeSynonym: Enter
5 TDC::ConvertFromTimeSynonym: Source Time = 26000
6 TDC::ConvertNextTimeToTimeSynonym: Enter
1 TDC::ConvertNextTimeToTimeSynonym: NextTime has illegal field length '02301'
6 TDC::ConvertNextTimeFromTimeSynonym: Enter
1 TDC::ConvertNextTimeFromTimeSynonym: NextTime has illegal field length '02301'
6 TDC::ConvertNextTimeFromTimeSynonym: Enter
6 Convert_DBjobToTimeSynonym: Enter
0 Convert_DBjobToTimeSynonym: NOT IMPLEMENTED
6 Convert_DBjobFromTimeSynonym: Enter
0 Convert_DBjobFromTimeSynonym: NOT IMPLEMENTED
)");
}

}  // namespace
