#include <climits>
#include <cstdio>
#include <random>

#include <gtest/gtest.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>

namespace {

using Times = ForecastTimesManipulationMP;

struct Parts {
  int day = 77, hour = 77, minute = 77, second = 77;
  friend bool operator==(const Parts&, const Parts&) = default;
};

// The same through the C library's formats.
std::string Printed(const Parts& parts, bool withSeconds) {
  char text[64];
  int size = parts.day == 0 ? 0 : std::snprintf(text, sizeof text, "(%+d)", parts.day);
  size += std::snprintf(text + size, 20, "%02d:%02d", parts.hour, parts.minute);
  if (withSeconds) std::snprintf(text + size, 20, ":%02d", parts.second);
  return text;
}

TEST(TimeConversionTest, DayAndTimeAndBackForAnyTime) {
  std::mt19937 random(8);
  for (int i = 0; i < 200000; ++i) {
    const std::int32_t t =
        i < 100000 ? i * 7 : std::uniform_int_distribution(0, NO_TIME - 1)(random);
    Parts p;
    ASSERT_TRUE(Times::ConvertTimeToDayHourMin(t, p.day, p.hour, p.minute, p.second));
    ASSERT_TRUE(p.hour >= 0 && p.hour < 24 && p.minute >= 0 && p.minute < 60) << t;
    ASSERT_TRUE(p.second >= 0 && p.second < 60) << t;
    ASSERT_EQ(Times::ConvertToTime(p.day, p.hour, p.minute, p.second), t);
    ASSERT_EQ(Times::ConvertTimeToStrWithDays(t, true), Printed(p, true));
    ASSERT_EQ(Times::ConvertTimeToStrWithDays(t, false), Printed(p, false));
  }
}

TEST(TimeConversionTest, TheEndsOfTheRange) {
  const struct {
    std::int32_t t;
    Parts parts;  // as they were for a time that is refused
    const char* text;
  } cases[] = {{0, {-3, 0, 0, 0}, "(-3)00:00:00"},
               {259200, {0, 0, 0, 0}, "00:00:00"},
               {345600, {1, 0, 0, 0}, "(+1)00:00:00"},
               {NO_TIME, {}, ""},
               {NO_TIME - 1, {24852, 3, 13, 57}, "(+24852)03:13:57"},
               {INT_MAX, {}, ""},
               {-1, {}, ""},
               {INT_MIN, {}, ""}};
  for (const auto& [t, parts, text] : cases) {
    Parts p;
    EXPECT_EQ(Times::ConvertTimeToDayHourMin(t, p.day, p.hour, p.minute, p.second), *text != '\0');
    EXPECT_EQ(p, parts) << t;
    EXPECT_EQ(Times::ConvertTimeToStrWithDays(t, true), text);
  }
}

TEST(TimeConversionTest, NothingIsCheckedAndAllWrapsInThirtyTwoBits) {
  EXPECT_EQ(Times::ConvertToTime(0, 25, -1, 61), 259200 + 25 * 3600 - 60 + 61);
  EXPECT_EQ(Times::ConvertToTime(24853, 0, 0, 0), static_cast<std::int32_t>(24856LL * 86400));
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
