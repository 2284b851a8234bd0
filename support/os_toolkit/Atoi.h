// Reads whole numbers from strings: from the start of one, like the C library's atoi, or one that
// is nothing else.
//
// atoi is undefined for a number that does not fit an int. vq::Atoi gives the same result for every
// number that fits, the nearest int for the rest, and takes a view, so that a part of a string
// needs no copy.
//
//   vq::Atoi("0730")        730
//   vq::Atoi(" -5 days")    -5
//   vq::Atoi("none")        0
//   vq::Atoi("9999999999")  2147483647
//
//   vq::WholeNumber<int>("730")      730
//   vq::WholeNumber<int>("730 x")    nothing
#ifndef VQ_SUPPORT_OS_TOOLKIT_ATOI_H
#define VQ_SUPPORT_OS_TOOLKIT_ATOI_H

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace vq {

// Skips white space (blank, \t, \n, \v, \f, \r, whatever the locale), takes one optional sign, then
// the digits up to the first other character. 0 when there is no digit.
inline int Atoi(std::string_view text) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int value = 0;
  const std::errc error = std::from_chars(text.data(), text.data() + text.size(), value).ec;
  if (error != std::errc::result_out_of_range) return value;
  return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

// The number that the whole string is: digits of the base, for a signed type after an optional "-".
// Nothing for any other string, or when the number does not fit.
template <class Integer>
std::optional<Integer> WholeNumber(std::string_view text, int base = 10) noexcept {
  Integer value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value, base);
  return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

}  // namespace vq

#endif  // VQ_SUPPORT_OS_TOOLKIT_ATOI_H
