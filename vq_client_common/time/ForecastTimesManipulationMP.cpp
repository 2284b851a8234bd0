#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaConversions.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_toolkit_error.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

TDiagRegister diagModule("ForecastTimesManipulationMP");

// From the start of the Julian day 0 to 1970-01-01 00:00 UTC.
constexpr os_time_period kSecondsTo1970(210866803200, 0);

// The low 32 bits, so that arithmetic on them wraps and is defined.
constexpr std::uint32_t Low32(long long value) {
  return static_cast<std::uint32_t>(value);
}

// The seconds after midnight of a new-day text; empty for a string that Init cannot use.
std::optional<std::int32_t> ReadNewDay(std::string_view newDay) {
  if (newDay.empty() || newDay == "0000") return 0;
  // Intentional: "0700" is refused, as it has not five characters; servers send five.
  if (newDay.size() != 5) return std::nullopt;
  const int hours = vq::Atoi(newDay.substr(0, 3));
  const int minutes = vq::Atoi(newDay.substr(3));
  return (hours * 60 + minutes) * 60;
}

// The number in a part of a summer mark, YYYYMMDD, whose day may be missing. Raises
// std::out_of_range for a mark of fewer than `at` characters.
std::int16_t MarkPart(const std::string& mark, std::size_t at, std::size_t count) {
  if (mark.size() < at) {
    throw std::out_of_range("the summer mark '" + mark + "' is not a date YYYYMMDD");
  }
  return static_cast<std::int16_t>(vq::Atoi(mark.substr(at, count)));
}

os_calendar_date MarkDate(const std::string& mark) {
  return {MarkPart(mark, 4, 2), MarkPart(mark, 6, 2), os_time_period(0, 0)};
}

}  // namespace

void ForecastTimesManipulationMP::Init(const os_time_and_date& now, bool convertLocally,
                                       QCSCommAdminSeq* records, bool useOdat) {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::Init");
  m_referenceTime = now;
  m_convertTimeLocally = convertLocally;
  m_dataCenters.clear();

  for (CORBA::ULong i = 0; i < records->length();) {
    const QCSCommAdminStruct& record = (*records)[i];
    std::string name = CorbaString2StlString(record.m_Name);
    const std::string newDay = CorbaString2StlString(record.m_NewDayTime);
    const std::optional<std::int32_t> newDayOffset = ReadNewDay(newDay);
    if (!newDayOffset) {
      VQ_LOG(diag, 4) << "Invalid new day time format (" << newDay << ") for datacenter " << name
                      << ", skip it";
      // Intentional: the same record is read again; a table must not lack a record.
      continue;
    }
    const std::string timeZone = CorbaString2StlString(record.m_TimeZone);
    const std::string summerStart = CorbaString2StlString(record.m_StartSummerTime);
    const std::string summerEnd = CorbaString2StlString(record.m_EndSummerTime);
    if (useOdat) {
      const std::string odat = CorbaString2StlString(record.m_Odat);
      if (odat.size() == 8) {
        m_referenceTime = os_time_and_date(
            os_time(0), os_date(vq::Atoi(odat.substr(0, 4)), vq::Atoi(odat.substr(4, 2)),
                                vq::Atoi(odat.substr(6))));
      } else {
        VQ_LOG(diag, 5) << "VLT: " << name << " ODAT is empty - using Current Time";
        m_referenceTime = os_time_and_date::now();
      }
    }
    const os_time_zone* const zone =
        GetOsTimeZone(timeZone + summerStart + summerEnd, timeZone, summerStart, summerEnd, 1);
    m_dataCenters.insert_or_assign(std::move(name),
                                   MakeDcTimeInfo(*zone, *newDayOffset, m_referenceTime.date()));
    ++i;
  }
}

bool ForecastTimesManipulationMP::IsUsableNewDay(const std::string& newDay) {
  return ReadNewDay(newDay).has_value();
}

