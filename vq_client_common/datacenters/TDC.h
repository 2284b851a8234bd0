// A client's record of one data center: a scheduling server that a central server administers.
//
// Terms. The *scheduler* runs the jobs; the *gateway* is the process through which clients reach
// it. The *new-day time* is the time at which the scheduling day begins. A *synonym time* is a time
// after midnight with 24 hours added: with the new-day time 0700, the clock time 0200 is 2600, so
// that the times of one scheduling day ascend. The *next time* of a job is "HHMM", or
// "YYYYMMDDHHMM" and two more characters.
//
//   TDC berlin;
//   QCSCommAdminStruct record;   // from the server
//   if (TDC::ConvertQCSCommAdminStructToTDC(record, berlin)) Show(berlin.GetName());
//   std::string synonym;
//   TDC::ConvertToTimeSynonymStatic("+0700", "0200", synonym);   // true, "2600"
//
// Synonym times and time zones (time/ForecastTimesManipulationMP.h) read the text of a new-day time
// differently. Use "+" and HHMM, which both read in the same way:
//
//   Text      As synonym times read it   As time zones read it
//   "+0700"   07:00                      07:00
//   "0700"    07:00                      refused: Init does not return
//   "07:00"   00:07                      07:00
//   "-0700"   07:00                      7 hours before midnight
//   "0000"    00:00                      00:00
//   ""        refused: no conversion     00:00
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TDC_H
#define VQ_CLIENT_COMMON_DATACENTERS_TDC_H

#include <cstdint>
#include <string>

#include <support/Export.h>
#include <vq_client_common/datacenters/TVltVersion.h>

struct QCSCommAdminStruct;  // the server's administration record: <vq_idl/AdministrationRecordsC.h>
class QCSDBJob;             // a job record; known by name alone

// One data center. All strings are empty at first, all numbers 0, all flags false. A copy has every
// field but the SMART-tables flag of the version (TVltVersion.h).
class VQ_CLIENT_COMMON_API TDC {
 public:
  TDC() = default;
  TDC(const TDC&) = default;
  TDC& operator=(const TDC&) = default;

  // Both do nothing: a record is not stored in archives.
  virtual void Serialize(void* archive);
  virtual void SerializePrevVersion(void* archive);
  virtual ~TDC();

  // The name, which is the key in a TDCList.
  std::string GetName() const { return m_name; }
  void SetName(const std::string& value) { m_name = value; }
  // The new-day time, "HHMM" or five characters.
  std::string GetNewDayTime() const { return m_newDayTime; }
  void SetNewDayTime(const std::string& value) { m_newDayTime = value; }
  // Whether the data center is in use: the text from the server.
  std::string GetEnabled() const { return m_enabled; }
  void SetEnabled(const std::string& value) { m_enabled = value; }
  // The server's short code for the data center.
  std::string GetCode() const { return m_code; }
  void SetCode(const std::string& value) { m_code = value; }
  // The time zone: the text from the server, such as "(GMT+01:00) Paris".
  std::string GetTimeZone() const { return m_timeZone; }
  void SetTimeZone(const std::string& value) { m_timeZone = value; }
  // The first and the last day of summer time: the texts from the server; empty for none.
  std::string GetStartSummerTime() const { return m_startSummerTime; }
  void SetStartSummerTime(const std::string& value) { m_startSummerTime = value; }
  std::string GetEndSummerTime() const { return m_endSummerTime; }
  void SetEndSummerTime(const std::string& value) { m_endSummerTime = value; }
  // The protocol between the server and the data center.
  std::string GetProtocol() const { return m_protocol; }
  void SetProtocol(const std::string& value) { m_protocol = value; }
  // The hosts of the scheduler and of the gateway.
  std::string GetVLTHostName() const { return m_vltHostName; }
  void SetVLTHostName(const std::string& value) { m_vltHostName = value; }
  std::string GetGTWHostName() const { return m_gtwHostName; }
  void SetGTWHostName(const std::string& value) { m_gtwHostName = value; }
  // A description, and a person to contact.
  std::string GetDescription() const { return m_description; }
  void SetDescription(const std::string& value) { m_description = value; }
  std::string GetContact() const { return m_contact; }
  void SetContact(const std::string& value) { m_contact = value; }

  // Whether the data center requires upper-case input.
  bool GetUC() const { return m_uc; }
  void SetUC(bool value) { m_uc = value; }
  // Whether the add-ons VELTRA-R, VELTRA-T and VELTRA-B are present.
  bool GetVeltR() const { return m_veltR; }
  void SetVeltR(bool value) { m_veltR = value; }
  bool GetVeltT() const { return m_veltT; }
  void SetVeltT(bool value) { m_veltT = value; }
  bool GetVeltB() const { return m_veltB; }
  void SetVeltB(bool value) { m_veltB = value; }
  // Whether the data center exists only in a draft of the configuration, not on the server.
  bool IsOnlyInDraft() const { return m_onlyInDraft; }
  void SetOnlyInDraft(bool value) { m_onlyInDraft = value; }

  // The first day of the week, 0 to 6. The setter does not check the number.
  std::int32_t GetStartDayOfTheWeek() const { return m_startDayOfTheWeek; }
  void SetStartDayOfTheWeek(std::int32_t value) { m_startDayOfTheWeek = value; }
  // TCP ports of the scheduler and of the gateway.
  std::int32_t GetVLTPortNumber() const { return m_vltPortNumber; }
  void SetVLTPortNumber(std::int32_t value) { m_vltPortNumber = value; }
  std::int32_t GetGTWPortNumber() const { return m_gtwPortNumber; }
  void SetGTWPortNumber(std::int32_t value) { m_gtwPortNumber = value; }

