#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_file_system.h>
#include <support/os_toolkit/os_time.h>
#include <support/os_toolkit/os_time_and_date.h>
#include <support/os_toolkit/os_time_zone.h>
#include <support/os_toolkit/os_tokenizer.h>

#include <climits>
#include <ctime>

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

constexpr std::int64_t kEpoch = 210866803200;  // seconds from the Julian day 0 to 1970
constexpr os_time_period kHour(3600);

os_time_zone Zone(std::int64_t offset, os_calendar_date start, os_calendar_date end,
                  int firstYear = 1800, int lastYear = 2200, os_time_period adjustment = kHour) {
  os_time_zone zone(os_time_period(offset), "zone", "Z");
  zone.insert(os_simple_time_zone_rule(start, end, firstYear, lastYear, adjustment));
  return zone;
}

os_calendar_date At(int month, int day, int hour) {
  return {month, day, os_time_period(3600 * hour)};
}

// Every half hour of a year, beside the C library with the same rules.
TEST(OsTimeZoneTest, AgreesWithTheCLibrary) {
  const std::pair<const char*, os_time_zone> zones[] = {
      {"AAA-1BBB,J90/2,J300/3", Zone(-3600, At(3, 31, 2), At(10, 27, 3))},
      {"AAA5BBB,J69/2,J307/2", Zone(18000, At(3, 10, 2), At(11, 3, 2))},
      {"AAA-10:30BBB-11,J279/2,J97/2",
       Zone(-37800, At(10, 6, 2), At(4, 7, 2), 1800, 2200, os_time_period(1800))},
      {"AAA-5:45", os_time_zone(os_time_period(-20700), "zone", "Z")}};
  for (const auto& [rules, zone] : zones) {
    const vq::test::Variable variable("TZ", rules);
    tzset();
    const auto local = [](std::time_t utc) {
      std::tm time{};
      localtime_r(&utc, &time);
      return os_time_period(kEpoch + utc + time.tm_gmtoff);
    };
    const std::time_t begin = (os_date(2024, 1, 1) - os_date()).to_seconds();
    for (std::time_t utc = begin; utc < begin + 366 * 86400 && !HasFailure(); utc += 1800) {
      const os_time_period instant(kEpoch + utc), clock = local(utc);
      EXPECT_EQ(zone.to_wall_clock(instant), clock) << rules << ' ' << utc;
      // A repeated hour is read as its first passing.
      const std::int64_t shift =
          zone.rules().empty() ? 0 : zone.rules()[0].adjustment().to_seconds();
      const bool secondTime = shift != 0 && local(utc - shift) == clock;
      EXPECT_EQ(zone.to_utc(clock), instant - os_time_period(secondTime ? shift : 0)) << utc;
      const os_time_and_date view(instant, zone);
      EXPECT_EQ(view.date().start() + view.time().since_midnight(), clock) << utc;
    }
  }
  tzset();
}

TEST(OsTimeZoneTest, RuleCoversItsYears) {
  const struct {
    os_time_zone zone;
    std::vector<os_date> changes;  // at 00:00, from 2022 on, when no rule holds
  } cases[] = {
      {Zone(0, {3, 31}, {10, 27}, 2023, 2024),
       {{2023, 3, 31}, {2023, 10, 27}, {2024, 3, 31}, {2024, 10, 27}}},
      {Zone(0, {10, 1}, {4, 1}, 2023, 2024),
       {{2023, 1, 1}, {2023, 4, 1}, {2023, 10, 1}, {2024, 4, 1}, {2024, 10, 1}, {2025, 1, 1}}},
      {Zone(0, {2, 29}, {12, 0}, 2023, 2024),  // days that a year lacks
       {{2023, 3, 1}, {2023, 12, 1}, {2024, 2, 29}, {2024, 12, 1}}},
      {Zone(0, {-5, 40}, {99, 0}, 2023, 40000), {{2023, 1, 1}}},
      {Zone(0, {3, 31}, {10, 27}, 2024, 2023), {}},
      {Zone(0, {3, 31}, {3, 31}, 2023, 2024), {}}};
  for (const auto& [zone, changes] : cases) {
    os_time_period expected;
    for (os_date day(2022, 1, 1); day.year() < 2026; day += os_time_period(1, 0, 0, 0, 0)) {
      ASSERT_EQ(zone.dst_adjustment(os_time(-1), day), expected) << day.julian_day();
      if (std::ranges::count(changes, day) != 0) expected = kHour - expected;
      ASSERT_EQ(zone.dst_adjustment(os_time(0), day), expected) << day.julian_day();
    }
  }
}

TEST(OsTimeZoneTest, MayStartBeforeItsYear) {
  const os_time_zone early = Zone(0, At(1, 1, -1), {3, 1});
  const os_time_period utc = os_time_and_date(os_time(84600), {2023, 12, 31}).utc_time_and_date();
  EXPECT_EQ(early.to_wall_clock(utc), utc + kHour);
}

TEST(OsTimeZoneTest, FirstRuleHolds) {
  os_time_zone zone = Zone(0, {3, 1}, {10, 1}, 2024, 2024);
  zone.insert(os_simple_time_zone_rule({6, 1}, {12, 1}, 2024, 2024, os_time_period(7200)));
  EXPECT_EQ(zone.dst_adjustment(os_time(), {2024, 7, 1}), kHour);
  EXPECT_EQ(zone.dst_adjustment(os_time(), {2024, 11, 1}), os_time_period(7200));
  const os_time_zone always = Zone(0, {1, 1}, {13, 1}, INT_MIN, INT_MAX);
  for (const int year : {os_date::kMinYear + 1, os_date::kMaxYear - 1}) {
    EXPECT_EQ(always.dst_adjustment(os_time(), {year, 12, 31}), kHour);
  }
}

TEST(OsTimeAndDateTest, CountsFromJulianDayZero) {
  EXPECT_EQ(os_time_and_date().utc_time_and_date(), os_time_period(kEpoch));
  const os_time_and_date late(os_time(90000), {2024, 12, 31});
  EXPECT_TRUE(late.date() == os_date(2025, 1, 1) && late.time() == os_time(1, 0, 0));
  const os_time_zone east(os_time_period(-7200), "east", "E");
  EXPECT_EQ(os_time_and_date(os_time(3, 0, 0), {2025, 1, 1}, east), late);
  EXPECT_EQ(os_time_and_date(late.utc_time_and_date(), east).time(), os_time(3, 0, 0));
  EXPECT_THROW(os_time_and_date(os_time(86400), {os_date::kMaxYear, 12, 31}), os_toolkit_error);
}

TEST(OsTimeAndDateTest, NowComesFromTheClock) {
  const auto before = os_time_and_date::set_clock([] { return os_time_period(kEpoch + 86399, 5); });
  const os_time_and_date now = os_time_and_date::now();
  EXPECT_NE(os_time_and_date::set_clock(before), nullptr);
  EXPECT_TRUE(now.date() == os_date() && now.time().second() == 59);
  const std::int64_t seconds = os_time_and_date::now().utc_time_and_date().to_seconds() - kEpoch;
  EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(std::time(nullptr)), 5);
}

}  // namespace
