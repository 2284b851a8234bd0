#include <vq_client_common/datacenters/TArchive.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <type_traits>

#include <support/security/StupidEncrypt.h>

namespace {

constexpr char kSeparator = ';';
constexpr char kLineEnd = '\n';
constexpr std::size_t kMaxLine = 512;
constexpr std::uint32_t kMaxNumber = 50;  // bytes of a number's text

// Restores the formatting of a stream.
struct FormatGuard {
  std::iostream& stream;
  std::ios_base::fmtflags flags = stream.flags();
  ~FormatGuard() { stream.flags(flags); }
};

// Extracts the number before a record's body and the character after it. The caller's formatting of
// the stream has no effect.
template <typename T>
void ReadPrefix(std::iostream& stream, T& number) {
  const FormatGuard guard{stream};
  stream >> std::dec >> std::skipws >> number;
  stream.get();
}

// Reads `count` bytes. Memory grows with the bytes that arrive, so that a false prefix claims none.
void ReadBody(std::iostream& stream, std::size_t count, std::string& body) {
  constexpr std::size_t kFirstChunk = 4096;
  body.clear();
  while (body.size() < count && stream.good()) {
    const std::size_t had = body.size();
    const std::size_t chunk = std::min(count - had, std::max(kFirstChunk, had));
    body.resize(had + chunk);
    stream.read(body.data() + had, static_cast<std::streamsize>(chunk));
    body.resize(had + static_cast<std::size_t>(stream.gcount()));
  }
}

void SkipLine(std::iostream& stream) {
  for (char c = 0; c != kLineEnd && stream.get(c);) {
  }
}

unsigned long ToUnsignedLong(const std::string& text) {
  return std::strtoul(text.c_str(), nullptr, 10);
}

}  // namespace

TArchive::TArchive(std::iostream* stream, unsigned int mode, int /*unused*/, void* /*unused*/)
    : m_loading(mode != 0), m_stream(stream) {}

TArchive::~TArchive() {
  try {
    Close();
  } catch (...) {  // of a stream that is set to raise exceptions
  }
  Abort();
}

void TArchive::Close() {
  if (m_stream == nullptr) return;
  std::iostream& stream = *m_stream;
  m_stream = nullptr;
  stream.flush();
}

void TArchive::Abort() {
  m_stream = nullptr;
}

void TArchive::Ignore() {
  if (m_loading && m_stream != nullptr) m_stream->ignore();
}

std::iostream& TArchive::Stream() const {
  if (m_stream == nullptr) Fail();
  return *m_stream;
}

void TArchive::RequireGood(const std::iostream& stream) {
  if (!stream.good()) Fail();
}

void TArchive::Fail() {
  throw TArchiveException(0, "");
}

template <typename T>
TArchive& TArchive::WritePlain(T value) {
  std::iostream& stream = Stream();
  stream << value << kLineEnd;
  RequireGood(stream);
  return *this;
}

TArchive& TArchive::operator<<(const std::string& value) {
  std::iostream& stream = Stream();
  // Intentional: without the flag a string is written as zero bytes; loading programs skip it by
  // its length.
  std::string body(value.size(), '\0');
  if (m_encrypt) StupidEncrypt(value, body);
  std::string record = std::to_string(value.size() + 1) + kSeparator;
  record.append(body, 0, value.size()).push_back(kLineEnd);
  stream.write(record.data(), static_cast<std::streamsize>(record.size()));
  RequireGood(stream);
  return *this;
}

TArchive& TArchive::operator<<(unsigned long value) {
  return m_encrypt ? *this << std::to_string(value) : WritePlain(value);
}

TArchive& TArchive::operator<<(double value) {
  if (!m_encrypt) return WritePlain(value);
  std::array<char, 32> text{};  // "%22.15E" takes at most 23 bytes
  std::snprintf(text.data(), text.size(), "%22.15E", value);
  return *this << std::string(text.data());
}

TArchive& TArchive::operator<<(long value) {
  // Intentional: 32 bits without sign, whatever the width of a long; every loading program expects
  // them.
  return *this << static_cast<unsigned long>(static_cast<std::uint32_t>(value));
}

TArchive& TArchive::operator<<(unsigned char value) {
  return *this << static_cast<unsigned long>(value);
}
TArchive& TArchive::operator<<(unsigned short value) {
  return *this << static_cast<unsigned long>(value);
}
TArchive& TArchive::operator<<(unsigned int value) {
  return *this << static_cast<unsigned long>(value);
}
TArchive& TArchive::operator<<(bool value) {
  return *this << static_cast<long>(value);
}
TArchive& TArchive::operator<<(char value) {
  return *this << static_cast<long>(value);
}
TArchive& TArchive::operator<<(short value) {
  return *this << static_cast<long>(value);
}
TArchive& TArchive::operator<<(int value) {
  return *this << static_cast<long>(value);
}
TArchive& TArchive::operator<<(float value) {
  return *this << static_cast<double>(value);
}

