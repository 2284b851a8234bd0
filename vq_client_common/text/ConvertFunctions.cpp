#include <vq_client_common/text/ConvertFunctions.h>

#include <algorithm>
#include <array>
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

// Writes a text from its start over what the string held, and cuts the string to what was written
// at the end of its life. The string is given its length once, not with every piece.
class Output {
 public:
  // `expected` is a guess of the length; more is made room for.
  Output(std::string& text, std::size_t expected) : m_text(text) {
    if (m_text.size() < expected) m_text.resize(expected);
    PointBehind(0);
  }
  ~Output() { m_text.resize(Size()); }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Append(std::string_view piece) {
    if (Room() < piece.size()) Grow(piece.size());
    std::memcpy(m_to, piece.data(), piece.size());
    m_to += piece.size();
  }

  // Appends the first `length` bytes of `from`. The usual line is moved in one or two parts of a
  // fixed size, which is faster than one of the right size; what they bring too much lies in the
  // string and is overwritten by the next piece or cut off.
  void AppendLine(std::string_view from, std::size_t length) {
    constexpr std::size_t kPart = 64;
    if (length > 2 * kPart || from.size() < 2 * kPart || Room() < 2 * kPart) {
      Append(from.substr(0, length));
      return;
    }
    std::memcpy(m_to, from.data(), kPart);
    if (length > kPart) std::memcpy(m_to + kPart, from.data() + kPart, kPart);
    m_to += length;
  }

 private:
  std::size_t Size() const { return static_cast<std::size_t>(m_to - m_text.data()); }
  std::size_t Room() const { return static_cast<std::size_t>(m_end - m_to); }
  void PointBehind(std::size_t size) {
    m_to = m_text.data() + size;
    m_end = m_text.data() + m_text.size();
  }
  void Grow(std::size_t more) {
    const std::size_t size = Size();
    m_text.resize(std::max(size + more, size / 2 * 3));
    PointBehind(size);
  }

  std::string& m_text;
  char* m_to = nullptr;
  char* m_end = nullptr;
};

constexpr auto kTwoDigits = [] {
  std::array<char, 200> digits{};
  for (std::size_t i = 0; i < 100; ++i) {
    digits[2 * i] = static_cast<char>('0' + i / 10);
    digits[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return digits;
}();

// A record of the first `length` bytes of `from`.
void AppendRecord(std::string_view from, std::size_t length, Output& out) {
  if (length < 10000) {
    std::array<char, kPrefix> prefix;
    std::memcpy(prefix.data(), &kTwoDigits[length / 100 * 2], 2);
    std::memcpy(prefix.data() + 2, &kTwoDigits[length % 100 * 2], 2);
    out.Append(std::string_view(prefix.data(), kPrefix));
  } else {
    out.Append(std::to_string(length));
  }
  out.AppendLine(from, length);
}

// Where the first CR LF of `text` begins; its size when there is none.
std::size_t FindLineEnd(std::string_view text) {
  for (std::size_t at = 0; (at = text.find('\r', at)) != kNone; ++at) {
    if (at + 1 < text.size() && text[at + 1] == '\n') return at;
  }
  return text.size();
}

// Meant: a record of two or more blanks and nothing else stays; servers hold such lines.
std::size_t TrimmedLength(std::string_view line) {
  const std::size_t last = line.find_last_not_of(' ');
  if (last != kNone) return last + 1;
  return line == " " ? 0 : line.size();
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
  if (in.empty()) return;  // Meant: `out` stays; screens keep the last value of a field left empty.
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
  // A record gives at most what it takes: two bytes of line end for four of prefix.
  Output out(lines, rest.size());
  while (!rest.empty()) {
    if (rest.size() < kPrefix) return 0;
    const int length = LengthOf(rest.data());
    if (length < 0) return 0;
    rest.remove_prefix(kPrefix);
    const auto wanted = static_cast<std::size_t>(length);
    out.AppendLine(rest, std::min(wanted, rest.size()));
    if (wanted > rest.size()) throw std::out_of_range("invalid string position");
    rest.remove_prefix(wanted);
    if (!rest.empty()) out.Append(kLineEnd);
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
  Output out(buffer, rest.size() + rest.size() / 16);
  while (!rest.empty()) {
    const std::size_t end = FindLineEnd(rest);
    const bool last = end == rest.size();
    for (std::size_t left = end;; left -= maxLine) {
      const std::size_t length = std::min<std::size_t>(left, maxLine);
      // Meant: only a line without a line end is trimmed; the blanks of the others come back.
      AppendRecord(rest, last ? TrimmedLength(rest.substr(0, length)) : length, out);
      rest.remove_prefix(length);
      if (left <= maxLine) break;
    }
    if (last) break;
    rest.remove_prefix(kLineEnd.size());
    if (rest.empty()) AppendRecord(rest, 0, out);
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
