#include <vq_client_common/datacenters/TDC.h>

#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/Rows.h>

namespace {

using std::string;
using vq::test::ExpectRows;
using vq::test::Take;

TEST(TimeSynonymsTest, ConvertsClockTimes) {
  const auto there = [](string source) {
    TDC dc;
    dc.SetNewDayTime(Take(source));
    string dest = "refused";
    const bool converted = dc.ConvertToTimeSynonym(source, dest);
    EXPECT_EQ(converted, dest != source && dest != "refused");
    return dest;
  };
  ExpectRows(there, {"0700 0659 -> 3059", "0700 0700 -> 0700", "0700 2400 -> 2400",
                     "0000 0000 -> 0000", "x1200 0800 -> 3200", "0700 abcd -> 2400",
                     "0700 -001 -> -001",  // a huge number
                     "-700 -900 -> 1500", "9999 9998 -> 12398", "700 0200 -> refused",
                     "070000 0200 -> refused", "0700 200 -> refused", "0700 02000 -> refused"});
  const auto back = [](const string& source) {
    string dest = "before";
    const bool converted = TDC::ConvertFromTimeSynonym(source, dest);
    EXPECT_EQ(converted, source != dest);
    return dest;
  };
  ExpectRows(back, {"2400 -> 0000", "3059 -> 0659", "2359 -> 2359", "9999 -> 0399", " -> ",
                    "240 -> 240", "24000 -> 24000", "-001 -> 1695"});  // 4294967295 modulo 2400
}

TEST(TimeSynonymsTest, ConvertsNextTimes) {
  const auto there = [](string nextTime) {
    const string newDay = Take(nextTime);
    string dest = nextTime;  // `dest` may be the source itself.
    const bool converted = TDC::ConvertNextTimeToTimeSynonym(newDay, dest, dest);
    EXPECT_EQ(converted, dest != nextTime) << nextTime;
    return dest;
  };
  ExpectRows(
      there,
      {"0700 20240301023015 -> 2024022926301", "0200 20240301023015 -> 20240301023015",
       "+0700 20240101023015 -> 2023123126301", "0700 20241301023015 -> 2024130126301",
       "0700 20230229023015 -> 2023022926301", "0700 00010101023015 -> 0000123126301",
       "0700         0230   ->         2630 ", "0700 0230 -> 2630", "0700 0800 -> 0800",
       "0700  -> ", "070 20240301023015 -> 20240301023015", "070 0230 -> 0230", " 02301 -> 02301"});
  const auto back = [](const string& nextTime) {
    string dest = nextTime;
    const bool converted = TDC::ConvertNextTimeFromTimeSynonym(dest, dest);
    EXPECT_EQ(converted, dest != nextTime) << nextTime;
    return dest;
  };
  ExpectRows(back, {"20240229263015 -> 2024030102301", "20231231240000 -> 2024010100000",
                    "99991231240000 -> 10000010100000", "20240231263015 -> 2024023102301",
                    "20240229233015 -> 20240229233015", "2630 -> 0230",
                    "2024022926301 -> 2024022926301", " -> "});
}

TEST(TimeSynonymsTest, RefusesBadTimes) {
  // "in", "?" for no time at all, or the range that it is not in.
  const auto judged = [](const string& time, int result, const string& err) -> string {
    EXPECT_EQ(result, err.empty() ? 1 : 0);
    if (err.empty()) return "in";
    if (err == "'" + time + "' is not a valid time value\t") return "?";
    const string start = "Value '" + time + "' is not in time range (";
    EXPECT_TRUE(err.starts_with(start) && err.ends_with(")\t")) << err;
    return err.substr(start.size(), 11);
  };
  const auto clock = [&](const string& time) {
    string err = "before";
    const int result = TDC::CheckTimeHHMMNoTimeSynonym(time, err);
    return judged(time, result, err);
  };
  ExpectRows(clock, {"2359 -> in", "2400 -> in", " -> in", "abc -> in", " 730 -> in", "2401 -> ?",
                     "0060 -> ?", "-1 -> ?", "9999 -> ?"});
  // With "!" where the new-day time itself is no time.
  const auto synonym = [&](string newDay) {
    const string time = Take(newDay);
    bool newDayValid = false;
    string err = "before";
    const int result = TDC::CheckTimeHHMMTimeSynonym(time, newDay, newDayValid, err);
    return judged(time, result, err) + (newDayValid ? "" : "!");
  };
  ExpectRows(synonym,
             {"0700 0700 -> in", "3059 +0700 -> in", "3060 0700 -> ?", "3099 0700 -> ?",
              "3100 0700 -> 0700 - 3059", "0660 0700 -> 0700 - 3059", "-1 0700 -> 0700 - 3059",
              "2400 0000 -> 0000 - 2359", "2359  -> in", "0100 0130 -> 0130 - 2529",
              "4800 2400 -> 2400 - 4759", "9900 2401 -> in!", "0060 0060 -> ?!", "0000 -1 -> in!"});
}

TEST(TimeSynonymsTest, LogsErrors) {
  vq::test::LogCapture log(1);
  string dest;
  TDC::ConvertNextTimeToTimeSynonym("0700", "02301", dest);
  TDC::ConvertNextTimeFromTimeSynonym("02301", dest);
  TDC::ConvertNextTimeFromTimeSynonym("", dest);
  EXPECT_EQ(Convert_DBjobToTimeSynonym(nullptr, "0700") + Convert_DBjobFromTimeSynonym(nullptr), 0);
  const string illegal = "1 NextTime has illegal field length '02301'", none = "0 NOT IMPLEMENTED";
  EXPECT_EQ(log.Take(), (std::vector<string>{illegal, illegal, none, none}));
}

}  // namespace
