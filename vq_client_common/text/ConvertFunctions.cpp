#include <vq_client_common/text/ConvertFunctions.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/Atoi.h>

namespace {

TDiagRegister diagModule("ConvertFunctions");

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kPrefix = 4;  // digits of a record's length
constexpr std::size_t kNone = std::string_view::npos;
constexpr int kMaxInterval = 99999;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// `number` with at least `digits` digits, zero-filled behind its minus sign.
std::string Padded(int number, std::size_t digits) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  const std::size_t present = text.size() - sign;
  if (present < digits) text.insert(sign, digits - present, '0');
  return text;
}

std::string ExecTime(std::string_view text) {
  if (text.empty()) return {};
  std::string sign;
  std::string suffix;
  if (!IsDigit(text.front())) {
    sign = text.front();
    text.remove_prefix(1);
  }
  if (text.ends_with('%')) {
    suffix = "%";
    text.remove_suffix(1);
  }
  return sign + Padded(vq::Atoi(text), 3) + suffix;
}

char UnitOf(char last) {
  switch (last) {
    case 'D':
    case 'd':
      return 'D';
    case 'H':
    case 'h':
      return 'H';
    default:
      return 'M';
  }
}

std::string Interval(std::string_view text) {
  if (text.empty()) return "00001M";
  const int number = vq::Atoi(text);
  return Padded(number < 0 || number > kMaxInterval ? 0 : number, 5) + UnitOf(text.back());
}

std::string ShiftNum(std::string_view text) {
  if (text.empty()) return {};
  const int number = vq::Atoi(text);
  // Meant: a negative number keeps its own sign behind the field's; the server depends on it.
  return number < 0 ? "-" + Padded(number, 1) : "+" + Padded(number, 2);
}

// The value of a record's prefix, the four bytes at `prefix`.
int LengthOf(const char* prefix) {
  unsigned value = 0;
  bool plain = true;
  for (std::size_t i = 0; i < kPrefix; ++i) {
    const unsigned digit = static_cast<unsigned char>(prefix[i]) - unsigned{'0'};
    plain = plain && digit <= 9;
    value = value * 10 + digit;
  }
  return plain ? static_cast<int>(value) : vq::Atoi(std::string_view(prefix, kPrefix));
}

void AppendRecord(std::string_view line, std::string& buffer) {
  std::array<char, 24> prefix{'0', '0', '0', '0'};
  const std::size_t length = line.size();
  std::size_t size = kPrefix;
  if (length < 10000) {
    prefix[0] = static_cast<char>('0' + length / 1000);
    prefix[1] = static_cast<char>('0' + length / 100 % 10);
    prefix[2] = static_cast<char>('0' + length / 10 % 10);
    prefix[3] = static_cast<char>('0' + length % 10);
  } else {
    char* const end = std::to_chars(prefix.data(), prefix.data() + prefix.size(), length).ptr;
    size = static_cast<std::size_t>(end - prefix.data());
  }
  buffer.append(prefix.data(), size);
  buffer.append(line);
}

// Meant: a record of two or more blanks and nothing else stays; servers hold such lines.
std::string_view TrimmedRight(std::string_view line) {
  const std::size_t last = line.find_last_not_of(' ');
  if (last != kNone) return line.substr(0, last + 1);
  return line == " " ? std::string_view() : line;
}

}  // namespace

void FormatExecTime(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "FormatExecTime");
  std::string result = ExecTime(in);
  VQ_LOG(diag, 5) << "ExecTime: before - " << in << ", after - " << result;
  out = std::move(result);
}

void FormatInterval(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "FormatInterval");
  std::string result = Interval(in);
  VQ_LOG(diag, 5) << "Interval: before - " << in << ", after - " << result;
  out = std::move(result);
}

void FormatShiftNum(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "FormatShiftNum");
  std::string result = ShiftNum(in);
  VQ_LOG(diag, 5) << "ShiftNum: before - " << in << ", after - " << result;
  out = std::move(result);
}

void FormatRetentionValues(const std::string& in, std::string& out, bool wide) {
  const TDiagFunc diag(diagModule, "FormatRetentionValues");
  if (in.empty()) return;
  if (std::all_of(in.begin(), in.end(), IsDigit)) {
    out = Padded(vq::Atoi(in), wide ? 3 : 2);
  } else {
    out = in;
  }
}

int ConvertBuffer2Lines(const std::string& buffer, std::string& lines) {
  const TDiagFunc diag(diagModule, "ConvertBuffer2Lines");
  std::string copy;
  std::string_view rest = buffer;
  if (&buffer == &lines) rest = copy = buffer;
  lines.clear();
  // A record gives at most what it takes: two bytes of line end for four of prefix.
  lines.reserve(rest.size());
  while (!rest.empty()) {
    if (rest.size() < kPrefix) return 0;
    const int length = LengthOf(rest.data());
    if (length < 0) return 0;
    rest.remove_prefix(kPrefix);
    const auto wanted = static_cast<std::size_t>(length);
    lines.append(rest.substr(0, wanted));
    if (wanted > rest.size()) throw std::out_of_range("invalid string position");
    rest.remove_prefix(wanted);
    if (!rest.empty()) lines.append(kLineEnd);
  }
  return 1;
}

int ConvertLines2Buffer(const std::string& lines, std::string& buffer, unsigned int maxLine) {
  const TDiagFunc diag(diagModule, "ConvertLines2Buffer");
  if (maxLine == 0 && !lines.empty()) {
    throw std::invalid_argument("ConvertLines2Buffer: maxLine is 0");
  }
  std::string copy;
  std::string_view rest = lines;
  if (&lines == &buffer) rest = copy = lines;
  buffer.clear();
  buffer.reserve(rest.size() + rest.size() / 16);
  while (!rest.empty()) {
    const std::size_t end = rest.find(kLineEnd);
    std::string_view line = rest.substr(0, end);
    const bool last = end == kNone;
    for (; line.size() > maxLine; line.remove_prefix(maxLine)) {
      const std::string_view piece = line.substr(0, maxLine);
      AppendRecord(last ? TrimmedRight(piece) : piece, buffer);
    }
    AppendRecord(last ? TrimmedRight(line) : line, buffer);
    if (last) break;
    rest.remove_prefix(end + kLineEnd.size());
    if (rest.empty()) AppendRecord({}, buffer);
  }
  return 1;
}

int ConvertWindowsToUnix(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "ConvertWindowsToUnix");
  std::string result;
  result.reserve(in.size());
  std::string_view rest = in;
  for (std::size_t end; (end = rest.find(kLineEnd)) != kNone;) {
    result.append(rest.substr(0, end)).push_back('\n');
    rest.remove_prefix(end + kLineEnd.size());
  }
  result.append(rest);
  out = std::move(result);
  return 1;
}

int ConvertUnixToWindows(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "ConvertUnixToWindows");
  std::string result;
  result.reserve(in.size() + in.size() / 16);
  std::string_view rest = in;
  for (std::size_t end; (end = rest.find('\n')) != kNone;) {
    // Meant: a CR that stands before the LF gets a second one; only lone LFs are expected here.
    result.append(rest.substr(0, end)).append(kLineEnd);
    rest.remove_prefix(end + 1);
  }
  result.append(rest);
  out = std::move(result);
  return 1;
}
