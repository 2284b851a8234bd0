#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>
#include <functional>
#include <string_view>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaConversions.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time_period.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

TDiagRegister diagModule("TDC");

template <typename Field>
bool UpdateIfChanged(const char* label, Field& field, const Field& value) {
  const TDiagFunc diag(diagModule, "TDC::UpdateFieldIfChanged");
  if (field == value) return false;
  VQ_LOG(diag, 5) << "Value of " << label << " was changed from " << field << " to " << value;
  field = value;
  return true;
}

constexpr auto* Text = CorbaString2StlString;

// Only "1" sets a flag.
bool Flag(const char* member) {
  return Text(member) == "1";
}

// The server counts the days of the week from 1, the record from 0. A day below 1 becomes -1.
std::int32_t StartDay(std::int32_t day) {
  return std::max(day, 0) - 1;
}

// ---- Clock times and synonym times. A time is the decimal number HHMM, unsigned: a negative
// number becomes a very large one.

constexpr std::size_t kHhmmLength = 4;
constexpr std::size_t kMarkedNewDayLength = 5;  // one character before the HHMM

// A long next time: YYYYMMDD, HHMM, two more characters.
constexpr std::size_t kLongNextTimeLength = 14;
constexpr std::size_t kHhmmPosition = 8;

constexpr std::uint32_t kDay = 2400;  // 24 hours as HHMM
constexpr std::uint32_t kMinutesOfHour = 60;
constexpr std::uint32_t kHourOfHhmm = 100;
constexpr std::uint32_t kLastMinuteOfDay = 1439;

std::uint32_t ReadNumber(std::string_view text) {
  return static_cast<std::uint32_t>(vq::Atoi(text));
}

// Quotient and remainder, each with at least two digits. With the base 100 it prints a number HHMM,
// with the base 60 a count of minutes as HHMM.
std::string PrintTwoFields(std::uint32_t value, std::uint32_t base) {
  return fmt::format("{:02}{:02}", value / base, value % base);
}

bool IsNewDayLength(std::size_t length) {
  return length == kHhmmLength || length == kMarkedNewDayLength;
}

// The HHMM part of a new-day time; a string of any length but five is used as it is.
std::string_view HhmmOfNewDay(std::string_view newDay) {
  return newDay.size() == kMarkedNewDayLength ? newDay.substr(1) : newDay;
}

// The date of a long next time, moved by `days`; unchanged when there is no such date.
std::string MoveDate(const std::string& nextTime, int days) {
  try {
    const os_date date = os_date(vq::Atoi(nextTime.substr(0, 4)), vq::Atoi(nextTime.substr(4, 2)),
                                 vq::Atoi(nextTime.substr(6, 2))) +
                         os_time_period(days, 0, 0, 0, 0);
    return fmt::format("{:04}{:02}{:02}", date.year(), date.month(), date.day());
  } catch (...) {
    return nextTime.substr(0, kHhmmPosition);
  }
}

// Converts a next time: `convertTime(source, dest)` converts its HHMM, and its date moves by
// `days`.
template <typename ConvertTime>
bool ConvertNextTime(const TDiagFunc& diag, const std::string& nextTime, int days,
                     ConvertTime convertTime, std::string& dest) {
  if (nextTime.size() == kLongNextTimeLength) {
    std::string time;
    if (!convertTime(nextTime.substr(kHhmmPosition, kHhmmLength), time)) return false;
    // Intentional: only the first of the last two characters; readers expect 13 in all.
    dest = MoveDate(nextTime, days) + time + nextTime[kHhmmPosition + kHhmmLength];
    return true;
  }
  if (nextTime.size() == kHhmmLength) return convertTime(nextTime, dest);
  VQ_LOG(diag, 1) << "NextTime has illegal field length '" << nextTime << '\'';
  return false;
}

std::string InvalidTimeValue(const std::string& time) {
  return "'" + time + "' is not a valid time value\t";
}

}  // namespace

TDC::~TDC() = default;

void TDC::Serialize(void* /*archive*/) {}

void TDC::SerializePrevVersion(void* /*archive*/) {}

void TDC::Set(const std::string& name, const TVltVersion& version, bool uc, bool veltR, bool veltT,
              bool veltB, std::int32_t startDay, const std::string& newDay) {
  m_name = name;
  m_version = version;
  m_uc = uc;
  m_veltR = veltR;
  m_veltT = veltT;
  m_veltB = veltB;
  m_startDayOfTheWeek = startDay;
  m_newDayTime = newDay;
}

