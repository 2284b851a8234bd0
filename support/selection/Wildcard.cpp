#include <support/selection/Wildcard.h>

namespace vq {

bool MatchesWildcard(std::string_view pattern, std::string_view text) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t star = kNone;  // the last `*` passed
  std::size_t resume = 0;    // where in the text what follows that `*` was last tried
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
      ++p;
      ++t;
    } else if (star != kNone) {
      // What lies between two stars is best taken as early as possible: an earlier star never has
      // to take more, so only the last one is widened.
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace vq
