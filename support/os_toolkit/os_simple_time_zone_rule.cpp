#include <support/os_toolkit/os_simple_time_zone_rule.h>

#include <algorithm>

#include <support/os_toolkit/os_date.h>

namespace {

// One year is kept free on either side, for the periods that cover the turn of the year.
int NearestYear(int year) {
  return std::clamp(year, os_date::kMinYear + 1, os_date::kMaxYear - 1);
}

}  // namespace

os_simple_time_zone_rule::os_simple_time_zone_rule(os_calendar_date start, os_calendar_date end,
                                                   int firstYear, int lastYear,
                                                   os_time_period adjustment)
    : m_start(start),
      m_end(end),
      m_firstYear(NearestYear(firstYear)),
      m_lastYear(NearestYear(lastYear)),
      m_adjustment(adjustment) {}

bool os_simple_time_zone_rule::covers_wall_clock(os_time_period moment) const {
  return Covers(moment, moment);
}

bool os_simple_time_zone_rule::covers_standard_clock(os_time_period moment) const {
  return Covers(moment, moment + m_adjustment);
}

bool os_simple_time_zone_rule::Covers(os_time_period standardClock,
                                      os_time_period adjustedClock) const {
  if (m_firstYear > m_lastYear) return false;
  const bool overTheTurn = m_start > m_end;
  constexpr os_calendar_date kNewYear(1, 1);
  const int year = os_date::from_julian_day(standardClock.to_days()).year();

  // Each period begins by the standard clock and ends by the adjusted one. Over the turn, the
  // period that begins in the year before the range and the one that ends after it are cut at the
  // range.
  const int first = std::max(year - 1, m_firstYear - (overTheTurn ? 1 : 0));
  const int last = std::min(year + 1, m_lastYear);
  for (int begins = first; begins <= last; ++begins) {
    const int ends = begins + (overTheTurn ? 1 : 0);
    const os_time_period begin =
        begins < m_firstYear ? kNewYear.in_year(m_firstYear) : m_start.in_year(begins);
    const os_time_period end = ends > m_lastYear ? kNewYear.in_year(ends) : m_end.in_year(ends);
    if (standardClock >= begin && adjustedClock < end) return true;
  }
  return false;
}