bool TDC::UpdateFieldIfChanged(const char* label, std::string& field, const std::string& value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFieldIfChanged(const char* label, bool& field, bool value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFieldIfChanged(const char* label, std::int32_t& field, std::int32_t value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFull(const std::string& name, const std::string& enabled,
                     const std::string& platform, const std::string& version,
                     const std::string& fixPack, const std::string& code,
                     const std::string& protocol, bool veltR, bool uc, bool veltT, bool veltB,
                     const std::string& timeZone, const std::string& hostName, std::int32_t port,
                     std::int32_t startDay, const std::string& gatewayHost,
                     std::int32_t gatewayPort, const std::string& newDay,
                     const std::string& description, const std::string& contact,
                     const std::string& startSummerTime, const std::string& endSummerTime) {
  const TDiagFunc diag(diagModule, "TDC::UpdateFull");
  bool changed = false;
  if (startDay < 0 || startDay > 6) {
    // Intentional: a repair always counts as a change; callers recognise a bad record by it.
    startDay = 1;
    changed = true;
  }
  changed |= UpdateFieldIfChanged("Name", m_name, name);
  changed |= UpdateFieldIfChanged("Enabled", m_enabled, enabled);

  const std::string level = vq::TrimFixPackLevel(fixPack);
  const TVltType type = TVltVersion::TypeFromString(platform);
  // Intentional: a new fix-pack level alone is no change and is not stored; see operator==.
  if (m_version != TVltVersion(type, version, level)) {
    VQ_LOG(diag, 5) << "Platform & Version was changed from " << m_version.TypeAsString() << ':'
                    << m_version.FullVer() << " to " << platform << ':' << version << '.' << level;
    m_version.SetTypeVer(type, version, level);
    changed = true;
  }

  changed |= UpdateFieldIfChanged("Code", m_code, code);
  changed |= UpdateFieldIfChanged("Protocol", m_protocol, protocol);
  changed |= UpdateFieldIfChanged("Uppercase", m_uc, uc);
  changed |= UpdateFieldIfChanged("VELTRA-R", m_veltR, veltR);
  changed |= UpdateFieldIfChanged("VELTRA-T", m_veltT, veltT);
  changed |= UpdateFieldIfChanged("VELTRA-B", m_veltB, veltB);
  changed |= UpdateFieldIfChanged("Time Zone", m_timeZone, timeZone);
  changed |= UpdateFieldIfChanged("Host Name", m_vltHostName, hostName);
  changed |= UpdateFieldIfChanged("Port", m_vltPortNumber, port);
  changed |= UpdateFieldIfChanged("Start Day", m_startDayOfTheWeek, startDay);
  changed |= UpdateFieldIfChanged("Gateway Host", m_gtwHostName, gatewayHost);
  changed |= UpdateFieldIfChanged("Gateway Port", m_gtwPortNumber, gatewayPort);
  changed |= UpdateFieldIfChanged("NewDay", m_newDayTime, newDay);
  changed |= UpdateFieldIfChanged("Description", m_description, description);
  changed |= UpdateFieldIfChanged("Contact", m_contact, contact);
  changed |= UpdateFieldIfChanged("ST Start", m_startSummerTime, startSummerTime);
  changed |= UpdateFieldIfChanged("ST End", m_endSummerTime, endSummerTime);
  return changed;
}

TVltVersion TDC::ConvertVLTVersionFromQCSCommAdminStruct(const QCSCommAdminStruct& record) {
  return {TVltVersion::TypeFromString(Text(record.m_Platform.in())), Text(record.m_Version.in()),
          Text(record.m_FixPackLevel.in())};
}

bool TDC::ConvertQCSCommAdminStructToTDC(const QCSCommAdminStruct& record, TDC& tdc) {
  // Intentional: the scope has the name of the list's class; readers of logs search for it.
  const TDiagFunc diag(diagModule, "TDCList::ConvertQCSCommAdminStructToTDC");
  return tdc.UpdateFull(
      Text(record.m_Name.in()), Text(record.m_Enabled.in()), Text(record.m_Platform.in()),
      Text(record.m_Version.in()), Text(record.m_FixPackLevel.in()), Text(record.m_Code.in()),
      Text(record.m_Protocol.in()), Flag(record.m_VeltR.in()), Flag(record.m_UpperCase.in()),
      Flag(record.m_VeltT.in()), Flag(record.m_VeltB.in()), Text(record.m_TimeZone.in()),
      Text(record.m_HostName.in()), record.m_PortNumber, StartDay(record.m_StartDayOfTheWeek),
      Text(record.m_GatewayHostName.in()), record.m_GatewayPortNumber,
      Text(record.m_NewDayTime.in()), Text(record.m_Description.in()), Text(record.m_Contact.in()),
      Text(record.m_StartSummerTime.in()), Text(record.m_EndSummerTime.in()));
}

bool TDC::ConvertToTimeSynonym(const std::string& source, std::string& dest) const {
  return ConvertToTimeSynonymStatic(m_newDayTime, source, dest);
}

bool TDC::ConvertToTimeSynonymStatic(const std::string& newDay, const std::string& source,
                                     std::string& dest) {
  const TDiagFunc diag(diagModule, "TDC::ConvertToTimeSynonymStatic");
  VQ_LOG(diag, 5) << "NewDayTime = '" << newDay << '\'';
  VQ_LOG(diag, 5) << "Source Time = '" << source << '\'';
  if (!IsNewDayLength(newDay.size()) || source.size() != kHhmmLength) return false;

  const std::uint32_t time = ReadNumber(source);
  const bool isSynonym = time < ReadNumber(HhmmOfNewDay(newDay));
  dest = isSynonym ? PrintTwoFields(time + kDay, kHourOfHhmm) : source;
  VQ_LOG(diag, 5) << "Dest Time = '" << dest << '\'';
  return isSynonym;
}

bool TDC::ConvertFromTimeSynonym(const std::string& source, std::string& dest) {
  const TDiagFunc diag(diagModule, "TDC::ConvertFromTimeSynonym");
  VQ_LOG(diag, 5) << "Source Time = " << source;
  dest = source;
  if (dest.size() != kHhmmLength) return false;

  const std::uint32_t time = ReadNumber(dest);
  const bool isSynonym = time >= kDay;
  if (isSynonym) dest = PrintTwoFields(time % kDay, kHourOfHhmm);
  VQ_LOG(diag, 5) << "Dest Time = " << dest;
  return isSynonym;
}

bool TDC::ConvertNextTimeToTimeSynonym(const std::string& newDay, const std::string& nextTime,
                                       std::string& dest) {
  const TDiagFunc diag(diagModule, "TDC::ConvertNextTimeToTimeSynonym");
  const bool isUsable = !nextTime.empty() && IsNewDayLength(newDay.size());
  // With a copy of the new-day time, since `dest` may be the same text.
  const auto convertTime = std::bind_front(&TDC::ConvertToTimeSynonymStatic, newDay);
  dest = nextTime;
  if (!isUsable) return false;
  // The scheduling day of a synonym time began on the day before.
  return ConvertNextTime(diag, nextTime, -1, convertTime, dest);
}

bool TDC::ConvertNextTimeFromTimeSynonym(const std::string& nextTime, std::string& dest) {
  const TDiagFunc diag(diagModule, "TDC::ConvertNextTimeFromTimeSynonym");
  dest = nextTime;
  if (nextTime.empty()) return false;
  return ConvertNextTime(diag, nextTime, 1, &TDC::ConvertFromTimeSynonym, dest);
}

int TDC::CheckTimeHHMMTimeSynonym(const std::string& time, const std::string& newDay,
                                  bool& newDayValid, std::string& err) {
  const TDiagFunc diag(diagModule, "TDC::CheckTimeHHMMTimeSynonym");
  const std::uint32_t value = ReadNumber(time);
  const std::uint32_t first = ReadNumber(HhmmOfNewDay(newDay));
  std::string message;
  if (value % kHourOfHhmm >= kMinutesOfHour) message = InvalidTimeValue(time);

  newDayValid = first <= kDay && first % kHourOfHhmm < kMinutesOfHour;
  if (newDayValid && (value < first || value >= first + kDay)) {
    // The last minute of the scheduling day: `first` in minutes plus 23 hours 59 minutes.
    const std::uint32_t last =
        first - (kHourOfHhmm - kMinutesOfHour) * (first / kHourOfHhmm) + kLastMinuteOfDay;
    message = "Value '" + time + "' is not in time range (" + PrintTwoFields(first, kHourOfHhmm) +
              " - " + PrintTwoFields(last, kMinutesOfHour) + ")\t";
  }
  err = message;
  return message.empty() ? 1 : 0;
}

int TDC::CheckTimeHHMMNoTimeSynonym(const std::string& time, std::string& err) {
  const TDiagFunc diag(diagModule, "TDC::CheckTimeHHMMNoTimeSynonym");
  const std::uint32_t value = ReadNumber(time);
  const bool valid = value % kHourOfHhmm < kMinutesOfHour && value <= kDay;
  err = valid ? std::string() : InvalidTimeValue(time);
  return valid ? 1 : 0;
}

int Convert_DBjobToTimeSynonym(QCSDBJob* /*job*/, const std::string& /*newDay*/) {
  const TDiagFunc diag(diagModule, "Convert_DBjobToTimeSynonym");
  VQ_LOG(diag, 0) << "NOT IMPLEMENTED";
  return 0;
}

int Convert_DBjobFromTimeSynonym(QCSDBJob* /*job*/) {
  const TDiagFunc diag(diagModule, "Convert_DBjobFromTimeSynonym");
  VQ_LOG(diag, 0) << "NOT IMPLEMENTED";
  return 0;
}
