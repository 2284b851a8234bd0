// A length of time, in seconds and nanoseconds, negative or positive.
//
// Counted from 00:00 of the Julian day number 0, a period also names an instant (the count of UTC)
// or a reading of a local clock: see os_time_and_date.
//
//   const os_time_period day(1, 0, 0, 0, 0);
//   const os_time_period half = os_time_period(0, 12, 0, 0, 0);
//   (half + half == day);               // true
//   (half - day).to_seconds();          // -43200
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TIME_PERIOD_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TIME_PERIOD_H

#include <compare>
#include <cstdint>

#include <support/Export.h>
#include <support/os_toolkit/os_toolkit_error.h>

// A result that does not fit 64 bits of seconds raises os_toolkit_error.
class VQ_CLIENT_COMMON_API os_time_period {
 public:
  // Conversion factors.
  static constexpr std::int64_t kSecondsOfDay = 86400;
  static constexpr std::int64_t kNanosecondsOfSecond = 1'000'000'000;

  // No time at all.
  constexpr os_time_period() noexcept = default;

  // Nanoseconds may have any size and sign; whole seconds of them are carried over.
  constexpr explicit os_time_period(std::int64_t seconds, std::int64_t nanoseconds = 0)
      : m_seconds(seconds) {
    if (nanoseconds != 0) Carry(nanoseconds);
  }
  // The sum of the five, each of any size and sign.
  constexpr os_time_period(std::int64_t days, std::int64_t hours, std::int64_t minutes,
                           std::int64_t seconds, std::int64_t nanoseconds)
      : os_time_period(Add(Add(Multiply(days, kSecondsOfDay), Multiply(hours, 3600)),
                           Add(Multiply(minutes, 60), seconds)),
                       nanoseconds) {}

  // The whole seconds, a part of a second rounded down: -0.5 s gives -1.
  constexpr std::int64_t to_seconds() const noexcept { return m_seconds; }
  // The whole days, a part of a day rounded down.
  constexpr std::int64_t to_days() const noexcept {
    return m_seconds / kSecondsOfDay - (m_seconds % kSecondsOfDay < 0 ? 1 : 0);
  }
  // The part that to_seconds omits, 0 to 999,999,999.
  constexpr std::int32_t nanoseconds() const noexcept { return m_nanoseconds; }

  // Arithmetic to the nanosecond.
  constexpr os_time_period operator-() const { return os_time_period() - *this; }
  friend constexpr os_time_period operator+(os_time_period left, os_time_period right) {
    return os_time_period(Add(left.m_seconds, right.m_seconds),
                          std::int64_t{left.m_nanoseconds} + right.m_nanoseconds);
  }
  friend constexpr os_time_period operator-(os_time_period left, os_time_period right) {
    return os_time_period(Subtract(left.m_seconds, right.m_seconds),
                          std::int64_t{left.m_nanoseconds} - right.m_nanoseconds);
  }
  // By length; negative periods are less than none.
  friend constexpr auto operator<=>(const os_time_period&, const os_time_period&) = default;

 private:
  static constexpr std::int64_t Add(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(left, right, &result)) os_toolkit_error::raise_overflow();
    return result;
  }
  static constexpr std::int64_t Subtract(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (__builtin_sub_overflow(left, right, &result)) os_toolkit_error::raise_overflow();
    return result;
  }
  static constexpr std::int64_t Multiply(std::int64_t left, std::int64_t right) {
    std::int64_t result = 0;
    if (__builtin_mul_overflow(left, right, &result)) os_toolkit_error::raise_overflow();
    return result;
  }
  constexpr void Carry(std::int64_t nanoseconds) {
    std::int64_t seconds = nanoseconds / kNanosecondsOfSecond;
    std::int64_t rest = nanoseconds % kNanosecondsOfSecond;
    if (rest < 0) {
      rest += kNanosecondsOfSecond;
      --seconds;
    }
    m_seconds = Add(m_seconds, seconds);
    m_nanoseconds = static_cast<std::int32_t>(rest);
  }

  std::int64_t m_seconds = 0;
  // 0 to 999,999,999, so that the order of the members is the order of the periods.
  std::int32_t m_nanoseconds = 0;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TIME_PERIOD_H
