// Reads a whole number from the start of a string, like the C library's atoi.
//
// atoi is undefined for a number that does not fit an int. vq::Atoi gives the same result for every
// number that fits, the nearest int for the rest, and takes a view, so that a part of a string
// needs no copy.
//
//   vq::Atoi("0730")        730
//   vq::Atoi(" -5 days")    -5
//   vq::Atoi("none")        0
//   vq::Atoi("9999999999")  2147483647
#ifndef VQ_SUPPORT_OS_TOOLKIT_ATOI_H
#define VQ_SUPPORT_OS_TOOLKIT_ATOI_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace vq {

// Skips white space (blank, \t, \n, \v, \f, \r, whatever the locale), takes one optional sign, then
// the digits up to the first other character. 0 when there is no digit.
constexpr int Atoi(std::string_view text) noexcept {
  constexpr std::int64_t kMin = std::numeric_limits<int>::min();
  constexpr std::int64_t kMax = std::numeric_limits<int>::max();
  std::size_t i = text.find_first_not_of(" \t\n\v\f\r");
  if (i == std::string_view::npos) return 0;
  const bool negative = text[i] == '-';
  if (negative || text[i] == '+') ++i;
  std::int64_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9' && value <= kMax; ++i) {
    value = value * 10 + (text[i] - '0');
  }
  if (negative) return static_cast<int>(-value < kMin ? kMin : -value);
  return static_cast<int>(value > kMax ? kMax : value);
}

}  // namespace vq

#endif  // VQ_SUPPORT_OS_TOOLKIT_ATOI_H
