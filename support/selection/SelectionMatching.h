// One condition of a selection: a field, an operator and a value.
//
//   vq::SelectionMatching matching{"TABLE", vq::SelectionOperator::Like, "PAY*"};
//   vq::MatchesValue(matching.op, matching.value, "PAYROLL");   // true
//
// `=` and `!=` compare the strings byte by byte. For LIKE and NOT LIKE the value is a pattern with
// `*` and `?`. The four order operators compare as whole numbers where both strings are whole
// numbers of any length ("9" < "10", "-3" < "2"), and byte by byte otherwise.
#ifndef VQ_SUPPORT_SELECTION_SELECTIONMATCHING_H
#define VQ_SUPPORT_SELECTION_SELECTIONMATCHING_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vq {

// How the attribute and the value are compared; see above.
enum class SelectionOperator : std::uint8_t {
  Equal,
  NotEqual,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Like,
  NotLike,
};

// The operators as they are written, by the number of their enumerator.
inline constexpr std::array<std::string_view, 8> kSelectionOperatorTexts = {
    "=", "!=", "<", "<=", ">", ">=", "LIKE", "NOT LIKE"};

// The operator as it is written; static text.
constexpr std::string_view AsText(SelectionOperator op) {
  return kSelectionOperatorTexts[static_cast<std::size_t>(op)];
}

// Whether the operator is a negative one.
constexpr bool IsNegated(SelectionOperator op) {
  return op == SelectionOperator::NotEqual || op == SelectionOperator::NotLike;
}

// A field, an operator and a value.
struct SelectionMatching {
  std::string field;                                // the attribute's name
  SelectionOperator op = SelectionOperator::Equal;  // how to compare
  std::string value;                                // what to compare with

  // The same field, operator and value.
  friend bool operator==(const SelectionMatching&, const SelectionMatching&) = default;
};

// The wildcards of the LIKE operators: `*` matches any string, the empty one too, and `?` exactly
// one byte. Every other byte matches itself; there is no escape character.
inline constexpr std::string_view kWildcards = "*?";

// Whether the whole text matches the whole pattern. Allocates no memory. The time is proportional
// to the text for usual patterns, and never more than pattern length times text length.
bool MatchesWildcard(std::string_view pattern, std::string_view text);

// Whether an attribute with the value `attribute` fits the operator and the value. For the library
// itself: it is not exported, and programs use a definition.
bool MatchesValue(SelectionOperator op, std::string_view value, std::string_view attribute);

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_SELECTIONMATCHING_H