std::optional<std::uint32_t> ForecastTimesManipulationMP::FirstUnusableRecord(
    const QCSCommAdminSeq& records, bool useOdat, std::string& reason) {
  QCSCommAdminSeq one;
  one.length(1);
  for (CORBA::ULong i = 0; i < records.length(); ++i) {
    const std::string newDay = CorbaString2StlString(records[i].m_NewDayTime);
    if (!IsUsableNewDay(newDay)) {
      reason = "the new-day time '" + newDay + "' has not five characters, such as '+0700'";
      return i;
    }
    try {
      one[0] = records[i];
      ForecastTimesManipulationMP().Init({}, false, &one, useOdat);
    } catch (const std::out_of_range& e) {
      reason = e.what();
      return i;
    } catch (const os_toolkit_error& e) {
      reason = e.what();
      return i;
    }
  }
  return std::nullopt;
}

const os_time_zone& ForecastTimesManipulationMP::GetOsTimeZone(
    const std::string& dataCenter) const {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::GetOsTimeZone");
  if (const DcTimeInfo* const info = FindDcTimeInfo(dataCenter)) return *info->zone;
  VQ_LOG(diag, 1) << "Failed to get DC Time Info for '" << dataCenter
                  << "',Time Zone will be considered as greenwich";
  return os_time_zone::greenwich();
}

std::int64_t ForecastTimesManipulationMP::GetOdatMidnightForDc(
    const std::string& dataCenter) const {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::GetOdatMidnightForDc");
  if (const DcTimeInfo* const info = FindDcTimeInfo(dataCenter)) return info->midnight;
  VQ_LOG(diag, 1) << "Failed to get DC Time Info for '" << dataCenter
                  << "',Gmt midnight will be used";
  return GetUtcTime_T(m_referenceTime);
}

std::int32_t ForecastTimesManipulationMP::ConvertTimeT(long long t, int newBase,
                                                       long long oldBase) {
  if (t == NO_TIME) return NO_TIME;
  return static_cast<std::int32_t>(Low32(t) - Low32(oldBase) + Low32(newBase));
}

std::int32_t ForecastTimesManipulationMP::ConvertToTime(int day, int hour, int minute, int second) {
  const std::uint32_t hours = (Low32(day) + DAYS_OFFSET) * 24U + Low32(hour);
  return static_cast<std::int32_t>((hours * 60U + Low32(minute)) * 60U + Low32(second));
}

bool ForecastTimesManipulationMP::ConvertTimeToDayHourMin(std::int32_t t, int& day, int& hour,
                                                          int& minute, int& second) {
  if (t < 0 || t >= NO_TIME) return false;
  day = t / SIMUL_DAY_TIME_IN_SEC - DAYS_OFFSET;
  hour = t / 3600 % 24;
  minute = t / 60 % 60;
  second = t % 60;
  return true;
}

std::string ForecastTimesManipulationMP::ConvertTimeToStrWithDays(std::int32_t t,
                                                                  bool withSeconds) {
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (!ConvertTimeToDayHourMin(t, day, hour, minute, second)) return {};
  std::string text = day != 0 ? fmt::format("({:+})", day) : "";
  text += fmt::format("{:02}:{:02}", hour, minute);
  if (withSeconds) text += fmt::format(":{:02}", second);
  return text;
}

std::string ForecastTimesManipulationMP::ConvertTimeToString(long long t,
                                                             const std::string& dataCenter) const {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::ConvertTimeToString");
  if (const DcTimeInfo* const info = FindDcTimeInfo(dataCenter)) {
    return ConvertTimeToStrWithDays(ConvertTimeT(t, NORMAL_OFFSET_IN_SEC, info->midnight), true);
  }
  VQ_LOG(diag, 1) << "Failed to get DC Time Info for '" << dataCenter
                  << "',Time will be converted to NO_TIME";
  if (t > NORMAL_OFFSET_IN_SEC) return {};
  const auto low = static_cast<std::int32_t>(Low32(t));
  return fmt::format("{:02}:{:02}", low / 3600 % 24, low / 60 % 60);
}

