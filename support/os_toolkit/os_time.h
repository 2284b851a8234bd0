// A time of the day, as a wall clock shows it, without a date and without a zone.
//
// A number of seconds outside the day is kept as it is: with a date it leads to the days around it,
// and hour(), minute() and second() return the clock's reading at that moment.
//
//   os_time(7, 30, 0).since_midnight().to_seconds();  // 27000
//   os_time(-3600).hour();                            // 23, of the day before
//   os_time(25, 0, 0);                                // raises os_toolkit_error
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TIME_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TIME_H

#include <compare>
#include <cstdint>

#include <support/Export.h>
#include <support/os_toolkit/os_time_period.h>

class VQ_CLIENT_COMMON_API os_time {
 public:
  // Midnight.
  constexpr os_time() noexcept = default;
  // Seconds after midnight, any number.
  constexpr explicit os_time(std::int64_t secondsAfterMidnight)
      : m_sinceMidnight(secondsAfterMidnight) {}
  // A period after midnight, of any length.
  constexpr explicit os_time(os_time_period sinceMidnight) : m_sinceMidnight(sinceMidnight) {}
  // 0 to 23, 0 to 59, 0 to 59; anything else raises os_toolkit_error.
  constexpr os_time(int hour, int minute, int second)
      : m_sinceMidnight(0, hour, minute, second, 0) {
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
      os_toolkit_error::raise_no_such_time(hour, minute, second);
    }
  }

  // The period since midnight, as given.
  constexpr os_time_period since_midnight() const noexcept { return m_sinceMidnight; }
  // The clock's reading: 0 to 23, 0 to 59, 0 to 59, without whole days.
  constexpr int hour() const noexcept { return static_cast<int>(SecondOfDay() / 3600); }
  constexpr int minute() const noexcept { return static_cast<int>(SecondOfDay() / 60 % 60); }
  constexpr int second() const noexcept { return static_cast<int>(SecondOfDay() % 60); }

  // By the period since midnight.
  friend constexpr auto operator<=>(const os_time&, const os_time&) = default;

 private:
  constexpr std::int64_t SecondOfDay() const noexcept {
    const std::int64_t rest = m_sinceMidnight.to_seconds() % os_time_period::kSecondsOfDay;
    return rest < 0 ? rest + os_time_period::kSecondsOfDay : rest;
  }
  os_time_period m_sinceMidnight;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TIME_H
