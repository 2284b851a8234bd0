// An instant, with the date and time of one zone's clock.
//
// The instant is counted from 00:00 UTC of the Julian day 0, so 1970-01-01 00:00 UTC is 2440588
// days, or 210866803200 seconds.
//
//   const os_time_zone zone(os_time_period(-3600, 0), "CET", "CET");
//   const os_time_and_date midnight(os_time(0), os_date(2024, 7, 1), zone);
//   midnight.utc_time_and_date();                             // the instant
//   const os_time_and_date now = os_time_and_date::now();     // in UTC
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TIME_AND_DATE_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TIME_AND_DATE_H

#include <compare>

#include <support/Export.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time.h>
#include <support/os_toolkit/os_time_period.h>
#include <support/os_toolkit/os_time_zone.h>

// Thread safety: now and set_clock may be called from any thread at any time.
class VQ_CLIENT_COMMON_API os_time_and_date {
 public:
  // The instant, counted as above.
  using clock_function = os_time_period (*)();

  // 1970-01-01 00:00 UTC.
  os_time_and_date() : os_time_and_date(os_time(), os_date()) {}
  // From the reading of the zone's clock; without a zone, of UTC's. The zone is read here and not
  // kept. Raises os_toolkit_error when the time is outside the years of os_date.
  os_time_and_date(os_time time, os_date date);
  os_time_and_date(os_time time, os_date date, const os_time_zone& zone);
  // An instant, with the zone's clock. Raises as above.
  os_time_and_date(os_time_period utc, const os_time_zone& zone);

  // The present instant in UTC, from the system's clock or its replacement.
  static os_time_and_date now();
  // Replaces the clock, or with null restores the system's. Returns the former one, null for the
  // system's. The function must be callable from any thread that calls now.
  static clock_function set_clock(clock_function clock) noexcept;

  // The reading of the zone's clock.
  os_date date() const noexcept { return m_date; }
  os_time time() const noexcept { return m_time; }  // within the day
  // The instant, counted from 00:00 UTC of the Julian day 0.
  os_time_period utc_time_and_date() const noexcept { return m_utc; }

  // By instant; two zones' views of one instant are equal.
  friend std::strong_ordering operator<=>(const os_time_and_date& left,
                                          const os_time_and_date& right) {
    return left.m_utc <=> right.m_utc;
  }
  friend bool operator==(const os_time_and_date& left, const os_time_and_date& right) {
    return left.m_utc == right.m_utc;
  }

 private:
  void SetWallClock(os_time_period wallClock);

  os_time_period m_utc;
  os_date m_date;
  os_time m_time;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TIME_AND_DATE_H
