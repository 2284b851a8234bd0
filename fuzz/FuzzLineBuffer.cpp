// Line buffers and job text: whatever the bytes, converting them is safe, and converting there and
// back gives the same text.
//
// The first byte is the longest line, 0 included; the rest is read both as a buffer and as a text.

#include <stdexcept>

#include <fuzz/Require.h>
#include <vq_client_common/text/ConvertFunctions.h>

namespace {

// 9999 bytes are the longest line that can be read back, and a closing line loses its blanks.
void RequireReturn(const std::string& lines) {
  std::string buffer;
  std::string again;
  ConvertLines2Buffer(lines, buffer, 9999);
  vq::Require(ConvertBuffer2Lines(buffer, again) == 1);
  vq::Require(again == lines || (lines.ends_with(' ') && lines.starts_with(again)));
}

void TryBuffer(const std::string& buffer) {
  std::string lines;
  try {
    const int result = ConvertBuffer2Lines(buffer, lines);
    vq::Require(result == 1 || result == 0);
  } catch (const std::out_of_range&) {
  }
  vq::Require(lines.size() <= buffer.size());
  RequireReturn(lines);
}

void TryText(const std::string& text, unsigned maxLine) {
  std::string out;
  try {
    vq::Require(ConvertLines2Buffer(text, out, maxLine) == 1);
    std::string lines;
    vq::Require(ConvertBuffer2Lines(out, lines) == 1);
  } catch (const std::invalid_argument&) {
    vq::Require(maxLine == 0 && !text.empty());
  }
  std::string windows;
  ConvertUnixToWindows(text, windows);
  ConvertWindowsToUnix(windows, out);
  vq::Require(out == text);
  FormatExecTime(text, out);
  FormatInterval(text, out);
  FormatShiftNum(text, out);
  FormatRetentionValues(text, out, maxLine % 2 == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text = vq::Text(data + 1, size - 1);
  TryBuffer(text);
  TryText(text, data[0]);
  if (text.find("  ") == std::string::npos && size < 9999) RequireReturn(text);
  return 0;
}
