#include <vq_client_common/datacenters/internal/RecordPieces.h>

#include <algorithm>
#include <limits>

namespace vq {
namespace {

using State = std::ios_base::iostate;
constexpr State kGood = std::ios_base::goodbit;
constexpr State kFail = std::ios_base::failbit;
constexpr State kAtEnd = std::ios_base::eofbit | std::ios_base::failbit;
constexpr int kEnd = std::streambuf::traits_type::eof();
constexpr int kDecimal = 10;
constexpr std::size_t kFirstChunk = 4096;
constexpr char kLineEnd = '\n';

bool IsBlank(int c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(int c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::ios_base::iostate ReadPrefix(std::streambuf& in, std::int64_t& number) {
  constexpr std::int64_t kMax = std::numeric_limits<std::uint32_t>::max();
  int c = in.sgetc();
  while (IsBlank(c)) c = in.snextc();
  const bool negative = c == '-';
  if (negative || c == '+') c = in.snextc();
  if (!IsDigit(c)) return c == kEnd ? kAtEnd : kFail;
  number = 0;
  for (; IsDigit(c); c = in.snextc()) {
    if (number <= kMax) number = number * kDecimal + (c - '0');
  }
  if (number > kMax) return kFail;
  if (negative) number = -number;
  return in.sbumpc() == kEnd ? kAtEnd : kGood;
}

std::ios_base::iostate ReadBody(std::streambuf& in, std::size_t count, std::string& body) {
  body.clear();
  while (body.size() < count) {
    const std::size_t had = body.size();
    const std::size_t chunk = std::min(count - had, std::max(kFirstChunk, had));
    body.resize(had + chunk);
    const auto got =
        static_cast<std::size_t>(in.sgetn(body.data() + had, static_cast<std::streamsize>(chunk)));
    body.resize(had + got);
    if (got < chunk) return kAtEnd;
  }
  return kGood;
}

std::ios_base::iostate ReadUpToLineEnd(std::streambuf& in, std::size_t count, std::string& body) {
  body.clear();
  for (int c = in.sgetc(); body.size() < count && c != kLineEnd; c = in.snextc()) {
    if (c == kEnd) return body.empty() ? kAtEnd : std::ios_base::eofbit;
    body += std::streambuf::traits_type::to_char_type(c);
  }
  return body.empty() ? kFail : kGood;
}

std::ios_base::iostate SkipLine(std::streambuf& in) {
  for (int c = in.sbumpc(); c != kLineEnd; c = in.sbumpc()) {
    if (c == kEnd) return kAtEnd;
  }
  return kGood;
}

}  // namespace vq
