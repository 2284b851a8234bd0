// A time zone: the offset of its clocks from UTC, with yearly rules that set them forward.
//
// The *offset* is what is added to the zone's standard clock to get UTC: negative in the east. The
// *adjustment* is what a rule in effect adds to the standard clock. So
//   UTC = wall clock + offset - adjustment.
//
//   os_time_zone berlin(os_time_period(-3600, 0), "CET", "CET");
//   berlin.insert(os_simple_time_zone_rule(os_calendar_date(3, 31, os_time_period(7200)),
//                                          os_calendar_date(10, 27, os_time_period(10800)), 2024,
//                                          2024, os_time_period(3600)));
//   berlin.dst_adjustment(os_time(12, 0, 0), os_date(2024, 7, 1)).to_seconds();  // 3600
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TIME_ZONE_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TIME_ZONE_H

#include <string>
#include <vector>

#include <support/Export.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_simple_time_zone_rule.h>
#include <support/os_toolkit/os_time.h>
#include <support/os_toolkit/os_time_period.h>

class VQ_CLIENT_COMMON_API os_time_zone {
 public:
  // A zone without rules. Name and abbreviation do not affect the arithmetic; any are accepted.
  os_time_zone(os_time_period offset, std::string name, std::string abbreviation);

  // UTC without rules; valid as long as the process.
  static const os_time_zone& greenwich();

  // Where several rules cover a moment, the one inserted first applies.
  void insert(const os_simple_time_zone_rule& rule);

  // As given to the constructor, and the rules in the order in which they were inserted. The
  // references are valid as long as the zone.
  os_time_period offset() const { return m_offset; }
  const std::string& name() const { return m_name; }
  const std::string& abbreviation() const { return m_abbreviation; }
  const std::vector<os_simple_time_zone_rule>& rules() const { return m_rules; }

  // The adjustment when the wall clock shows this time on this date; none outside the rules. Raises
  // os_toolkit_error when time and date are outside the years of os_date.
  os_time_period dst_adjustment(os_time time, os_date date) const;

  // Convert between the wall clock and UTC, both counted from 00:00 of the Julian day 0. A reading
  // that a rule's start skips and one that its end repeats count as adjusted, so that
  // to_utc(to_wall_clock(t)) differs from t by the adjustment in the repeated hour. Both raise like
  // dst_adjustment.
  os_time_period to_utc(os_time_period wallClock) const;
  os_time_period to_wall_clock(os_time_period utc) const;

 private:
  os_time_period m_offset;
  std::string m_name;
  std::string m_abbreviation;
  std::vector<os_simple_time_zone_rule> m_rules;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TIME_ZONE_H
