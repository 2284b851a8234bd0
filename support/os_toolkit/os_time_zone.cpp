#include <support/os_toolkit/os_time_zone.h>

#include <utility>

namespace {

using Rule = os_simple_time_zone_rule;

os_time_period AdjustmentAt(const std::vector<Rule>& rules, os_time_period moment,
                            bool (Rule::*covers)(os_time_period) const = &Rule::covers_wall_clock) {
  for (const Rule& rule : rules) {
    if ((rule.*covers)(moment)) return rule.adjustment();
  }
  return {};
}

}  // namespace

os_time_zone::os_time_zone(os_time_period offset, std::string name, std::string abbreviation)
    : m_offset(offset), m_name(std::move(name)), m_abbreviation(std::move(abbreviation)) {}

const os_time_zone& os_time_zone::greenwich() {
  // Never destroyed, so that code that runs at the end of the process can still use it.
  static const os_time_zone* const zone = new os_time_zone(os_time_period(), "UTC", "UTC");
  return *zone;
}

void os_time_zone::insert(const os_simple_time_zone_rule& rule) {
  m_rules.push_back(rule);
}

os_time_period os_time_zone::dst_adjustment(os_time time, os_date date) const {
  return AdjustmentAt(m_rules, date.start() + time.since_midnight());
}

os_time_period os_time_zone::to_utc(os_time_period wallClock) const {
  return wallClock + m_offset - AdjustmentAt(m_rules, wallClock);
}

os_time_period os_time_zone::to_wall_clock(os_time_period utc) const {
  const os_time_period standardClock = utc - m_offset;
  return standardClock + AdjustmentAt(m_rules, standardClock, &Rule::covers_standard_clock);
}
