// The wildcards of the LIKE operators: `*` stands for any text, the empty one too, and `?` for
// exactly one byte. Every other byte stands for itself; there is no escape character.
//
//   vq::MatchesWildcard("PAY*_??", "PAYROLL_07")   // true
#ifndef VQ_SUPPORT_SELECTION_WILDCARD_H
#define VQ_SUPPORT_SELECTION_WILDCARD_H

#include <string_view>

namespace vq {

constexpr bool IsWildcard(char c) {
  return c == '*' || c == '?';
}

// Whether the whole text matches the whole pattern. Takes no memory. The time is proportional to
// the text for patterns as people write them, and never more than pattern length times text length,
// since a `*` that has been passed is not tried again. May be called from any thread.
bool MatchesWildcard(std::string_view pattern, std::string_view text);

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_WILDCARD_H
