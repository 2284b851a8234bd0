#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_file_system.h>
#include <support/os_toolkit/os_time.h>
#include <support/os_toolkit/os_tokenizer.h>

#include <climits>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string_literals::operator""s;

TEST(AtoiTest, ReadsAsTheCLibrary) {
  for (const std::string& text :
       {""s, " "s, "0730"s, "\t\n\v\f\r 7"s, "+8"s, "-9"s, "+"s, "-"s, "+-5"s, "- 5"s, "12ab"s,
        "ab12"s, "2147483647"s, "-2147483648"s, "0x10"s, "\xA0\x35"s, "12\00034"s}) {
    EXPECT_EQ(vq::Atoi(text), std::atoi(text.c_str())) << '"' << text << '"';
  }
  EXPECT_EQ(vq::Atoi("2147483648"), INT_MAX);
  EXPECT_EQ(vq::Atoi("-" + std::string(1000, '9')), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string_view("1234").substr(1, 2)), 23);
}

TEST(OsTokenizerTest, DropsEmptyTokens) {
  const auto tokens = [](std::string delimiters) {
    const std::string text = vq::test::Take(delimiters, '|');
    const os_tokenizer found(text, delimiters);
    EXPECT_THROW(found[found.size()], std::out_of_range);
    EXPECT_EQ(found.empty(), found.begin() == found.end());
    std::string joined;
    for (const std::string& token : found) joined += "[" + token + "]";
    return joined;
  };
  vq::test::ExpectRows(tokens,
                       {"| \t -> ", " \t | \t -> ", "one| \t -> [one]", "a b| -> [a b]",
                        "\tE_GAS  \t8.0 # x\n| \t -> [E_GAS][8.0][#][x\n]", "a\0b|\0 -> [a][b]"s});
}

TEST(OsFileSystemTest, Exists) {
  const vq::test::TemporaryDirectory temporary;
  const std::string file = temporary.Write("file", "x");
  std::filesystem::create_symlink("gone", temporary / "dangling");
  EXPECT_TRUE(os_file_system::exists(temporary.Path()) && os_file_system::exists(file));
  for (const std::string& path : {temporary / "dangling", file + "/inside", file + "\0tail"s, ""s})
    EXPECT_FALSE(os_file_system::exists(path)) << path;
}

constexpr os_time_period kDay(1, 0, 0, 0, 0);
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

TEST(OsDateTest, RefusesBadDates) {
  constexpr int kDates[][3] = {{2023, 2, 29},        {1900, 2, 29},     {2024, 13, 1},
                               {2024, 0, 1},         {2024, 4, 31},     {2024, 1, 0},
                               {2024, 1, 257},       {2024, 257, 1},    {-32768, 1, 1},
                               {65536 + 2024, 1, 1}, {2024, INT_MIN, 1}};
  for (const auto& [year, month, day] : kDates) {
    EXPECT_FALSE(os_date::is_valid(year, month, day)) << year << ' ' << month;
    EXPECT_THROW(os_date(year, month, day), os_toolkit_error);
  }
  EXPECT_THAT([] { os_date(2023, 2, 29); },
              testing::ThrowsMessage<os_toolkit_error>("no such date: 2023-02-29"));
  EXPECT_THROW(os_date(os_date::kMaxYear, 12, 31) + kDay, os_toolkit_error);
  EXPECT_THROW(os_date(os_date::kMinYear, 1, 1) - kDay, os_toolkit_error);
  EXPECT_THROW(os_date() + os_time_period(kLargest), os_toolkit_error);
  EXPECT_THROW(os_date() - os_time_period(kSmallest), os_toolkit_error);
  EXPECT_THROW(os_date::from_julian_day(kLargest), os_toolkit_error);
  EXPECT_THROW(os_date::from_julian_day(kSmallest), os_toolkit_error);
}

TEST(OsDateTest, CountsFromStartOfDay) {
  const os_date newYear(2024, 1, 1);
  EXPECT_EQ(newYear + os_time_period(86399), newYear);
  EXPECT_EQ(newYear - kDay - os_date(2022, 12, 31), os_time_period(365, 0, 0, 0, 0));
  EXPECT_EQ(static_cast<unsigned>(newYear.day_of_week()), 1U);  // a Monday
  EXPECT_EQ(newYear.julian_day(), 2460311);
  EXPECT_EQ(newYear + os_time_period(0, -1), os_date(2023, 12, 31));
  EXPECT_EQ(os_date::from_julian_day(0).parts(), std::chrono::year(-4713) / 11 / 24);
}

TEST(OsTimePeriodTest, CarriesAndOverflows) {
  const os_time_period half(0, 500'000'000);
  EXPECT_EQ((half + half), os_time_period(1));
  EXPECT_EQ((-half).to_seconds(), -1);
  EXPECT_EQ((-half).nanoseconds(), 500'000'000);
  EXPECT_EQ((-half).to_days(), -1);
  EXPECT_LT(-half, os_time_period());
  EXPECT_LT(half, os_time_period(1));
  EXPECT_EQ(os_time_period(-1, 2, -3, 4, 0).to_seconds(), -86400 + 7200 - 180 + 4);
  EXPECT_EQ(os_time_period(0, kSmallest).to_seconds(), -9223372037);
  EXPECT_THROW(os_time_period(kLargest) + os_time_period(1), os_toolkit_error);
  EXPECT_THROW(os_time_period(kSmallest) - half, os_toolkit_error);
  EXPECT_THROW(-os_time_period(kSmallest), os_toolkit_error);
  EXPECT_THROW(os_time_period(kLargest, 1'000'000'000), os_toolkit_error);
  EXPECT_THROW(os_time_period(kLargest / 2, 0, 0, 0, 0), os_toolkit_error);
}

TEST(OsTimeTest, ReadsTheClock) {
  for (const std::int64_t day : {-2, -1, 0, 1}) {
    const os_time time(day * 86400 + 86398);
    EXPECT_EQ(time.hour() * 10000 + time.minute() * 100 + time.second(), 235958);
  }
  EXPECT_EQ(os_time(7, 30, 9).since_midnight(), os_time_period(27009));
  EXPECT_THROW(os_time(24, 0, 0), os_toolkit_error);
  EXPECT_THROW(os_time(0, 60, 0), os_toolkit_error);
  EXPECT_THROW(os_time(0, 0, -1), os_toolkit_error);
}

}  // namespace
