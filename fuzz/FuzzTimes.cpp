// A record of a data center, one text a line, and a time of eight bytes in front: the whole way
// from the server's record to the text on the screen.

#include <array>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include <fuzz/Require.h>
#include <support/os_toolkit/os_tokenizer.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using Times = ForecastTimesManipulationMP;

// Each ends before a zero byte.
std::array<std::string, 5> Lines(std::string_view text) {
  std::array<std::string, 5> lines;
  for (std::string& line : lines) {
    std::string_view whole = vq::Cut(text, '\n');
    line = vq::Cut(whole, '\0');
  }
  return lines;
}

void CheckConversions(std::int32_t t) {
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  const bool converted = Times::ConvertTimeToDayHourMin(t, day, hour, minute, second);
  vq::Require(converted == (t >= 0 && t < NO_TIME));
  vq::Require(!converted || Times::ConvertToTime(day, hour, minute, second) == t);
  vq::Require(Times::ConvertTimeToStrWithDays(t, true).empty() != converted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int64_t t = 0;
  if (size < sizeof t) return 0;
  std::memcpy(&t, data, sizeof t);
  CheckConversions(static_cast<std::int32_t>(t));
  const auto lines = Lines(vq::Text(data + sizeof t, size - sizeof t));

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
  // Cut off "(+24852)" and look for two colons and no sign after it.
  const std::string clock =
      text.substr(text.find(')') == std::string::npos ? 0 : text.find(')') + 1);
  const bool isClock = clock.size() == 8 && clock[2] == ':' && clock[5] == ':';
  const bool known = &times.GetOsTimeZone("DC") != &os_time_zone::greenwich();
  vq::Require(!known || text.empty() || isClock);
  return 0;
}