int ForecastTimesManipulationMP::GetUtcOffset(const std::string& timeZoneText) {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::GetUtcOffset");
  const std::size_t left = timeZoneText.find('(');
  if (left == std::string::npos) {
    VQ_LOG(diag, 1) << "Unsupported GMT string '" << timeZoneText << "', missing left bracket";
    return 0;
  }
  const std::size_t right = timeZoneText.find(')', left);
  if (right == std::string::npos || right == left + 1) {
    VQ_LOG(diag, 1) << "Unsupported GMT string '" << timeZoneText << "', missing right bracket";
    return 0;
  }
  const std::string inner = timeZoneText.substr(left + 1, right - left - 1);
  const std::size_t separator = inner.find_first_of(":.");
  if (separator == std::string::npos || separator + 1 == inner.size()) return 0;
  const std::size_t signAt = inner.find_first_of("+-");
  const bool negative = signAt != std::string::npos && inner[signAt] == '-';

  // Intentional: raises instead of returning 0; callers recognise a bad text by that.
  if (separator < 2) {
    throw std::out_of_range("the hours of the time zone '" + timeZoneText +
                            "' have fewer than two digits");
  }
  const int hours = vq::Atoi(inner.substr(separator - 2, 2));
  const int minutes = vq::Atoi(std::string_view(inner).substr(separator + 1));
  const std::uint32_t west = 0U - (Low32(hours) * 60U + Low32(minutes)) * 60U;
  return static_cast<int>(negative ? 0U - west : west);
}

const os_time_zone* ForecastTimesManipulationMP::GetOsTimeZone(const std::string& key,
                                                               const std::string& timeZoneText,
                                                               const std::string& summerStart,
                                                               const std::string& summerEnd,
                                                               int adjustmentHours) {
  const TDiagFunc diag(diagModule, "ForecastTimesManipulationMP::GetOsTimeZone");
  if (const auto kept = m_zones.find(key); kept != m_zones.end()) return kept->second.get();

  const auto zone =
      std::make_shared<os_time_zone>(os_time_period(GetUtcOffset(timeZoneText), 0), "UTC", "UTC");
  if (summerStart.size() >= 8 || summerEnd.size() >= 8) {
    zone->insert(os_simple_time_zone_rule(MarkDate(summerStart), MarkDate(summerEnd),
                                          MarkPart(summerStart, 0, 4), MarkPart(summerEnd, 0, 4),
                                          os_time_period(0, adjustmentHours, 0, 0, 0)));
  }
  return m_zones.emplace(key, zone).first->second.get();
}

const DcTimeInfo* ForecastTimesManipulationMP::FindDcTimeInfo(const std::string& dataCenter) const {
  const auto found = m_dataCenters.find(dataCenter);
  return found == m_dataCenters.end() ? nullptr : &found->second;
}

const QCSCommAdminStruct* ForecastTimesManipulationMP::GetCommAdminStructByDc(
    const QCSCommAdminSeq& records, const std::string& dataCenter) {
  for (CORBA::ULong i = 0; i < records.length(); ++i) {
    // Intentional: addresses are compared, not texts; callers depend on null for a copy of the
    // name.
    const char* const name = records[i].m_Name;
    if (name == dataCenter.c_str()) return &records[i];
  }
  return nullptr;
}

std::int64_t ForecastTimesManipulationMP::GetUtcTime_T(const os_time_and_date& instant) {
  const os_time_period since1970 = instant.utc_time_and_date() - kSecondsTo1970;
  // Intentional: absolute times have 32 bits on the wire, so this wraps as they do.
  return static_cast<std::int32_t>(Low32(since1970.to_seconds()));
}

DcTimeInfo ForecastTimesManipulationMP::MakeDcTimeInfo(const os_time_zone& zone,
                                                       std::int32_t newDayOffset, os_date date) {
  const os_time_period adjustment = zone.dst_adjustment(os_time(newDayOffset), date);
  return {&zone, newDayOffset, date,
          static_cast<std::int32_t>(Low32((zone.offset() - adjustment).to_seconds())),
          GetUtcTime_T(os_time_and_date(os_time(0), date, zone))};
}
