// A zone: how far its clocks are from UTC, with yearly rules that set them forward.
//
// The *offset* is what is added to the zone's standard clock to get UTC: negative in the east. The
// *adjustment* is what a rule in effect adds to the standard clock. So
//   UTC = clock on the wall + offset - adjustment.
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

// Thread contract: any number of threads may ask one zone at a time that nobody inserts.
class VQ_CLIENT_COMMON_API os_time_zone {
 public:
  // A zone without rules. The texts say nothing to the arithmetic; any are taken.
  os_time_zone(os_time_period offset, std::string name, std::string abbreviation);

  // UTC without rules; lives as long as the process.
  static const os_time_zone& greenwich();

  // Where several rules cover a moment, the one inserted first holds.
  void insert(const os_simple_time_zone_rule& rule);

  // As given to the constructor, and the rules in the order in which they were inserted. The
  // references last as long as the zone; that to the rules changes with it.
  os_time_period offset() const { return m_offset; }
  const std::string& name() const { return m_name; }
  const std::string& abbreviation() const { return m_abbreviation; }
  const std::vector<os_simple_time_zone_rule>& rules() const { return m_rules; }

  // The adjustment when the clock on the wall shows this time on this date; none outside the rules.
  // Raises os_toolkit_error when the time carries the date out of the years of os_date.
  os_time_period dst_adjustment(os_time time, os_date date) const;

  // Between a reading of the wall and UTC, both counted from 00:00 of the Julian day 0. A reading
  // that a rule's start leaves out and one that its end repeats are taken as adjusted, so
  // to_utc(to_wall()) differs by the adjustment in the repeated hour. Both raise as dst_adjustment
  // does.
  os_time_period to_utc(os_time_period wallClock) const;
  os_time_period to_wall_clock(os_time_period utc) const;

 private:
  os_time_period m_offset;
  std::string m_name;
  std::string m_abbreviation;
  std::vector<os_simple_time_zone_rule> m_rules;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TIME_ZONE_H
