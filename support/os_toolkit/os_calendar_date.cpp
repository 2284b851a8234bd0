#include <support/os_toolkit/os_calendar_date.h>

#include <support/os_toolkit/os_date.h>

namespace {

os_time_period StartOf(os_date date) {
  return {date.julian_day(), 0, 0, 0, 0};
}

}  // namespace

os_time_period os_calendar_date::in_year(int year) const {
  if (os_date::is_valid(year, m_month, m_day)) {
    return StartOf(os_date(year, m_month, m_day)) + m_timeOfDay;
  }
  // The first day after it that the year has. A day under 1 stands for the first of its month.
  constexpr os_time_period kOneDay(1, 0, 0, 0, 0);
  if (m_month < 1) return StartOf(os_date(year, 1, 1));
  if (m_month >= 13 || (m_month == 12 && m_day > 31))
    return StartOf(os_date(year, 12, 31) + kOneDay);
  return StartOf(os_date(year, m_day < 1 ? m_month : m_month + 1, 1));
}
