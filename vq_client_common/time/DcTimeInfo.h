// What is known of one data center's clock: one entry of ForecastTimesManipulationMP's table.
//
// Terms. The *working date* is the date of the scheduling day that jobs run in; it begins at the
// *new-day time*, which need not be midnight.
//
//   // In a class derived from ForecastTimesManipulationMP: the working date's noon in UTC.
//   if (const DcTimeInfo* info = FindDcTimeInfo("DC1")) return info->midnight + 43200;
#ifndef VQ_CLIENT_COMMON_TIME_DCTIMEINFO_H
#define VQ_CLIENT_COMMON_TIME_DCTIMEINFO_H

#include <cstdint>

#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time_zone.h>

// Thread contract: a plain value; distinct objects are independent.
struct DcTimeInfo {
  const os_time_zone* zone;   // not owned; one of the table's zones
  std::int32_t newDayOffset;  // seconds after midnight at which the scheduling day begins
  os_date date;               // the working date
  std::int32_t utcOffset;     // seconds to add to local time at the new-day time to get UTC
  std::int64_t midnight;      // 00:00 of the date in the zone, in seconds since 1970 UTC
};

#endif  // VQ_CLIENT_COMMON_TIME_DCTIMEINFO_H
