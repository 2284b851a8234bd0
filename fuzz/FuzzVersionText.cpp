// Version texts, new-day times and job times, as a server or a user may write them.
//
// An input is two lines, a version with its fix-pack level and a new-day time, and then a time.

#include <string_view>

#include <fuzz/Require.h>
#include <support/os_toolkit/os_tokenizer.h>
#include <vq_client_common/datacenters/TDC.h>
#include <vq_client_common/datacenters/TString2Enum.h>
#include <vq_client_common/datacenters/TVltVersion.h>

namespace {

bool IsClockTime(const std::string& text) {
  std::string err;
  return text.size() == 4 && text.find_first_not_of("0123456789") == std::string::npos &&
         text < "2400" && TDC::CheckTimeHHMMNoTimeSynonym(text, err) == 1;
}

void TryVersion(const std::string& full) {
  std::string version;
  std::string level;
  TVltVersion::SplitFullVersionStr(full, version, level);
  if (full.find('.') != std::string::npos && !level.empty()) {
    std::string composed;
    TVltVersion::ComposeFullVersionStr(version, level, composed);
    vq::Require(composed == full);
  }
  const TVltVersion first(TVltVersion::TypeFromString(version), version, level);
  const TVltVersion again(first.Type(), first.Ver(), first.FPLevel());
  vq::Require(again == first && again.FPLevel() == first.FPLevel());
  vq::Require(!first.Version700FP2Plus() || (first.Version700Plus() && first.Version610Plus()));
  vq::Require(!first.SupportsActiveSubTables() || first.SupportsActiveTables());

  TString2Enum registry;
  vq::Require(registry.enum_register(full, 7) == 1 && registry.enum_lookup(full) == 7);
}

void TryTimes(const std::string& newDay, const std::string& time) {
  std::string synonym;
  std::string back;
  if (TDC::ConvertToTimeSynonymStatic(newDay, time, synonym) && IsClockTime(time)) {
    vq::Require(TDC::ConvertFromTimeSynonym(synonym, back) && back == time);
  }
  std::string next;
  if (!TDC::ConvertNextTimeToTimeSynonym(newDay, time, next)) vq::Require(next == time);
  if (!TDC::ConvertNextTimeFromTimeSynonym(time, next)) vq::Require(next == time);

  bool newDayValid = false;
  std::string err;
  const int inDay = TDC::CheckTimeHHMMTimeSynonym(time, newDay, newDayValid, err);
  vq::Require(inDay == (err.empty() ? 1 : 0) && (inDay == 1 || err.back() == '\t'));
  const int inClock = TDC::CheckTimeHHMMNoTimeSynonym(time, err);
  vq::Require(inClock == (err.empty() ? 1 : 0) && (inClock == 1 || err.back() == '\t'));
  // A synonym of a valid clock time passes the check of its scheduling day.
  if (IsClockTime(time) && IsClockTime(newDay)) {
    TDC::ConvertToTimeSynonymStatic(newDay, time, synonym);
    vq::Require(TDC::CheckTimeHHMMTimeSynonym(synonym, newDay, newDayValid, err) == 1 &&
                newDayValid);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = vq::Text(data, size);
  std::string_view rest = input;
  TryVersion(std::string(vq::Cut(rest, '\n')));
  const std::string newDay(vq::Cut(rest, '\n'));
  TryTimes(newDay, std::string(rest));
  return 0;
}
