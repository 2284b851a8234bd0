// The pieces of an archive's record, read straight from a stream's buffer.
//
// That costs a fraction of formatted extraction from the stream. Each piece returns what the
// stream's state is to become: good, or fail, with eof when the stream ended; the caller sets it.
//
//   std::int64_t prefix = 0;
//   state = vq::ReadPrefix(buffer, prefix);                      // "6;" gives 6
//   if (state == std::ios_base::goodbit) state = vq::ReadBody(buffer, 5, body);
//
// PeekRecord is the short way for the usual case. It finds what the pieces would find.
#ifndef VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_RECORDPIECES_H
#define VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_RECORDPIECES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <streambuf>
#include <string>
#include <string_view>

namespace vq {

// Thread contract: a buffer is read by one thread at a time. What a buffer raises goes through.

// White space, a decimal number whose amount fits 32 bits, and the one character behind it,
// whatever that is. A larger number is a failure.
std::ios_base::iostate ReadPrefix(std::streambuf& in, std::int64_t& number);

// The part of a stream's buffer that is in memory. The functions are protected members of every
// std::streambuf; naming them through a derived class is the way to call them from outside.
struct GetArea : std::streambuf {
  static std::string_view Of(const std::streambuf& buffer) {
    const char* const begin = (buffer.*&GetArea::gptr)();
    const char* const end = (buffer.*&GetArea::egptr)();
    return begin == nullptr ? std::string_view() : std::string_view(begin, end);
  }
  static void Skip(std::streambuf& buffer, int count) { (buffer.*&GetArea::gbump)(count); }
};

// A record that the buffer holds whole, without anything before it.
struct WholeRecord {
  std::string_view body;  // in the buffer, until it is read from
  std::size_t size = 0;   // of the record, prefix and line end included; 0 when there is none
};

// The record that comes next, when nothing is unusual about it: plain digits that are not 0, a body
// in the buffer, a line end right behind it. Reads nothing and raises nothing. A size of 0 means
// that the record is to be read piece by piece.
inline WholeRecord PeekRecord(const std::streambuf& in) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  constexpr std::size_t kMaxDigits = 9;
  const std::string_view area = GetArea::Of(in);
  const std::size_t last = std::min(area.size(), kMaxDigits);
  std::size_t at = 0;
  std::size_t number = 0;
  for (; at < last && isDigit(area[at]); ++at) {
    number = number * 10 + static_cast<std::size_t>(area[at] - '0');
  }
  if (number == 0) return {};
  const std::size_t body = at + 1;
  const std::size_t end = body + number - 1;  // where the line end must be
  if (end >= area.size() || isDigit(area[at]) || area[end] != '\n') return {};
  return {area.substr(body, number - 1), end + 1};
}

// Reads past a record that PeekRecord gave.
inline void SkipRecord(std::streambuf& in, const WholeRecord& record) {
  GetArea::Skip(in, static_cast<int>(record.size));
}

// Exactly `count` bytes into `body`; at the end of the stream it holds those that there were.
// Memory is taken as bytes arrive, so that a prefix alone cannot claim it.
std::ios_base::iostate ReadBody(std::streambuf& in, std::size_t count, std::string& body);

// At most `count` bytes into `body`, up to a line end, which stays in the stream. That there is
// nothing to read is a failure.
std::ios_base::iostate ReadUpToLineEnd(std::streambuf& in, std::size_t count, std::string& body);

// Everything up to the next line end and that as well.
std::ios_base::iostate SkipLine(std::streambuf& in);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_RECORDPIECES_H
