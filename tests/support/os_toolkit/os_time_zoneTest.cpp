#include <support/os_toolkit/os_time_zone.h>

#include <climits>
#include <ctime>

#include <support/os_toolkit/os_time_and_date.h>
#include <tests/fixture/UnitTest.h>

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

TEST(OsTimeZoneTest, TurnOfTheYear) {
  const os_time_zone january = Zone(0, {1, 1}, {3, 1}), before = Zone(0, At(1, 1, -1), {3, 1});
  const os_time_zone turn = Zone(0, {10, 1}, {4, 1}), cut = Zone(0, {10, 1}, {4, 1}, 2024, 2024);
  const os_time_zone backwards = Zone(0, {3, 1}, {13, 1}, 2000, 2100, -kHour);
  const os_date last23(2023, 12, 31), first24(2024, 1, 1), last24(2024, 12, 31);
  const auto covers = [](const os_time_zone& zone, os_date date, std::int64_t time) {
    const os_time_period utc = os_time_and_date(os_time(time), date).utc_time_and_date();
    const os_time_period shift = zone.to_wall_clock(utc) - utc;
    EXPECT_TRUE(shift == os_time_period() || shift == zone.rules().front().adjustment());
    return shift != os_time_period();
  };
  // Starts at the turn: not covered before it, though the adjusted clock is past it.
  EXPECT_TRUE(!covers(january, last23, 84600) && covers(january, first24, 0));
  EXPECT_TRUE(covers(before, last23, 84600));
  // Over the turn, inside the range and at its ends.
  EXPECT_TRUE(covers(turn, last23, 84600) && !covers(cut, last23, 84600));
  EXPECT_TRUE(!covers(cut, last24, 84600) && covers(cut, last24, 82000));
  // An adjustment backwards ends after the turn of the standard clock.
  EXPECT_TRUE(covers(backwards, first24, 1800) && !covers(backwards, first24, 3600));
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
