#include <vq_client_common/datacenters/TArchive.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <limits>
#include <new>
#include <streambuf>
#include <string_view>
#include <type_traits>

#include <cxxabi.h>

#include <support/security/StupidEncrypt.h>
#include <vq_client_common/datacenters/internal/RecordPieces.h>

// Loading; TArchive.cpp has the rest.

namespace {

constexpr char kLineEnd = '\n';
constexpr std::size_t kMaxLine = 512;
constexpr std::uint32_t kMaxNumber = 50;  // bytes of a number's text
constexpr int kDecimal = 10;

using State = std::ios_base::iostate;
constexpr State kGood = std::ios_base::goodbit;
constexpr State kFail = std::ios_base::failbit;
constexpr State kAtEnd = std::ios_base::eofbit | std::ios_base::failbit;

constexpr std::size_t kStates = 16;

// The plain byte by the cipher's state and the hidden byte: one look-up a byte, and no choice that
// hangs on the data.
struct PlainTable {
  std::array<std::array<char, 256>, kStates> byState{};

  constexpr PlainTable() {
    for (std::size_t state = 0; state < kStates; ++state) {
      const std::size_t shift = 195 + 4 * state;
      for (std::size_t byte = 0; byte < 256; ++byte) {
        if (byte == kLineEnd) {
          byState[state][byte] = kLineEnd;
          continue;
        }
        // The byte's place among the 255 that are no line end, moved back by the shift.
        const std::size_t number = byte - (byte > kLineEnd ? 1 : 0);
        const std::size_t plain = (number + 255 - shift) % 255;
        byState[state][byte] =
            static_cast<char>(static_cast<unsigned char>(plain + (plain >= kLineEnd ? 1 : 0)));
      }
    }
  }
};
constexpr PlainTable kPlain;

// As strtoul reads it, up to a zero byte or the end of `text`.
unsigned long ToUnsignedLong(std::string_view text) {
  constexpr unsigned long kMax = std::numeric_limits<unsigned long>::max();
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  unsigned long value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    const auto digit = static_cast<unsigned long>(text[at] - '0');
    if (value >= kMax / kDecimal && value > (kMax - digit) / kDecimal) return kMax;
    value = value * kDecimal + digit;
  }
  return negative ? 0 - value : value;
}

// Meant: only the digits before the decimal point are read, archives in the field depend on it.
double ToDouble(std::string_view text) {
  return static_cast<double>(static_cast<std::uint32_t>(ToUnsignedLong(text)));
}

}  // namespace

void TArchive::RecordCipher(std::string_view hidden, char* plain) {
  unsigned sum = 0;  // the state is its remainder
  for (const char character : hidden) {
    const auto byte = static_cast<unsigned char>(character);
    *plain++ = kPlain.byState[sum % kStates][byte];
    sum += byte + 6U;
  }
}

// Runs `read` on the stream's buffer and gives the stream the state that it returns. The pieces
// it reads come from RecordPieces.h; the stream's state comes out as if it had extracted them.
template <typename Read>
void TArchive::LoadPieces(Read read) {
  std::iostream& stream = Stream();
  RequireGood(stream);
  State state = kGood;
  try {
    if (stream.tie() != nullptr) stream.tie()->flush();
    state = read(*stream.rdbuf());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const TArchiveException&) {  // from `read`
    throw;
  } catch (const abi::__forced_unwind&) {  // The thread is being cancelled.
    throw;
  } catch (...) {  // from the stream's buffer, which may raise anything
    state = std::ios_base::badbit;
  }
  if (state == kGood) return;
  stream.setstate(state);
  Fail();
}

// One line without its end. A line of more than 512 bytes is a failure.
std::string TArchive::ReadLine() {
  std::iostream& stream = Stream();
  std::array<char, kMaxLine + 1> line{};
  stream.getline(line.data(), line.size());
  RequireGood(stream);
  return std::string(line.data(), static_cast<std::size_t>(stream.gcount() - 1));
}

template <typename T>
void TArchive::ExtractPlain(T& value) {
  std::iostream& stream = Stream();
  stream >> value;
  RequireGood(stream);
}

std::string TArchive::ReadCipheredLine() {
  std::string line = ReadLine();
  StupidDecrypt(line, line);
  return line;
}

