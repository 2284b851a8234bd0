// Prints one time as the local time of several data centers. Needs no server.
//
//   data_center_times
//
// A real program gets the records from the server.

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

void Append(QCSCommAdminSeq& records, const char* name, const char* zone, const char* newDay,
            const char* summerStart, const char* summerEnd) {
  records.length(records.length() + 1);
  QCSCommAdminStruct& record = records[records.length() - 1];
  record.m_Name = name;
  record.m_TimeZone = zone;
  record.m_NewDayTime = newDay;
  record.m_StartSummerTime = summerStart;
  record.m_EndSummerTime = summerEnd;
}

// Removes the records that Init cannot use: one of them would keep it from returning.
void RemoveUnusable(QCSCommAdminSeq& records) {
  std::string reason;
  while (const auto bad =
             ForecastTimesManipulationMP::FirstUnusableRecord(records, false, reason)) {
    std::cout << records[*bad].m_Name.in() << " is left out: " << reason << ".\n";
    for (CORBA::ULong i = *bad + 1; i < records.length(); ++i) records[i - 1] = records[i];
    records.length(records.length() - 1);
  }
}

}  // namespace

int main() {
  QCSCommAdminSeq records;
  Append(records, "BERLIN", "(GMT+01:00) Berlin", "+0700", "20240331", "20241027");
  Append(records, "ROME", "(GMT+01:00) Rome", "0700", "", "");
  Append(records, "LONDON", "(GMT) London", "+0700", "20240331", "20241027");
  Append(records, "TOKYO", "(GMT+09:00) Tokyo", "+0700", "", "");
  RemoveUnusable(records);

  const os_time_and_date noon(os_time(12, 0, 0), os_date(2024, 7, 1));  // in UTC
  ForecastTimesManipulationMP times;
  times.Init(noon, true, &records, false);

  constexpr long long kEvening = 1719867600;  // 2024-07-01 21:00 UTC
  for (const char* name : {"BERLIN", "LONDON", "TOKYO"}) {
    const long long midnight = times.GetOdatMidnightForDc(name);
    std::cout << name << ' ' << times.ConvertTimeToString(kEvening, name) << ", "
              << (kEvening - midnight) / 3600 << " hours into its working date\n";
  }

  // The text of no time is empty.
  std::cout << "[" << times.ConvertTimeToString(NO_TIME, "BERLIN") << "]\n";

  // Times of one scheduling day ascend: in a day that begins at 07:00, 02:00 is 26:00.
  std::string synonym;
  if (TDC::ConvertToTimeSynonymStatic("+0700", "0200", synonym)) std::cout << synonym << '\n';
  return 0;
}
