#include <vq_client_common/text/ConvertFunctions.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/text/BaseString.h>

namespace {

TDiagRegister diagModule("ConvertFunctions");

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kPrefix = 4;  // digits of a record's length
constexpr std::size_t kNone = std::string_view::npos;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string ExecTime(std::string_view text) {
  if (text.empty()) return {};
  std::string_view sign;
  if (!IsDigit(text.front())) {
    sign = text.substr(0, 1);
    text.remove_prefix(1);
  }
  std::string_view suffix;
  if (text.ends_with('%')) {
    suffix = "%";
    text.remove_suffix(1);
  }
  const int number = vq::Atoi(text);
  return fmt::format("{}{:0{}}{}", sign, number, number < 0 ? 4 : 3, suffix);
}

char UnitOf(char last) {
  if (last == 'D' || last == 'd') return 'D';
  if (last == 'H' || last == 'h') return 'H';
  return 'M';
}

std::string Interval(std::string_view text) {
  if (text.empty()) return "00001M";
  const int number = vq::Atoi(text);
  return fmt::format("{:05}{}", number < 0 || number > 99999 ? 0 : number, UnitOf(text.back()));
}

std::string ShiftNum(std::string_view text) {
  if (text.empty()) return {};
  const int number = vq::Atoi(text);
  // Intentional: a negative number has its own sign after the field's; the server depends on it.
  return fmt::format("{}{:02}", number < 0 ? '-' : '+', number);
}

void AppendRecord(std::string_view line, std::string& buffer) {
  fmt::format_to(std::back_inserter(buffer), "{:04}{}", line.size(), line);
}

// Intentional: a record of two or more blanks and nothing else stays; servers store such lines.
std::string_view Trimmed(std::string_view line) {
  const std::size_t last = line.find_last_not_of(' ');
  if (last != kNone) return line.substr(0, last + 1);
  return line == " " ? "" : line;
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
  // Intentional: `out` is unchanged; screens keep the last value of an empty field.
  if (in.empty()) return;
  if (std::all_of(in.begin(), in.end(), IsDigit)) {
    out = fmt::format("{:0{}}", vq::Atoi(in), wide ? 3 : 2);
  } else {
    out = in;
  }
}

int ConvertBuffer2Lines(const std::string& buffer, std::string& lines) {
  const TDiagFunc diag(diagModule, "ConvertBuffer2Lines");
  const std::string copy = buffer;  // may be the same object as `lines`
  lines.clear();
  for (std::string_view rest = copy; !rest.empty();) {
    if (rest.size() < kPrefix) return 0;
    const int length = vq::Atoi(rest.substr(0, kPrefix));
    if (length < 0) return 0;
    rest.remove_prefix(kPrefix);
    const std::string_view line = rest.substr(0, static_cast<std::size_t>(length));
    lines += line;
    if (line.size() < static_cast<std::size_t>(length)) {
      throw std::out_of_range("invalid string position");
    }
    rest.remove_prefix(line.size());
    if (!rest.empty()) lines += kLineEnd;
  }
  return 1;
}

int ConvertLines2Buffer(const std::string& lines, std::string& buffer, unsigned int maxLine) {
  const TDiagFunc diag(diagModule, "ConvertLines2Buffer");
  if (maxLine == 0 && !lines.empty()) {
    throw std::invalid_argument("ConvertLines2Buffer: maxLine is 0");
  }
  const std::string copy = lines;  // may be the same object as `buffer`
  buffer.clear();
  for (std::string_view rest = copy; !rest.empty();) {
    const std::size_t end = rest.find(kLineEnd);
    const bool last = end == kNone;
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(last ? rest.size() : end + kLineEnd.size());
    do {
      const std::string_view piece = line.substr(0, maxLine);
      // Intentional: only a line without a line end is trimmed; others keep their blanks.
      AppendRecord(last ? Trimmed(piece) : piece, buffer);
      line.remove_prefix(piece.size());
    } while (!line.empty());
    if (!last && rest.empty()) AppendRecord("", buffer);
  }
  return 1;
}

int ConvertWindowsToUnix(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "ConvertWindowsToUnix");
  BaseString text(in);
  text.Replace("\r\n", "\n");
  out = std::move(text.Std());
  return 1;
}

int ConvertUnixToWindows(const std::string& in, std::string& out) {
  const TDiagFunc diag(diagModule, "ConvertUnixToWindows");
  BaseString text(in);
  // Intentional: a CR before the LF gets a second one; callers pass texts without CR.
  text.Replace("\n", "\r\n");
  out = std::move(text.Std());
  return 1;
}