TArchive& TArchive::operator>>(std::string& value) {
  if (m_decryptType == kLines) {
    value = ReadCipheredLine();
    return *this;
  }
  const bool ciphered = m_decryptType == kRecords;
  LoadPieces([&](std::streambuf& in) {
    if (const vq::WholeRecord record = vq::PeekRecord(in); record.size > 0) {
      if (ciphered) {
        value.resize(record.body.size());
        RecordCipher(record.body, value.data());
      } else {
        value = record.body;
      }
      vq::SkipRecord(in, record);
      return kGood;
    }
    std::int64_t prefix = 0;
    if (const State state = vq::ReadPrefix(in, prefix); state != kGood) return state;
    if (prefix < 0 || prefix > std::numeric_limits<std::int32_t>::max()) return kFail;
    const std::size_t count = prefix == 0 ? 0 : static_cast<std::size_t>(prefix - 1);
    if (const State state = vq::ReadBody(in, count, value); state != kGood) return state;
    if (ciphered) RecordCipher(value, value.data());
    return vq::SkipLine(in);
  });
  return *this;
}

unsigned long TArchive::ReadUnsignedLong() {
  if (m_decryptType == kLines) return ToUnsignedLong(ReadCipheredLine());
  const bool ciphered = m_decryptType == kRecords;
  std::array<char, kMaxNumber> text;
  std::string_view body;
  LoadPieces([&](std::streambuf& in) {
    const vq::WholeRecord record = vq::PeekRecord(in);
    if (record.size > 0 && record.body.size() <= kMaxNumber) {
      body = {text.data(), record.body.copy(text.data(), text.size())};
      vq::SkipRecord(in, record);
      return kGood;
    }
    std::int64_t prefix = 0;
    if (const State state = vq::ReadPrefix(in, prefix); state != kGood) return state;
    // In 32 bits without sign, so that a prefix of 0 claims far too many bytes.
    const auto count = static_cast<std::uint32_t>(prefix - 1);
    if (count > kMaxNumber) Fail();
    body = {text.data(), count};
    return in.sgetn(text.data(), count) == count ? vq::SkipLine(in) : kAtEnd;
  });
  if (ciphered) RecordCipher(body, text.data());
  return ToUnsignedLong(body);
}

TArchive& TArchive::operator>>(double& value) {
  if (m_decryptType == kRecordsAsTheyStand) {
    ExtractPlain(value);
    return *this;
  }
  if (m_decryptType == kLines) {
    ReadCipheredLine();  // Meant: the value is dropped; old archives are read past it this way.
    return *this;
  }
  bool wholeLine = false;
  std::string text;
  LoadPieces([&](std::streambuf& in) {
    std::int64_t prefix = 0;
    if (const State state = vq::ReadPrefix(in, prefix); state != kGood) return state;
    if (prefix < 1 || prefix > std::numeric_limits<std::int32_t>::max()) return kFail;
    wholeLine = prefix == 1;
    return wholeLine ? kGood : vq::ReadUpToLineEnd(in, static_cast<std::size_t>(prefix - 1), text);
  });
  if (wholeLine) {
    text = ReadLine();
  } else {
    // Meant: deciphered at every decrypt type, and the line end stays; the next load skips it.
    StupidDecrypt(text, text);
  }
  value = ToDouble(text);
  return *this;
}

TArchive& TArchive::operator>>(float& value) {
  if (m_decryptType == kRecordsAsTheyStand) {
    ExtractPlain(value);
    return *this;
  }
  double wide = value;
  *this >> wide;
  value = static_cast<float>(wide);
  return *this;
}

// Plain at type 1, otherwise the low bits of what a record or a line holds. Bool and long take 32
// of them, as they do when they are stored.
template <typename T>
void TArchive::LoadInteger(T& value) {
  if (m_decryptType == kRecordsAsTheyStand) {
    ExtractPlain(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    value = static_cast<std::uint32_t>(ReadUnsignedLong()) != 0;
  } else if constexpr (std::is_same_v<T, long>) {
    value = static_cast<std::int32_t>(ReadUnsignedLong());
  } else {
    value = static_cast<T>(ReadUnsignedLong());
  }
}

TArchive& TArchive::operator>>(bool& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(char& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(unsigned char& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(short& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(unsigned short& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(int& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(unsigned int& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(long& value) {
  LoadInteger(value);
  return *this;
}

TArchive& TArchive::operator>>(unsigned long& value) {
  LoadInteger(value);
  return *this;
}
