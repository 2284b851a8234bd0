#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_critical_section.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_file_system.h>
#include <support/os_toolkit/os_time.h>
#include <support/os_toolkit/os_tokenizer.h>

#include <climits>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

using std::string_literals::operator""s;

TEST(AtoiTest, ReadsWhatFitsAsTheCLibraryDoesAndTheNearestIntForTheRest) {
  for (const std::string& text :
       {""s, " "s, "0730"s, "\t\n\v\f\r 7"s, "+8"s, "-9"s, "+"s, "-"s, "+-5"s, "- 5"s, "12ab"s,
        "ab12"s, "2147483647"s, "-2147483648"s, "00000000000000000000012"s, "0x10"s, "\xA0\x35"s,
        "1e3"s, "12\00034"s}) {
    EXPECT_EQ(vq::Atoi(text), std::atoi(text.c_str())) << '"' << text << '"';
  }
  EXPECT_EQ(vq::Atoi("2147483648"), INT_MAX);
  EXPECT_EQ(vq::Atoi("-2147483649"), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string(1000, '9')), INT_MAX);
  EXPECT_EQ(vq::Atoi("-" + std::string(1000, '9')), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string_view("1234").substr(1, 2)), 23);
}

TEST(OsTokenizerTest, DropsEmptyTokens) {
  using Tokens = std::vector<std::string>;
  const struct {
    std::string text, delimiters;
    Tokens tokens;
  } cases[] = {
      {"", " \t", {}},         {" \t ", " \t", {}},
      {"one", " \t", {"one"}}, {"\tE_GAS  \t8.0 # x\n", " \t", {"E_GAS", "8.0", "#", "x\n"}},
      {"a b", "", {"a b"}},    {"a\0b"s, "\0"s, {"a", "b"}}};
  for (const auto& c : cases) {
    const os_tokenizer tokens(c.text, c.delimiters);
    EXPECT_EQ(Tokens(tokens.begin(), tokens.end()), c.tokens) << c.text;
    EXPECT_EQ(tokens.empty(), c.tokens.empty());
    EXPECT_THROW(tokens[tokens.size()], std::out_of_range);
  }
}

TEST(OsFileSystemTest, TellsWhatStandsAtAPath) {
  const vq::test::TemporaryDirectory temporary;
  const std::string file = temporary.Write("file", "x");
  std::filesystem::create_symlink("gone", temporary / "dangling");
  for (const std::string& path : {temporary.Path(), file}) {
    EXPECT_TRUE(os_file_system::exists(path)) << path;
  }
  for (const std::string& path :
       {temporary / "dangling", file + "/inside", file + "\0tail"s, ""s}) {
    EXPECT_FALSE(os_file_system::exists(path)) << path;
  }
}

TEST(OsCriticalSectionTest, IsHeldByOneThreadWhichMayEnterAgain) {
  os_critical_section section(true);
  const auto otherThreadEnters = [&section] {
    bool entered = false;
    std::thread([&] {
      entered = section.try_lock();
      if (entered) section.unlock();
    }).join();
    return entered;
  };
  EXPECT_FALSE(otherThreadEnters());
  { const std::lock_guard<os_critical_section> again(section); }
  EXPECT_FALSE(otherThreadEnters());
  section.unlock();
  EXPECT_TRUE(otherThreadEnters());
}

constexpr os_time_period kDay(1, 0, 0, 0, 0);
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

TEST(OsDateTest, EveryDayAgreesWithTheStandardCalendar) {
  using std::chrono::sys_days;
  const sys_days last = sys_days(std::chrono::year(2405) / 1 / 1);
  os_date walking(1583, 1, 1);
  for (sys_days day = sys_days(std::chrono::year(1583) / 1 / 1); day < last;
       day += std::chrono::days(1), walking += kDay) {
    const std::chrono::year_month_day parts(day);
    const auto number = [](auto part) { return static_cast<int>(static_cast<unsigned>(part)); };
    const os_date date(static_cast<int>(parts.year()), number(parts.month()), number(parts.day()));
    ASSERT_EQ(date, walking);
    ASSERT_EQ(date.parts(), parts);
    ASSERT_EQ(date.julian_day(), 2440588 + day.time_since_epoch().count());
    ASSERT_EQ(static_cast<unsigned>(date.day_of_week()), std::chrono::weekday(day).c_encoding());
    ASSERT_EQ((date + kDay) - kDay, date);
    ASSERT_EQ(date - os_date(), os_time_period(day.time_since_epoch().count(), 0, 0, 0, 0));
  }
}

TEST(OsDateTest, RefusesWhatTheCalendarDoesNotHave) {
  const struct {
    int year, month, day;
  } cases[] = {{2023, 2, 29},  {1900, 2, 29},        {2024, 13, 1},      {2024, 0, 1},
               {2024, 4, 31},  {2024, 1, 0},         {2024, 1, 257},     {2024, 257, 1},
               {-32768, 1, 1}, {65536 + 2024, 1, 1}, {2024, 1, INT_MAX}, {2024, INT_MIN, 1}};
  for (const auto& c : cases) {
    EXPECT_FALSE(os_date::is_valid(c.year, c.month, c.day)) << c.year << ' ' << c.month;
    EXPECT_THROW(os_date(c.year, c.month, c.day), os_toolkit_error);
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

TEST(OsDateTest, APeriodCountsFromTheStartOfTheDay) {
  const os_date newYear(2024, 1, 1);
  EXPECT_EQ(newYear + os_time_period(86399), newYear);
  EXPECT_EQ(newYear + os_time_period(0, -1), os_date(2023, 12, 31));
  EXPECT_EQ(newYear - os_time_period(366, 0, 0, 0, 0), os_date(2022, 12, 31));
  EXPECT_EQ(os_date::from_julian_day(0).parts(), std::chrono::year(-4713) / 11 / 24);
}

TEST(OsTimePeriodTest, CarriesRoundsDownAndRaisesOnOverflow) {
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

TEST(OsTimeTest, ReadsTheClockAlsoOutsideTheDay) {
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
