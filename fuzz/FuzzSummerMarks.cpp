// Two summer marks, separated by a line end, and the zone that they make.

#include <stdexcept>

#include <fuzz/Require.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>

namespace {

struct Opened : ForecastTimesManipulationMP {
  using ForecastTimesManipulationMP::GetOsTimeZone;
};

constexpr os_time_period kHour(3600);

// The rule has the same effect by either clock, except in the hours around its start and end.
void CheckDay(const os_time_zone& zone, os_date date) {
  const os_time_period midnight(date.julian_day(), 0, 0, 0, 0);
  const os_time_period noon = midnight + os_time_period(43200);
  const os_time_period adjustment = zone.dst_adjustment(os_time(12, 0, 0), date);
  vq::Require(adjustment == os_time_period() || adjustment == kHour);
  vq::Require(zone.to_wall_clock(zone.to_utc(noon)) == noon);
  const os_time_period utc = zone.to_utc(midnight);
  vq::Require(utc <= midnight && utc >= midnight - kHour);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vq::Text(data, size);
  const std::size_t line = text.find('\n');
  const std::string start = text.substr(0, line);
  const std::string end = line == std::string::npos ? "" : text.substr(line + 1);
  Opened times;
  const bool hasRule = start.size() >= 8 || end.size() >= 8;
  try {
    const os_time_zone* const zone = times.GetOsTimeZone(text, "(GMT)", start, end, 1);
    vq::Require(zone->rules().size() == (hasRule ? 1U : 0U));
    vq::Require(times.GetOsTimeZone(text, "", "", "", 1) == zone);
    for (int month = 1; month <= 12; ++month) {
      for (const int year : {-1, 0, 1999, 2024, 9999}) {
        CheckDay(*zone, os_date(year, month, 1));
        CheckDay(*zone, os_date(year, month, 28) + os_time_period(3, 0, 0, 0, 0));
      }
    }
  } catch (const std::out_of_range&) {
    vq::Require(hasRule && (start.size() < 6 || end.size() < 6));
  }
  return 0;
}
