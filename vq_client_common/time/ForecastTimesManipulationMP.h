// Converts forecast times to the local times of data centers.
//
// Terms. An *absolute* time is in seconds since 1970-01-01 00:00 UTC. A *relative* time is in
// seconds since 00:00 of the third day before a data center's *working date* (its ODAT), so that
// times before that date are positive, too: NORMAL_OFFSET_IN_SEC is 00:00 of the working date,
// which is day 0. The *new-day time* is the time at which a data center's scheduling day begins;
// datacenters/TDC.h has a table of its texts. The *summer marks* are two dates YYYYMMDD between
// which a data center's clock is one hour ahead. NO_TIME is the value for no time.
//
//   QCSCommAdminSeq records;   // from the server
//   std::string reason;
//   if (const auto bad = ForecastTimesManipulationMP::FirstUnusableRecord(records, true, reason)) {
//     std::cerr << records[*bad].m_Name.in() << ": " << reason << '\n';
//     return 1;
//   }
//   ForecastTimesManipulationMP times;
//   times.Init(os_time_and_date::now(), true, &records, true);
//   Show(times.ConvertTimeToString(1719817200, "DC1"));   // such as "(+1)07:00:00"
//
// Summer marks define a rule for each year from that of the start to that of the end
// (os_simple_time_zone_rule.h).
#ifndef VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H
#define VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <support/Export.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time_and_date.h>
#include <support/os_toolkit/os_time_zone.h>

// The value for no time, in every time field of the suite. Conversions return it unchanged, and its
// text is empty.
inline constexpr std::int32_t NO_TIME = 2147483638;

// The clock of one data center.
struct DcTimeInfo {
  const os_time_zone* zone;   // owned by the table
  std::int32_t newDayOffset;  // the new-day time, in seconds after midnight
  os_date date;               // the working date
  std::int32_t utcOffset;     // seconds to add to local time at the new-day time to get UTC
  std::int64_t midnight;      // the absolute time of 00:00 of the date in the zone
};

// The server's administration records: <vq_idl/AdministrationRecordsC.h>.
struct QCSCommAdminStruct;
class QCSCommAdminSeq;

// A table of the clocks of data centers, and conversions of times. Copies share the zones, which
// never change. The destructor is not virtual: do not delete an object through a pointer to this
// class.
class VQ_CLIENT_COMMON_API ForecastTimesManipulationMP {
 public:
  // The days from the start of relative times to the working date.
  static constexpr std::int32_t DAYS_OFFSET = 3;
  // The seconds of a day.
  static constexpr std::int32_t SIMUL_DAY_TIME_IN_SEC = 86400;
  // The relative time of 00:00 of the working date, in seconds.
  static constexpr std::int32_t NORMAL_OFFSET_IN_SEC = DAYS_OFFSET * SIMUL_DAY_TIME_IN_SEC;

  // An empty table; the reference time is 1970-01-01 00:00 UTC.
  ForecastTimesManipulationMP() = default;

  // Builds the table from the records, which are not changed; `records` must not be null. With
  // `useOdat`, each data center has the working date of its record, or today's (UTC) when its ODAT
  // has not eight characters; without it, all have the date of `now`. IsConvertTimeLocally returns
  // `convertLocally`.
  //
  // Call FirstUnusableRecord before. With a record whose new-day text is unusable, Init never
  // returns: it logs the record and reads it again, since the table must not lack a record. Init
  // raises std::out_of_range for unusable summer marks and UTC offsets, os_toolkit_error for an
  // impossible working date. The records before are then in the table.
  void Init(const os_time_and_date& now, bool convertLocally, QCSCommAdminSeq* records,
            bool useOdat);

  // The index of the first record that Init cannot use, with the reason, in one line, in `reason`;
  // empty, with `reason` unchanged, when Init can use all records.
  static std::optional<std::uint32_t> FirstUnusableRecord(const QCSCommAdminSeq& records,
                                                          bool useOdat, std::string& reason);

