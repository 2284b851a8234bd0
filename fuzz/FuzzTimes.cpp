// A record of a data center, one text a line, and a time of eight bytes in front: the whole way
// from the server's record to the text on the screen.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include <vq_client_common/time/ForecastTimesManipulationMP.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using Times = ForecastTimesManipulationMP;

std::array<std::string, 5> Lines(const char* begin, const char* end) {
  std::array<std::string, 5> lines;
  for (std::string& line : lines) {
    const char* const stop = std::find(begin, end, '\n');
    line.assign(begin, std::find(begin, stop, '\0'));
    begin = stop == end ? end : stop + 1;
  }
  return lines;
}

void CheckConversions(std::int32_t t) {
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  const bool converted = Times::ConvertTimeToDayHourMin(t, day, hour, minute, second);
  if (converted != (t >= 0 && t < NO_TIME)) std::abort();
  if (converted && Times::ConvertToTime(day, hour, minute, second) != t) std::abort();
  if (Times::ConvertTimeToStrWithDays(t, true).empty() == converted) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int64_t t = 0;
  if (size < sizeof t) return 0;
  std::memcpy(&t, data, sizeof t);
  CheckConversions(static_cast<std::int32_t>(t));
  const char* const texts = reinterpret_cast<const char*>(data);
  const auto lines = Lines(texts + sizeof t, texts + size);

  QCSCommAdminSeq records;
  records.length(1);
  records[0].m_Name = "DC";
  records[0].m_TimeZone = lines[0].c_str();
  records[0].m_NewDayTime = lines[1].c_str();
  records[0].m_Odat = lines[2].c_str();
  records[0].m_StartSummerTime = lines[3].c_str();
  records[0].m_EndSummerTime = lines[4].c_str();
  if (!Times::IsUsableNewDay(lines[1])) return 0;  // Init would not return

  Times times;
  try {
    times.Init(os_time_and_date(), false, &records, true);
  } catch (const std::out_of_range&) {
  } catch (const os_toolkit_error&) {
  }
  const std::string text = times.ConvertTimeToString(t, "DC");
  // Cut off "(+24852)" and look for two colons and no sign behind it.
  const std::string clock =
      text.substr(text.find(')') == std::string::npos ? 0 : text.find(')') + 1);
  const bool isClock = clock.size() == 8 && clock[2] == ':' && clock[5] == ':';
  const bool known = &times.GetOsTimeZone("DC") != &os_time_zone::greenwich();
  if (known && !text.empty() && !isClock) std::abort();
  return 0;
}
