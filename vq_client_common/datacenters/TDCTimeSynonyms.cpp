// The functions of TDC that convert and check clock times and synonym times.
//
// A time is the decimal number HHMM, unsigned: a negative number becomes a very large one.

#include <vq_client_common/datacenters/TDC.h>

#include <functional>
#include <string_view>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_date.h>
#include <support/os_toolkit/os_time_period.h>

namespace {

TDiagRegister diagModule("TDC");

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
    // Intentional: with one of the two last characters alone; readers expect 13 in all.
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
