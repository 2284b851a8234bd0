// Shows one moment as the clocks of several data centers show it. Needs no server.
//
//   data_center_times
//
// A real program gets the records from the server.

#include <exception>
#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

void Append(QCSCommAdminSeq& records, const char* name, const char* zone, const char* newDay,
            const char* summerStart, const char* summerEnd) {
  // Init would take a record with another new-day text up again for ever, so it does not come in.
  if (!ForecastTimesManipulationMP::IsUsableNewDay(newDay)) {
    std::cout << name << " is left out: its new day is at '" << newDay << "'.\n";
    return;
  }
  records.length(records.length() + 1);
  QCSCommAdminStruct& record = records[records.length() - 1];
  record.m_Name = name;
  record.m_TimeZone = zone;
  record.m_NewDayTime = newDay;
  record.m_StartSummerTime = summerStart;
  record.m_EndSummerTime = summerEnd;
}

}  // namespace

int main() {
  QCSCommAdminSeq records;
  Append(records, "BERLIN", "(GMT+01:00) Berlin", "07:00", "20240331", "20241027");
  Append(records, "LONDON", "(GMT) London", "07:00", "20240331", "20241027");
  Append(records, "TOKYO", "(GMT+09:00) Tokyo", "07:00", "", "");
  Append(records, "ROME", "(GMT+01:00) Rome", "0700", "", "");

  const os_time_and_date noon(os_time(12, 0, 0), os_date(2024, 7, 1));  // in UTC
  ForecastTimesManipulationMP times;
  try {
    times.Init(noon, true, &records, false);
  } catch (const std::exception& e) {  // a zone or a summer mark that cannot be read
    std::cerr << e.what() << '\n';
    return 1;
  }

  constexpr long long kEvening = 1719867600;  // 2024-07-01 21:00 UTC
  for (const char* name : {"BERLIN", "LONDON", "TOKYO"}) {
    const long long midnight = times.GetOdatMidnightForDc(name);
    std::cout << name << ' ' << times.ConvertTimeToString(kEvening, name) << ", "
              << (kEvening - midnight) / 3600 << " hours into its working date\n";
  }

  // Times that are absent are an empty text everywhere.
  std::cout << "[" << times.ConvertTimeToString(NO_TIME, "BERLIN") << "]\n";

  // Times of one scheduling day ascend: 02:00 of a day that begins at 07:00 is 26:00.
  std::string synonym;
  if (TDC::ConvertToTimeSynonymStatic("0700", "0200", synonym)) std::cout << synonym << '\n';
  return 0;
}
