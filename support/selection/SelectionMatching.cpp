#include <support/selection/SelectionMatching.h>

#include <algorithm>
#include <compare>
#include <optional>

namespace vq {
namespace {

struct Number {
  bool negative;
  std::string_view digits;  // without leading zeros; empty is zero
};

std::optional<Number> AsNumber(std::string_view text) {
  Number number{!text.empty() && text.front() == '-', text};
  if (number.negative) number.digits.remove_prefix(1);
  const bool isNumber = number.digits.find_first_not_of("0123456789") == std::string_view::npos;
  if (number.digits.empty() || !isNumber) return std::nullopt;
  number.digits.remove_prefix(std::min(number.digits.find_first_not_of('0'), number.digits.size()));
  if (number.digits.empty()) number.negative = false;
  return number;
}

std::strong_ordering CompareSize(std::string_view left, std::string_view right) {
  const auto byLength = left.size() <=> right.size();
  return byLength != 0 ? byLength : left <=> right;
}

std::strong_ordering Compare(std::string_view left, std::string_view right) {
  const auto leftNumber = AsNumber(left);
  const auto rightNumber = leftNumber ? AsNumber(right) : std::nullopt;
  if (!rightNumber) return left <=> right;
  if (leftNumber->negative != rightNumber->negative) {
    return leftNumber->negative ? std::strong_ordering::less : std::strong_ordering::greater;
  }
  return leftNumber->negative ? CompareSize(rightNumber->digits, leftNumber->digits)
                              : CompareSize(leftNumber->digits, rightNumber->digits);
}

}  // namespace

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
      // The part between two stars is best matched as early as possible: an earlier star never has
      // to match more, so only the last one is extended.
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

bool MatchesValue(SelectionOperator op, std::string_view value, std::string_view attribute) {
  using enum SelectionOperator;
  if (op == Equal || op == NotEqual) return (attribute == value) != IsNegated(op);
  if (op == Like || op == NotLike) return MatchesWildcard(value, attribute) != IsNegated(op);
  const std::strong_ordering order = Compare(attribute, value);
  if (order == 0) return op == LessOrEqual || op == GreaterOrEqual;
  return (order < 0) == (op == Less || op == LessOrEqual);
}

}  // namespace vq
