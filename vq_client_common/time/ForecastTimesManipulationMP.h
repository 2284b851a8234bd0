// Turns forecast times into what a data center's clock shows.
//
// Terms. An *absolute* time is seconds since 1970-01-01 00:00 UTC. A *relative* time is seconds
// since 00:00 of the third day before a data center's *working date* (its ODAT), so that it stays
// positive for times a little before that date: NORMAL_OFFSET_IN_SEC is 00:00 of the working date,
// which is day 0. The *new-day time* is when a data center's scheduling day begins. The *summer
// marks* are two texts YYYYMMDD between which a data center's clock is an hour ahead. NO_TIME marks
// a time that is absent; it passes through conversions and shows as an empty text.
//
//   QCSCommAdminSeq records;   // as the server sent them
//   ForecastTimesManipulationMP times;
//   times.Init(os_time_and_date::now(), true, &records, true);
//   times.ConvertTimeToString(1719817200, "DC1");                // "(+1)07:00:00", say
//
// One zone is kept for each distinct combination of time-zone text and summer marks, for the life
// of the object. Summer marks set a yearly rule for the years from that of the start to that of the
// end; os_simple_time_zone_rule tells what it covers.
#ifndef VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H
#define VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include <support/Export.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time_and_date.h>
#include <support/os_toolkit/os_time_zone.h>

// The mark for a time that is absent, in every time field of the suite. It stands just under the
// largest value of 32 bits; conversions pass it through, and it shows as an empty text.
inline constexpr std::int32_t NO_TIME = 2147483638;

// What is known of one data center's clock: one entry of the table. The *working date* is the date
// of the scheduling day that jobs run in; it begins at the *new-day time*, which need not be
// midnight.
struct DcTimeInfo {
  const os_time_zone* zone;   // not owned; one of the table's zones
  std::int32_t newDayOffset;  // seconds after midnight at which the scheduling day begins
  os_date date;               // the working date
  std::int32_t utcOffset;     // seconds to add to local time at the new-day time to get UTC
  std::int64_t midnight;      // 00:00 of the date in the zone, in seconds since 1970 UTC
};

// The server's administration records: <vq_idl/AdministrationRecordsC.h>.
struct QCSCommAdminStruct;
class QCSCommAdminSeq;

// Thread contract: one thread at a time; nothing is locked, and Init empties the table in place.
// The static functions that convert may be called from any thread.
//
// The destructor is not virtual: an object is not deleted through a pointer to this base. Copies
// share the zones, which do not change once they are made.
class VQ_CLIENT_COMMON_API ForecastTimesManipulationMP {
 public:
  // Days before the working date at which relative times begin.
  static constexpr std::int32_t DAYS_OFFSET = 3;
  // Seconds of a day.
  static constexpr std::int32_t SIMUL_DAY_TIME_IN_SEC = 86400;
  // The relative time of 00:00 of the working date, in seconds.
  static constexpr std::int32_t NORMAL_OFFSET_IN_SEC = DAYS_OFFSET * SIMUL_DAY_TIME_IN_SEC;

  // Knows no data center; the reference time is 1970-01-01 00:00 UTC.
  ForecastTimesManipulationMP() = default;

  // Rebuilds the table from the records, which are only read and must not be null. With `useOdat`
  // each data center gets its own working date from its record, or today's (UTC) when the record
  // has none; without it all get the date of `now`.
  //
  // A record whose new-day text IsUsableNewDay refuses is logged and taken up again for as long as
  // it stands in the sequence, so Init does not return: ask IsUsableNewDay of every record first.
  //
  // Raises std::out_of_range for summer marks of which one has 8 characters and the other fewer
  // than 6, and for an offset in whose brackets fewer than two characters stand before the
  // separator; os_toolkit_error for a working date that the calendar does not have. The records
  // before the one that raised are then in the table.
  void Init(const os_time_and_date& now, bool convertLocally, QCSCommAdminSeq* records,
            bool useOdat);

