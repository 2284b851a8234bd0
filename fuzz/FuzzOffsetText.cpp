// The text of a time zone, whose bracketed offset a server wrote.

#include <stdexcept>

#include <fuzz/Require.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>

namespace {

struct Opened : ForecastTimesManipulationMP {
  using ForecastTimesManipulationMP::GetUtcOffset;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vq::Text(data, size);
  Opened times;
  try {
    const int offset = times.GetUtcOffset(text);
    // The text around the first pair of brackets does not count.
    const bool hasBrackets =
        text.find('(') != std::string::npos && text.find(')', text.find('(')) != std::string::npos;
    vq::Require(times.GetUtcOffset("+9:99)" + text + "(-9:99)") == offset || !hasBrackets);
  } catch (const std::out_of_range&) {
    // Only a separator with fewer than two characters before it may end here.
    const std::size_t left = text.find('(');
    const std::size_t separator = text.find_first_of(":.", left + 1);
    vq::Require(left != std::string::npos && separator <= left + 2);
  }
  return 0;
}
