// The pieces of an archive's record, read straight from a stream's buffer.
//
// That costs a fraction of formatted extraction from the stream. Each piece returns what the
// stream's state is to become: good, or fail, with eof when the stream ended; the caller sets it.
//
//   std::int64_t prefix = 0;
//   state = vq::ReadPrefix(buffer, prefix);                      // "6;" gives 6
//   if (state == std::ios_base::goodbit) state = vq::ReadBody(buffer, 5, body);
#ifndef VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_RECORDPIECES_H
#define VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_RECORDPIECES_H

#include <cstddef>
#include <cstdint>
#include <ios>
#include <streambuf>
#include <string>

namespace vq {

// Thread contract: a buffer is read by one thread at a time. What a buffer raises goes through.

// White space, a decimal number whose amount fits 32 bits, and the one character behind it,
// whatever that is. A larger number is a failure.
std::ios_base::iostate ReadPrefix(std::streambuf& in, std::int64_t& number);

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
