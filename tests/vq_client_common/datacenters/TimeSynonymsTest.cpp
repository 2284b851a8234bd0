#include <vq_client_common/datacenters/TDC.h>

#include <chrono>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>

namespace {

std::string Hhmm(int minutes) {
  return fmt::format("{:02}{:02}", minutes / 60, minutes % 60);
}

TEST(TimeSynonymsTest, ClockTimesBeforeTheNewDayBecomeSynonymsAndComeBack) {
  const std::string there[][3] = {{"0700", "0659", "3059"},     {"0700", "0700", "0700"},
                                  {"0700", "2400", "2400"},     {"0000", "0000", "0000"},
                                  {"x1200", "0800", "3200"},    {"0700", "abcd", "2400"},
                                  {"0700", "-001", "-001"},  // a huge number
                                  {"-700", "-900", "1500"},     {"9999", "9998", "12398"},
                                  {"700", "0200", "untouched"}, {"070000", "0200", "untouched"},
                                  {"0700", "200", "untouched"}, {"0700", "02000", "untouched"}};
  for (const auto& [newDay, source, converted] : there) {
    TDC dc;
    dc.SetNewDayTime(newDay);
    std::string dest = "untouched";
    EXPECT_EQ(dc.ConvertToTimeSynonym(source, dest),
              converted != source && converted != "untouched");
    EXPECT_EQ(dest, converted) << newDay << ' ' << source;
  }
  const std::pair<std::string, const char*> back[] = {
      {"2400", "0000"}, {"3059", "0659"},   {"2359", "2359"}, {"9999", "0399"}, {"", ""},
      {"240", "240"},   {"24000", "24000"}, {"-001", "1695"}};  // 4294967295 modulo 2400
  for (const auto& [source, converted] : back) {
    std::string dest = "before";
    EXPECT_EQ(TDC::ConvertFromTimeSynonym(source, dest), source != converted) << source;
    EXPECT_EQ(dest, converted) << source;
  }
}

TEST(TimeSynonymsTest, EveryClockTimeComesBackAndAScheduleDayAscends) {
  for (int newDay = 0; newDay < 1440; newDay += 7) {
    std::string before;
    for (int minute = 0; minute < 1440; ++minute) {
      const std::string clock = Hhmm((newDay + minute) % 1440);
      std::string synonym, back;
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
    const char *nextTime, *converted;
  } cases[] = {{"0700", "20240301023015", "2024022926301"},
               {"0200", "20240301023015", "20240301023015"},
               {"+0700", "20240101023015", "2023123126301"},
               {"0700", "20241301023015", "2024130126301"},
               {"0700", "20230229023015", "2023022926301"},
               {"0700", "00010101023015", "0000123126301"},
               {"0700", "        0230  ", "        2630 "},
               {"0700", "0230", "2630"},
               {"0700", "0800", "0800"},
               {"0700", "", ""},
               {"070", "20240301023015", "20240301023015"},
               {"070", "0230", "0230"},
               {"", "02301", "02301"},
               {nullptr, "20240229263015", "2024030102301"},
               {nullptr, "20231231240000", "2024010100000"},
               {nullptr, "99991231240000", "10000010100000"},
               {nullptr, "20240231263015", "2024023102301"},
               {nullptr, "20240229233015", "20240229233015"},
               {nullptr, "2630", "0230"},
               {nullptr, "2024022926301", "2024022926301"},
               {nullptr, "", ""}};
  for (const auto& [newDay, nextTime, converted] : cases) {
    std::string dest = nextTime;  // `dest` may be the source itself.
    EXPECT_EQ(newDay != nullptr ? TDC::ConvertNextTimeToTimeSynonym(newDay, dest, dest)
                                : TDC::ConvertNextTimeFromTimeSynonym(dest, dest),
              nextTime != std::string(converted))
        << nextTime;
    EXPECT_EQ(dest, converted) << nextTime;
  }
}

TEST(TimeSynonymsTest, NextTimesComeBackOverTheYears) {
  using namespace std::chrono;
  for (sys_days day = year(1999) / 12 / 25; day < sys_days(year(2029) / 1 / 5); day += days(1)) {
    const year_month_day date = day;
    const std::string clock = fmt::format("{}{:02}{:02}0230", static_cast<int>(date.year()),
                                          unsigned{date.month()}, unsigned{date.day()});
    std::string synonym, back;
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
    std::string time, newDay;
    bool newDayValid;
    std::string wrong;  // the range that it is not in, "?" for no time at all
  } cases[] = {{"0700", "0700", true, ""},
               {"3059", "+0700", true, ""},
               {"3060", "0700", true, "?"},
               {"3099", "0700", true, "?"},
               {"3100", "0700", true, "0700 - 3059"},
               {"0660", "0700", true, "0700 - 3059"},
               {"-1", "0700", true, "0700 - 3059"},
               {"2400", "0000", true, "0000 - 2359"},
               {"2359", "", true, ""},
               {"0100", "0130", true, "0130 - 2529"},
               {"4800", "2400", true, "2400 - 4759"},
               {"9900", "2401", false, ""},
               {"0060", "0060", false, "?"},
               {"0000", "-1", false, ""}};
  for (const auto& c : cases) {
    bool newDayValid = !c.newDayValid;
    std::string err = "before";
    EXPECT_EQ(TDC::CheckTimeHHMMTimeSynonym(c.time, c.newDay, newDayValid, err), c.wrong.empty());
    EXPECT_EQ(newDayValid, c.newDayValid) << c.time << ' ' << c.newDay;
    EXPECT_EQ(err, c.wrong.empty() ? ""
                   : c.wrong == "?"
                       ? "'" + c.time + "' is not a valid time value\t"
                       : "Value '" + c.time + "' is not in time range (" + c.wrong + ")\t");
  }
}

TEST(TimeSynonymsTest, Log) {
  vq::test::LogCapture log(6);
  std::string dest;
  TDC::ConvertToTimeSynonymStatic("0700", "0200", dest);
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
