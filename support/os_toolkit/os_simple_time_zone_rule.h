// A yearly rule that sets clocks forward: summer time.
//
// The rule covers [start, end) of every year from the first to the last of its range, by the wall
// clock. A start after its end covers the turn of the year, as summer in the southern hemisphere:
// in every year of the range, both the days before the end and those from the start on. A start
// that equals its end covers nothing, as does a range whose last year is before its first.
//
//   // From 31 March to 27 October of 2024 and 2025, an hour.
//   const os_simple_time_zone_rule summer(os_calendar_date(3, 31), os_calendar_date(10, 27), 2024,
//                                         2025, os_time_period(0, 1, 0, 0, 0));
//
// Terms. The *standard* clock is the zone's clock without any rule. A *moment* is a period counted
// from 00:00 of the Julian day 0 on one of these clocks.
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_SIMPLE_TIME_ZONE_RULE_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_SIMPLE_TIME_ZONE_RULE_H

#include <support/Export.h>
#include <support/os_toolkit/os_calendar_date.h>
#include <support/os_toolkit/os_time_period.h>

class VQ_CLIENT_COMMON_API os_simple_time_zone_rule {
 public:
  // Years up to os_date's first or from its last on are taken as the nearest between them.
  // `adjustment` is added to the standard clock while the rule is in effect.
  os_simple_time_zone_rule(os_calendar_date start, os_calendar_date end, int firstYear,
                           int lastYear, os_time_period adjustment);

  // As given to the constructor, the years limited to those of os_date.
  os_calendar_date start() const { return m_start; }
  os_calendar_date end() const { return m_end; }
  int first_year() const { return m_firstYear; }
  int last_year() const { return m_lastYear; }
  os_time_period adjustment() const { return m_adjustment; }

  // Whether the rule is in effect when the wall clock shows this. It is in the hour that is skipped
  // at the start and in the one that is repeated at the end.
  bool covers_wall_clock(os_time_period moment) const;
  // Whether the rule is in effect when the standard clock would show this. Unlike for the wall
  // clock, this is never ambiguous: the rule starts when the standard clock reaches the start, and
  // ends when the adjusted clock reaches the end.
  bool covers_standard_clock(os_time_period moment) const;

 private:
  bool Covers(os_time_period standardClock, os_time_period adjustedClock) const;

  os_calendar_date m_start;
  os_calendar_date m_end;
  int m_firstYear;
  int m_lastYear;
  os_time_period m_adjustment;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_SIMPLE_TIME_ZONE_RULE_H
