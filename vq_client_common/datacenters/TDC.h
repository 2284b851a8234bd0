// A client's record of one data center, a scheduling server that a central server administers.
//
// Terms. The *scheduler* is what runs the jobs, the *gateway* the process that a client reaches it
// through. The *new-day time* is the hour at which the scheduling day turns over, "HHMM", or five
// characters of which the first is ignored. A *synonym time* is a time past midnight that is
// counted on from the scheduling day before: with the new-day time 0700, the clock time 0200 is
// 2600, so that the times of one scheduling day ascend. The *next time* of a job is either "HHMM"
// or fourteen characters, "YYYYMMDDHHMM" and two more.
//
//   TDC berlin;
//   QCSCommAdminStruct record;   // as the server sent it
//   if (TDC::ConvertQCSCommAdminStructToTDC(record, berlin)) Show(berlin.GetName());
//   std::string synonym;
//   TDC::ConvertToTimeSynonymStatic("0700", "0200", synonym);  // true, "2600"
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TDC_H
#define VQ_CLIENT_COMMON_DATACENTERS_TDC_H

#include <cstdint>
#include <string>

#include <support/Export.h>
#include <vq_client_common/datacenters/TVltVersion.h>

struct QCSCommAdminStruct;  // the server's administration record: <vq_idl/AdministrationRecordsC.h>
class QCSDBJob;             // a job record; known by name alone

// All texts start empty, all numbers 0, all flags false. A copy takes every field; of the version
// it takes all but the SMART-tables flag.
//
// Thread contract: readers side by side, or one writer alone. The static functions keep no state.
class VQ_CLIENT_COMMON_API TDC {
 public:
  TDC() = default;
  TDC(const TDC&) = default;
  TDC& operator=(const TDC&) = default;

  // A record has no form in an archive: both return at once and read nothing. They come first, so
  // that they keep the first two places among the virtual functions.
  virtual void Serialize(void* archive);
  virtual void SerializePrevVersion(void* archive);
  virtual ~TDC();

  // The name, which is the key in a TDCList.
  std::string GetName() const { return m_name; }
  void SetName(const std::string& value) { m_name = value; }
  // The new-day time, "HHMM" or five characters.
  std::string GetNewDayTime() const { return m_newDayTime; }
  void SetNewDayTime(const std::string& value) { m_newDayTime = value; }
  // Whether the data center is in use: the mark as the server sends it.
  std::string GetEnabled() const { return m_enabled; }
  void SetEnabled(const std::string& value) { m_enabled = value; }
  // The short code that the server gave it.
  std::string GetCode() const { return m_code; }
  void SetCode(const std::string& value) { m_code = value; }
  // The time zone as the server has it, such as "(GMT+01:00) Paris".
  std::string GetTimeZone() const { return m_timeZone; }
  void SetTimeZone(const std::string& value) { m_timeZone = value; }
  // When summer time begins and ends, as the server has it; empty for none.
  std::string GetStartSummerTime() const { return m_startSummerTime; }
  void SetStartSummerTime(const std::string& value) { m_startSummerTime = value; }
  std::string GetEndSummerTime() const { return m_endSummerTime; }
  void SetEndSummerTime(const std::string& value) { m_endSummerTime = value; }
  // The protocol by which the server reaches it.
  std::string GetProtocol() const { return m_protocol; }
  void SetProtocol(const std::string& value) { m_protocol = value; }
  // The hosts of the scheduler and of the gateway.
  std::string GetVLTHostName() const { return m_vltHostName; }
  void SetVLTHostName(const std::string& value) { m_vltHostName = value; }
  std::string GetGTWHostName() const { return m_gtwHostName; }
  void SetGTWHostName(const std::string& value) { m_gtwHostName = value; }
  // Words for the user, and whom to ask.
  std::string GetDescription() const { return m_description; }
  void SetDescription(const std::string& value) { m_description = value; }
  std::string GetContact() const { return m_contact; }
  void SetContact(const std::string& value) { m_contact = value; }

  // Whether the data center wants upper-case input.
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

