#include <support/os_toolkit/os_calendar_date.h>

#include <support/os_toolkit/os_date.h>

os_time_period os_calendar_date::in_year(int year) const {
  if (os_date::is_valid(year, m_month, m_day)) {
    return os_date(year, m_month, m_day).start() + m_timeOfDay;
  }
  // The first day after it that the year has. A day below 1 counts as the first of its month.
  constexpr os_time_period kOneDay(1, 0, 0, 0, 0);
  if (m_month < 1) return os_date(year, 1, 1).start();
  if (m_month > 12 || (m_month == 12 && m_day > 31)) {
    return (os_date(year, 12, 31) + kOneDay).start();
  }
  return os_date(year, m_day < 1 ? m_month : m_month + 1, 1).start();
}
