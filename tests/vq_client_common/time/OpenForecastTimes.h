// Opens what ForecastTimesManipulationMP keeps for its derived classes, and makes records for it.
//
// Thread contract: as ForecastTimesManipulationMP.
#ifndef VQ_TESTS_TIME_OPENFORECASTTIMES_H
#define VQ_TESTS_TIME_OPENFORECASTTIMES_H

#include <string>

#include <vq_client_common/time/ForecastTimesManipulationMP.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace vq::test {

class OpenForecastTimes : public ForecastTimesManipulationMP {
 public:
  using ForecastTimesManipulationMP::FindDcTimeInfo;
  using ForecastTimesManipulationMP::GetCommAdminStructByDc;
  using ForecastTimesManipulationMP::GetOsTimeZone;
  using ForecastTimesManipulationMP::GetUtcOffset;
  using ForecastTimesManipulationMP::GetUtcTime_T;
};

struct RecordTexts {
  std::string name;
  std::string timeZone = "(GMT)";
  std::string newDay = "";
  std::string odat = "";
  std::string summerStart = "";
  std::string summerEnd = "";
};

inline void Append(QCSCommAdminSeq& records, const RecordTexts& texts) {
  const CORBA::ULong index = records.length();
  records.length(index + 1);
  QCSCommAdminStruct& record = records[index];
  record.m_Name = texts.name.c_str();
  record.m_TimeZone = texts.timeZone.c_str();
  record.m_NewDayTime = texts.newDay.c_str();
  record.m_Odat = texts.odat.c_str();
  record.m_StartSummerTime = texts.summerStart.c_str();
  record.m_EndSummerTime = texts.summerEnd.c_str();
}

}  // namespace vq::test

#endif  // VQ_TESTS_TIME_OPENFORECASTTIMES_H