  // Whether Init takes a record with this new-day text: five characters such as "07:30", "0000", or
  // none. Clients ask this before Init, because one other text in the sequence holds Init for ever.
  static bool IsUsableNewDay(const std::string& newDay);

  // A mark for clients; no conversion here asks it.
  void SetConvertTimeLocally(bool convertLocally) { m_convertTimeLocally = convertLocally; }
  bool IsConvertTimeLocally() const { return m_convertTimeLocally; }

  // The data center's zone, valid as long as this object and not past an assignment to it.
  // os_time_zone::greenwich() for an unknown name, which is logged.
  const os_time_zone& GetOsTimeZone(const std::string& dataCenter) const;

  // 00:00 of the working date in the data center's zone, as an absolute time within 32 bits. For an
  // unknown name, which is logged, the reference time: the last one given to Init or read by it.
  std::int64_t GetOdatMidnightForDc(const std::string& dataCenter) const;

  // Moves a time from one base to another in 32-bit arithmetic that wraps: t - oldBase + newBase.
  // With a data center's midnight and NORMAL_OFFSET_IN_SEC it makes an absolute time relative.
  static std::int32_t ConvertTimeT(long long t, int newBase, long long oldBase);

  // The relative time of a day counted from the working date and a time on it. Nothing is checked;
  // the arithmetic wraps in 32 bits.
  static std::int32_t ConvertToTime(int day, int hour, int minute, int second);

  // The reverse. False, with the outputs as they were, for a negative time and from NO_TIME on.
  static bool ConvertTimeToDayHourMin(std::int32_t t, int& day, int& hour, int& minute,
                                      int& second);

  // A relative time as "07:05", with seconds as "07:05:09"; outside day 0 the day in front, as in
  // "(+1)07:05". Empty for what ConvertTimeToDayHourMin refuses.
  static std::string ConvertTimeToStrWithDays(std::int32_t t, bool withSeconds);

  // An absolute time as the data center's clock shows it, in the form of ConvertTimeToStrWithDays
  // with seconds. Empty for NO_TIME. For an unknown name, which is logged: a time up to
  // NORMAL_OFFSET_IN_SEC as "HH:MM" on a clock of UTC, any other as an empty text.
  virtual std::string ConvertTimeToString(long long t, const std::string& dataCenter) const;

 protected:
  // The seconds to add to local time to get UTC, from a text with an offset in brackets:
  // "(GMT+02:00) Jerusalem" gives -7200. 0 for a text without; missing brackets are logged. Raises
  // std::out_of_range when fewer than two characters stand between "(" and the ":" or ".".
  int GetUtcOffset(const std::string& timeZoneText);

  // The zone kept under `key`, made of the other arguments when there is none. This object owns it.
  // Raises as Init tells of summer marks and offsets; then nothing is kept.
  const os_time_zone* GetOsTimeZone(const std::string& key, const std::string& timeZoneText,
                                    const std::string& summerStart, const std::string& summerEnd,
                                    int adjustmentHours);

  // The entry of a data center; null for an unknown name. Valid until Init or assignment.
  const DcTimeInfo* FindDcTimeInfo(const std::string& dataCenter) const;

  // The record whose name is held in the very buffer of `dataCenter`; null when there is none.
  static const QCSCommAdminStruct* GetCommAdminStructByDc(const QCSCommAdminSeq& records,
                                                          const std::string& dataCenter);

  // An instant as seconds since 1970-01-01 00:00 UTC, reduced to 32 bits.
  static std::int64_t GetUtcTime_T(const os_time_and_date& instant);

 private:
  static DcTimeInfo MakeDcTimeInfo(const os_time_zone& zone, std::int32_t newDayOffset,
                                   os_date date);

  os_time_and_date m_referenceTime;
  bool m_convertTimeLocally = false;
  std::map<std::string, std::shared_ptr<const os_time_zone>> m_zones;
  std::map<std::string, DcTimeInfo> m_dataCenters;  // points into m_zones, so it goes first
};

#endif  // VQ_CLIENT_COMMON_TIME_FORECASTTIMESMANIPULATIONMP_H
