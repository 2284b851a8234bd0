// A day of the Gregorian calendar, extended to the years before its introduction.
//
// The *Julian day number* counts days: 0 is the day -4713-11-24, and 1970-01-01 is day 2440588.
// Years run from -32767 to 32767, as those of std::chrono do, and there is a year 0. A date outside
// that, or one that its month does not have, cannot be made: it raises os_toolkit_error.
//
//   const os_date leapDay(2024, 2, 29);
//   const os_date next = leapDay + os_time_period(1, 0, 0, 0, 0);
//   next.month();                            // 3
//   (next - leapDay).to_days();              // 1
//   os_date::is_valid(2023, 2, 29);          // false
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_DATE_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_DATE_H

#include <chrono>
#include <compare>
#include <cstdint>

#include <support/Export.h>
#include <support/os_toolkit/os_time_period.h>

class VQ_CLIENT_COMMON_API os_date {
 public:
  // The Julian day number of 1970-01-01, and the years that a date may have.
  static constexpr std::int64_t kJulianDayOf1970 = 2440588;
  static constexpr int kMinYear = -32767;
  static constexpr int kMaxYear = 32767;

  // 1970-01-01.
  constexpr os_date() noexcept = default;
  // Month 1 to 12, day 1 to the month's last. Raises os_toolkit_error for a date that does not
  // exist.
  constexpr os_date(int year, int month, int day) {
    if (!is_valid(year, month, day)) os_toolkit_error::raise_no_such_date(year, month, day);
    m_days = std::chrono::sys_days(Compose(year, month, day)).time_since_epoch().count();
  }
  // Raises os_toolkit_error for a day outside the years of this class.
  static constexpr os_date from_julian_day(std::int64_t day) {
    if (day < kMinDay + kJulianDayOf1970 || day > kMaxDay + kJulianDayOf1970) {
      os_toolkit_error::raise_overflow();
    }
    os_date result;
    result.m_days = day - kJulianDayOf1970;
    return result;
  }
  // Whether os_date(year, month, day) can be made.
  static constexpr bool is_valid(int year, int month, int day) noexcept {
    return year >= kMinYear && year <= kMaxYear && month >= 1 && month <= 12 && day >= 1 &&
           day <= 31 && Compose(year, month, day).ok();
  }

  // The Julian day number.
  constexpr std::int64_t julian_day() const noexcept { return m_days + kJulianDayOf1970; }
  // 00:00 of this day, counted from 00:00 of the Julian day 0.
  constexpr os_time_period start() const { return {julian_day(), 0, 0, 0, 0}; }
  // The parts of the date; month and day count from 1.
  constexpr int year() const noexcept { return static_cast<int>(parts().year()); }
  constexpr int month() const noexcept {
    return static_cast<int>(static_cast<unsigned>(parts().month()));
  }
  constexpr int day() const noexcept {
    return static_cast<int>(static_cast<unsigned>(parts().day()));
  }
  // Year, month and day at once.
  constexpr std::chrono::year_month_day parts() const noexcept { return {Days()}; }
  // 0 Sunday to 6 Saturday.
  constexpr int day_of_week() const noexcept {
    return static_cast<int>(std::chrono::weekday(Days()).c_encoding());
  }

  // The day of the moment that is the period after (or before) 00:00 of this day. Raises
  // os_toolkit_error when that is outside the years of this class.
  friend constexpr os_date operator+(os_date date, os_time_period period) {
    return from_julian_day((date.start() + period).to_days());
  }
  friend constexpr os_date operator-(os_date date, os_time_period period) {
    return from_julian_day((date.start() - period).to_days());
  }
  constexpr os_date& operator+=(os_time_period period) { return *this = *this + period; }
  constexpr os_date& operator-=(os_time_period period) { return *this = *this - period; }
  // The whole days from `right` to `left`.
  friend constexpr os_time_period operator-(os_date left, os_date right) {
    return {left.m_days - right.m_days, 0, 0, 0, 0};
  }
  // By day.
  friend constexpr auto operator<=>(const os_date&, const os_date&) = default;

 private:
  static constexpr std::chrono::year_month_day Compose(int year, int month, int day) noexcept {
    return {std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
            std::chrono::day(static_cast<unsigned>(day))};
  }
  constexpr std::chrono::sys_days Days() const noexcept {
    return std::chrono::sys_days(std::chrono::days(m_days));
  }
  static constexpr std::int64_t kMinDay =
      std::chrono::sys_days(std::chrono::year(kMinYear) / 1 / 1).time_since_epoch().count();
  static constexpr std::int64_t kMaxDay =
      std::chrono::sys_days(std::chrono::year(kMaxYear) / 12 / 31).time_since_epoch().count();

  std::int64_t m_days = 0;  // since 1970-01-01
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_DATE_H
