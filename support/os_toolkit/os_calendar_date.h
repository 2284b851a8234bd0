// A day and time of any year, such as "31 March, 02:00": where a yearly rule starts or ends.
//
// Whether the day exists depends on the year, so nothing is refused here. A day that a year lacks
// counts as the start of the next one that it has: 29 February is 1 March in a common year, day 0
// is day 1, month 13 is the start of the next year.
//
//   os_calendar_date(3, 31, os_time_period(0, 2, 0, 0, 0)).in_year(2024);  // a reading of a clock
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_CALENDAR_DATE_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_CALENDAR_DATE_H

#include <compare>

#include <support/Export.h>
#include <support/os_toolkit/os_time_period.h>

class VQ_CLIENT_COMMON_API os_calendar_date {
 public:
  // The time of the day counts from 00:00 of the day.
  constexpr os_calendar_date(int month, int day, os_time_period timeOfDay = {}) noexcept
      : m_month(month), m_day(day), m_timeOfDay(timeOfDay) {}

  // As given to the constructor; nothing is checked before in_year.
  constexpr int month() const noexcept { return m_month; }
  constexpr int day() const noexcept { return m_day; }
  constexpr os_time_period time_of_day() const noexcept { return m_timeOfDay; }

  // The moment in that year, counted from 00:00 of the Julian day 0 on the clock that the caller
  // uses. The time of the day counts only when the year has the day. Raises os_toolkit_error for a
  // year outside those of os_date, or a day after the last of them.
  os_time_period in_year(int year) const;

  // By month, then day, then time of the day.
  friend constexpr auto operator<=>(const os_calendar_date&, const os_calendar_date&) = default;

 private:
  int m_month;
  int m_day;
  os_time_period m_timeOfDay;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_CALENDAR_DATE_H
