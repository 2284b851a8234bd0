#include <support/os_toolkit/os_time_zone.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <support/os_toolkit/os_time_and_date.h>
#include <tests/fixture/Environment.h>

namespace {

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

// The C library does not apply such rules to years before 1970. The calendar repeats itself after
// 400 years to the day of the week, so those years are read off there.
constexpr std::int64_t kCycle = std::int64_t{146097} * 86400;

// What the C library's clock shows at an instant, in seconds since 1970.
std::tm LocalTime(std::int64_t instant) {
  const bool early = instant < std::int64_t{365} * 86400;
  const std::time_t given = instant + (early ? kCycle : 0);
  std::tm local{};
  localtime_r(&given, &local);
  if (early) local.tm_year -= 400;
  return local;
}

// About 9 instants a day on the days around a change, 2 a week elsewhere.
void CompareWithTheCLibrary(const char* posix, const os_time_zone& zone) {
  SCOPED_TRACE(posix);
  const vq::test::Variable variable("TZ", posix);
  tzset();
  const std::int64_t first = (os_date(1900, 1, 2) - os_date()).to_seconds();
  const std::int64_t last = (os_date(2100, 12, 30) - os_date()).to_seconds();
  std::mt19937 random(20240229);
  int adjusted = 0;
  for (std::int64_t instant = first; instant < last;) {
    const std::tm local = LocalTime(instant);
    const os_time_and_date view(os_time_period(kEpoch + instant), zone);
    const std::string shown = std::to_string(instant) + " is " + asctime(&local);
    ASSERT_EQ(view.date(), os_date(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday)) << shown;
    ASSERT_EQ(view.time(), os_time(local.tm_hour, local.tm_min, local.tm_sec)) << shown;

    // Back again, save that the second passing of a repeated hour is read as its first.
    const os_time_and_date back(view.time(), view.date(), zone);
    const std::int64_t adjustment = zone.dst_adjustment(view.time(), view.date()).to_seconds();
    const std::int64_t expected = local.tm_isdst > 0 ? instant : instant - adjustment;
    ASSERT_EQ(back.utc_time_and_date().to_seconds() - kEpoch, expected) << shown;
    ASSERT_TRUE(local.tm_isdst <= 0 || adjustment != 0) << shown;
    adjusted += local.tm_isdst;
    if (local.tm_isdst == 0 && adjustment != 0) {
      ASSERT_EQ(LocalTime(expected).tm_hour, local.tm_hour) << shown;
    }
    const int month = local.tm_mon + 1;
    const bool near = (month == 3 && local.tm_mday > 28) || month == 4 || month == 10;
    instant += std::uniform_int_distribution<std::int64_t>(1, near ? 20000 : 600000)(random);
  }
  EXPECT_EQ(adjusted == 0, zone.rules().empty());
}

// J90 is 31 March in every year, J300 27 October.
TEST(OsTimeZoneTest, AgreesWithCLibrary) {
  const struct {
    const char* posix;
    os_time_zone zone;
  } cases[] = {{"CET-1CEST,J90/2,J300/3", Zone(-3600, At(3, 31, 2), At(10, 27, 3))},
               {"EST5EDT,J90/0,J300/0", Zone(18000, At(3, 31, 0), At(10, 27, 0))},
               {"AEST-10AEDT,J274/2,J91/3", Zone(-36000, At(10, 1, 2), At(4, 1, 3))},
               {"XST3:30XDT,J276/0,J90/0", Zone(12600, At(10, 3, 0), At(3, 31, 0))},
               {"LHST-10:30LHDT-11,J275/2,J92/2",
                Zone(-37800, At(10, 2, 2), At(4, 2, 2), 1800, 2200, os_time_period(1800))},
               {"NPT-5:45", os_time_zone(os_time_period(-20700), "zone", "Z")}};
  for (const auto& [posix, zone] : cases) CompareWithTheCLibrary(posix, zone);
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

TEST(OsTimeZoneTest, TurnOfTheYear) {
  const os_time_zone january = Zone(0, {1, 1}, {3, 1}), before = Zone(0, At(1, 1, -1), {3, 1});
  const os_time_zone turn = Zone(0, {10, 1}, {4, 1}), cut = Zone(0, {10, 1}, {4, 1}, 2024, 2024);
  const os_time_zone backwards = Zone(0, {3, 1}, {13, 1}, 2000, 2100, -kHour);
  const os_date last23(2023, 12, 31), first24(2024, 1, 1), last24(2024, 12, 31);
  const struct {
    const os_time_zone& zone;
    os_date date;
    std::int64_t time;
    bool covered;
  } cases[] = {// Starts at the turn: not covered before it, though the adjusted clock is past it.
               {january, last23, 84600, false},
               {january, first24, 0, true},
               {before, last23, 84600, true},
               // Over the turn, inside the range and at its ends.
               {turn, last23, 84600, true},
               {cut, last23, 84600, false},
               {cut, last24, 84600, false},
               {cut, last24, 82000, true},
               // An adjustment backwards ends after the turn of the standard clock.
               {backwards, first24, 1800, true},
               {backwards, first24, 3600, false}};
  for (const auto& c : cases) {
    const os_time_period utc = os_time_and_date(os_time(c.time), c.date).utc_time_and_date();
    const os_time_period adjustment = c.zone.rules().front().adjustment();
    EXPECT_EQ(c.zone.to_wall_clock(utc) - utc, c.covered ? adjustment : os_time_period())
        << "case " << &c - cases;
  }
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