  // Whether Init can use this new-day text: five characters such as "+0730" or "07:30", "0000", or
  // an empty string.
  static bool IsUsableNewDay(const std::string& newDay);

  // A flag for client programs, which no conversion uses.
  void SetConvertTimeLocally(bool convertLocally) { m_convertTimeLocally = convertLocally; }
  bool IsConvertTimeLocally() const { return m_convertTimeLocally; }

  // The data center's zone, owned by this object, valid until it is assigned to. For an unknown
  // name, which is logged, os_time_zone::greenwich().
  const os_time_zone& GetOsTimeZone(const std::string& dataCenter) const;

  // The absolute time of 00:00 of the working date in the data center's zone, limited to 32 bits.
  // For an unknown name, which is logged, the reference time: `now` of Init, or the last working
  // date.
  std::int64_t GetOdatMidnightForDc(const std::string& dataCenter) const;

  // t - oldBase + newBase, in 32-bit arithmetic that wraps; NO_TIME for NO_TIME. With a data
  // center's midnight as `oldBase` and NORMAL_OFFSET_IN_SEC as `newBase`, an absolute time becomes
  // relative.
  static std::int32_t ConvertTimeT(long long t, int newBase, long long oldBase);

  // The relative time of a time on a day, counted from the working date. The arguments are not
  // checked; the arithmetic wraps in 32 bits.
  static std::int32_t ConvertToTime(int day, int hour, int minute, int second);

  // The parts of a relative time. False, with the outputs unchanged, for a negative time and for
  // NO_TIME and above.
  static bool ConvertTimeToDayHourMin(std::int32_t t, int& day, int& hour, int& minute,
                                      int& second);

  // A relative time as "07:05", with seconds as "07:05:09". The day comes first unless it is 0:
  // "(+1)07:05". Empty for a time that ConvertTimeToDayHourMin refuses.
  static std::string ConvertTimeToStrWithDays(std::int32_t t, bool withSeconds);

  // An absolute time as the local time of a data center, in the form of ConvertTimeToStrWithDays
  // with seconds; empty for NO_TIME. For an unknown name, which is logged: "HH:MM" in UTC for a
  // time up to NORMAL_OFFSET_IN_SEC, empty for any other.
  virtual std::string ConvertTimeToString(long long t, const std::string& dataCenter) const;

 protected:
  // The seconds to add to local time to get UTC, from an offset in brackets: -7200 for "(GMT+02:00)
  // Jerusalem". 0 without an offset; missing brackets are logged. Raises std::out_of_range for
  // fewer than two characters between "(" and ":" or ".".
  int GetUtcOffset(const std::string& timeZoneText);

  // The zone that is stored under `key`, or else a new zone from the other arguments. Owned by this
  // object. Raises std::out_of_range when one summer mark has at least 8 characters and the other
  // fewer than 6, and as GetUtcOffset does.
  const os_time_zone* GetOsTimeZone(const std::string& key, const std::string& timeZoneText,
                                    const std::string& summerStart, const std::string& summerEnd,
                                    int adjustmentHours);

  // The entry of a data center, owned by this object, valid until Init or an assignment; null for
  // an unknown name.
  const DcTimeInfo* FindDcTimeInfo(const std::string& dataCenter) const;

  // The record whose name has the same address as the characters of `dataCenter`; null without one.
  // Equal strings are not enough.
  static const QCSCommAdminStruct* GetCommAdminStructByDc(const QCSCommAdminSeq& records,
                                                          const std::string& dataCenter);

  // An instant as an absolute time, limited to 32 bits.
  static std::int64_t GetUtcTime_T(const os_time_and_date& instant);

 private:
  static DcTimeInfo MakeDcTimeInfo(const os_time_zone& zone, std::int32_t newDayOffset,
                                   os_date date);

  os_time_and_date m_referenceTime;
  bool m_convertTimeLocally = false;
  std::map<std::string, std::shared_ptr<const os_time_zone>> m_zones;
  std::map<std::string, DcTimeInfo> m_dataCenters;  // points into m_zones
};

#endif  // VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H