  // 0 to 6. The setter takes what it is given; UpdateFull repairs.
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
  // Both take over type, version and fix-pack level.
  void SetType(const TVltVersion& version) { m_version = version; }
  void SetVersion(const TVltVersion& version) { m_version = version; }
  // Whether the scheduler runs on z/OS.
  bool IsMVS() const { return m_version.Type() == VLT_TYPE_MAINFRAME; }

  // Assigns these eight fields and leaves all others. Mind that `uc` stands before `veltR` here and
  // behind it in UpdateFull.
  void Set(const std::string& name, const TVltVersion& version, bool uc, bool veltR, bool veltT,
           bool veltB, std::int32_t startDay, const std::string& newDay);

  // Takes over every field but IsOnlyInDraft and logs one line, at level 5, for each that changed.
  // True when anything changed. A start day outside 0 to 6 becomes 1 and counts as a change even
  // where 1 is stored. A version that differs in its fix-pack level alone counts as the same and is
  // left as it is.
  bool UpdateFull(const std::string& name, const std::string& enabled, const std::string& platform,
                  const std::string& version, const std::string& fixPack, const std::string& code,
                  const std::string& protocol, bool veltR, bool uc, bool veltT, bool veltB,
                  const std::string& timeZone, const std::string& hostName, std::int32_t port,
                  std::int32_t startDay, const std::string& gatewayHost, std::int32_t gatewayPort,
                  const std::string& newDay, const std::string& description,
                  const std::string& contact, const std::string& startSummerTime,
                  const std::string& endSummerTime);

  // The scheduler version that a server's record tells; an unknown platform gives an unknown type.
  static TVltVersion ConvertVLTVersionFromQCSCommAdminStruct(const QCSCommAdminStruct& record);
  // Updates `tdc` from a server's record, by UpdateFull; true when that changed anything.
  static bool ConvertQCSCommAdminStructToTDC(const QCSCommAdminStruct& record, TDC& tdc);

  // By name, byte by byte, the shorter first when one begins the other.
  bool operator<(const TDC& other) const { return m_name < other.m_name; }

  // As ConvertToTimeSynonymStatic, with this record's new-day time.
  bool ConvertToTimeSynonym(const std::string& source, std::string& dest) const;

  // `dest` becomes `source` with 24 hours added if it lies before the new-day time (true), and
  // `source` itself otherwise (false). False, and `dest` is not touched, when `source` has not four
  // characters or `newDay` neither four nor five. Texts are read as atoi reads them.
  static bool ConvertToTimeSynonymStatic(const std::string& newDay, const std::string& source,
                                         std::string& dest);

  // `dest` becomes the clock time of a synonym time, 2400 or later in four characters (true), and
  // `source` itself otherwise (false).
  static bool ConvertFromTimeSynonym(const std::string& source, std::string& dest);

  // The same for the next time of a job; true when `dest` is a converted value and not `nextTime`
  // itself. Of fourteen characters, the date goes back by one day, or on by one, with the time; a
  // date that the calendar does not have stays as written. The converted value is one character
  // shorter: the last is dropped.
  static bool ConvertNextTimeToTimeSynonym(const std::string& newDay, const std::string& nextTime,
                                           std::string& dest);
  static bool ConvertNextTimeFromTimeSynonym(const std::string& nextTime, std::string& dest);

  // 1 when `time` lies in the scheduling day that begins at `newDay` and its minutes are below 60;
  // 0 otherwise, with a message for the user in `err`, which is empty for 1. An unsound `newDay`
  // sets `newDayValid` to false, and then the minutes alone are looked at.
  static int CheckTimeHHMMTimeSynonym(const std::string& time, const std::string& newDay,
                                      bool& newDayValid, std::string& err);

  // 1 when `time` is a clock time, 2400 included; 0 otherwise, with a message in `err`. What cannot
  // be read counts as 0, which is valid.
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

// Log "NOT IMPLEMENTED" and return 0. The job is not touched and may be null.
VQ_CLIENT_COMMON_API int Convert_DBjobToTimeSynonym(QCSDBJob* job, const std::string& newDay);
VQ_CLIENT_COMMON_API int Convert_DBjobFromTimeSynonym(QCSDBJob* job);

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TDC_H