  // A copy, its SMART-tables flag false.
  TVltVersion GetVersion() const { return m_version; }
  // The platform of the version.
  TVltType GetType() const { return m_version.Type(); }
  // Both set type, version and fix-pack level.
  void SetType(const TVltVersion& version) { m_version = version; }
  void SetVersion(const TVltVersion& version) { m_version = version; }
  // Whether the scheduler runs on z/OS.
  bool IsMVS() const { return m_version.Type() == VLT_TYPE_MAINFRAME; }

  // Sets these eight fields. Note the order of `uc` and `veltR`, which UpdateFull has the other way
  // round.
  void Set(const std::string& name, const TVltVersion& version, bool uc, bool veltR, bool veltT,
           bool veltB, std::int32_t startDay, const std::string& newDay);

  // Sets every field but IsOnlyInDraft, and logs a line at level 5 for each that changes. True when
  // any field changed. A start day outside 0 to 6 becomes 1, which always counts as a change. A
  // version that differs only in its fix-pack level counts as equal and is not stored.
  bool UpdateFull(const std::string& name, const std::string& enabled, const std::string& platform,
                  const std::string& version, const std::string& fixPack, const std::string& code,
                  const std::string& protocol, bool veltR, bool uc, bool veltT, bool veltB,
                  const std::string& timeZone, const std::string& hostName, std::int32_t port,
                  std::int32_t startDay, const std::string& gatewayHost, std::int32_t gatewayPort,
                  const std::string& newDay, const std::string& description,
                  const std::string& contact, const std::string& startSummerTime,
                  const std::string& endSummerTime);

  // The scheduler version in a server's record; its type is unknown for an unknown platform.
  static TVltVersion ConvertVLTVersionFromQCSCommAdminStruct(const QCSCommAdminStruct& record);
  // Updates `tdc` from a server's record by UpdateFull. True when any field changed.
  static bool ConvertQCSCommAdminStructToTDC(const QCSCommAdminStruct& record, TDC& tdc);

  // Compares the names byte by byte.
  bool operator<(const TDC& other) const { return m_name < other.m_name; }

  // As ConvertToTimeSynonymStatic, with this record's new-day time.
  bool ConvertToTimeSynonym(const std::string& source, std::string& dest) const;

  // Converts a clock time to a synonym time. True, with `source` and 24 hours in `dest`, when
  // `source` is before the new-day time; false, with `source` in `dest`, otherwise. False, with
  // `dest` unchanged, when `source` has not four characters, or `newDay` neither four nor five.
  // Texts are read as atoi reads them; of five characters the first is skipped.
  static bool ConvertToTimeSynonymStatic(const std::string& newDay, const std::string& source,
                                         std::string& dest);

  // Converts a synonym time, four characters from "2400" on, to a clock time in `dest` (true). Any
  // other `source` is copied to `dest` (false).
  static bool ConvertFromTimeSynonym(const std::string& source, std::string& dest);

  // The same for the next time of a job: true when `dest` is a converted value, false when it is
  // `nextTime` itself. In fourteen characters the date moves by one day, back or forward; an
  // impossible date is copied. The converted value has thirteen characters, without the last one,
  // so it cannot be converted back.
  static bool ConvertNextTimeToTimeSynonym(const std::string& newDay, const std::string& nextTime,
                                           std::string& dest);
  static bool ConvertNextTimeFromTimeSynonym(const std::string& nextTime, std::string& dest);

  // Checks a time of the scheduling day that begins at `newDay`. Returns 1, with `err` empty, when
  // `time` is in that day and its minutes are below 60; 0, with a message for the user in `err`,
  // otherwise. `newDayValid` becomes false for an invalid `newDay`; only the minutes are checked
  // then.
  static int CheckTimeHHMMTimeSynonym(const std::string& time, const std::string& newDay,
                                      bool& newDayValid, std::string& err);

  // Checks a clock time. Returns 1, with `err` empty, for 0000 to 2400 with minutes below 60; 0,
  // with a message for the user in `err`, otherwise. A string that is no number counts as 0, which
  // is valid.
  static int CheckTimeHHMMNoTimeSynonym(const std::string& time, std::string& err);

 private:
  static bool UpdateFieldIfChanged(const char* label, std::string& field, const std::string& value);
  static bool UpdateFieldIfChanged(const char* label, bool& field, bool value);
  static bool UpdateFieldIfChanged(const char* label, std::int32_t& field, std::int32_t value);

  std::string m_name;
  TVltVersion m_version;
  bool m_uc = false;
  bool m_veltR = false;
  bool m_veltT = false;
  bool m_veltB = false;
  std::int32_t m_startDayOfTheWeek = 0;
  std::string m_newDayTime;
  std::string m_enabled;
  std::string m_code;
  std::string m_timeZone;
  std::string m_startSummerTime;
  std::string m_endSummerTime;
  std::string m_protocol;
  std::string m_vltHostName;
  std::int32_t m_vltPortNumber = 0;
  std::string m_gtwHostName;
  std::int32_t m_gtwPortNumber = 0;
  std::string m_description;
  std::string m_contact;
  bool m_onlyInDraft = false;
};

// Not implemented: logs "NOT IMPLEMENTED" and returns 0. The job is not used and may be null.
VQ_CLIENT_COMMON_API int Convert_DBjobToTimeSynonym(QCSDBJob* job, const std::string& newDay);
VQ_CLIENT_COMMON_API int Convert_DBjobFromTimeSynonym(QCSDBJob* job);

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TDC_H