// One line without its end. A line of more than 512 bytes is a failure.
std::string TArchive::ReadLine() {
  std::iostream& stream = Stream();
  std::array<char, kMaxLine + 1> line{};
  stream.getline(line.data(), line.size());
  RequireGood(stream);
  return std::string(line.data(), static_cast<std::size_t>(stream.gcount() - 1));
}

std::string TArchive::ReadCipheredLine() {
  std::string line = ReadLine();
  StupidDecrypt(line, line);
  return line;
}

template <typename T>
TArchive& TArchive::ExtractPlain(T& value) {
  std::iostream& stream = Stream();
  stream >> value;
  RequireGood(stream);
  return *this;
}

TArchive& TArchive::operator>>(std::string& value) {
  if (m_decryptType == kLines) {
    value = ReadCipheredLine();
    return *this;
  }
  std::iostream& stream = Stream();
  std::int32_t prefix = 0;
  ReadPrefix(stream, prefix);
  if (prefix < 0) stream.setstate(std::ios_base::failbit);
  RequireGood(stream);
  ReadBody(stream, prefix == 0 ? 0 : static_cast<std::size_t>(prefix - 1), value);
  if (m_decryptType == kRecords) StupidDecrypt(value, value);
  SkipLine(stream);
  RequireGood(stream);
  return *this;
}

unsigned long TArchive::ReadUnsignedLong() {
  if (m_decryptType == kLines) return ToUnsignedLong(ReadCipheredLine());
  std::iostream& stream = Stream();
  std::uint32_t prefix = 0;
  ReadPrefix(stream, prefix);
  RequireGood(stream);
  const std::uint32_t count = prefix - 1;  // a prefix of 0 claims far too many bytes
  if (count > kMaxNumber) Fail();
  std::string text;
  ReadBody(stream, count, text);
  SkipLine(stream);
  RequireGood(stream);
  if (m_decryptType == kRecords) StupidDecrypt(text, text);
  return ToUnsignedLong(text);
}

TArchive& TArchive::operator>>(double& value) {
  if (m_decryptType == kRecordsAsTheyStand) return ExtractPlain(value);
  if (m_decryptType == kLines) {
    ReadCipheredLine();  // Intentional: the value is skipped; old archives depend on it.
    return *this;
  }
  std::iostream& stream = Stream();
  std::int32_t prefix = 0;
  ReadPrefix(stream, prefix);
  if (prefix < 1) stream.setstate(std::ios_base::failbit);
  RequireGood(stream);
  std::string text;
  if (prefix == 1) {
    text = ReadLine();
  } else {
    const auto count = static_cast<std::size_t>(prefix - 1);
    while (text.size() < count && stream.peek() != kLineEnd && stream.good()) {
      text += static_cast<char>(stream.get());
    }
    if (text.empty()) stream.setstate(std::ios_base::failbit);
    RequireGood(stream);
    // Intentional: deciphered at every decrypt type. The line end stays for the next load to skip.
    StupidDecrypt(text, text);
  }
  // Intentional: only the digits before the decimal point are read; existing archives depend on it.
  value = static_cast<double>(static_cast<std::uint32_t>(ToUnsignedLong(text)));
  return *this;
}

TArchive& TArchive::operator>>(float& value) {
  if (m_decryptType == kRecordsAsTheyStand) return ExtractPlain(value);
  double wide = value;
  *this >> wide;
  value = static_cast<float>(wide);
  return *this;
}

// Plain at type 1, otherwise the low bits of the number in a record or a line: 32 bits for bool and
// long, as they are stored.
template <typename T>
TArchive& TArchive::LoadInteger(T& value) {
  if (m_decryptType == kRecordsAsTheyStand) return ExtractPlain(value);
  const unsigned long number = ReadUnsignedLong();
  if constexpr (std::is_same_v<T, bool>) {
    value = static_cast<std::uint32_t>(number) != 0;
  } else if constexpr (std::is_same_v<T, long>) {
    value = static_cast<std::int32_t>(number);
  } else {
    value = static_cast<T>(number);
  }
  return *this;
}

TArchive& TArchive::operator>>(bool& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(char& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(unsigned char& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(short& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(unsigned short& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(int& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(unsigned int& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(long& value) {
  return LoadInteger(value);
}
TArchive& TArchive::operator>>(unsigned long& value) {
  return LoadInteger(value);
}

void SerializeElement(TArchive& archive, std::string& value) {
  if (archive.IsLoading()) {
    archive >> value;
  } else {
    archive << value;
  }
}
