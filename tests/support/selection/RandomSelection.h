// Random definitions and objects over a few short texts, so that fits, near misses and equal keys
// are all common.
#ifndef VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H
#define VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <benchmarks/authorizations/GrantGenerator.h>
#include <support/selection/QCSObject.h>
#include <support/selection/QCSSelectionDef.h>

namespace vq::test {

class RandomSelection {
 public:
  explicit RandomSelection(std::uint64_t seed) : m_random(seed) {}

  QCSSelectionDef Definition() {
    QCSSelectionDef definition;
    for (std::size_t terms = m_random.Below(4); terms > 0; --terms) {
      QCSSelectionDef::Term term;
      for (std::size_t matchings = m_random.Below(8) == 0 ? 0 : 1 + m_random.Below(3);
           matchings > 0; --matchings) {
        const auto op = static_cast<SelectionOperator>(m_random.Below(8));
        term.push_back({Field(), op, Text(12)});
      }
      definition.AddTerm(std::move(term));
    }
    return definition;
  }

  QCSObject Object() {
    QCSObject object;
    for (std::size_t attributes = m_random.Below(4); attributes > 0; --attributes) {
      object.SetAttribute(Field(), Text(20));
    }
    return object;
  }

  std::size_t Below(std::size_t bound) { return m_random.Below(bound); }

 private:
  std::string Field() {
    static constexpr std::array<std::string_view, 6> kFields = {
        "A", "B", "long.name_1", "or", "with \"quotes\"", ""};
    return std::string(kFields[m_random.Below(kFields.size())]);
  }
  std::string Text(std::size_t longest) {
    static constexpr std::string_view kLetters = "aaabb**?'\"1 ";
    std::string text(m_random.Below(longest), ' ');
    const std::size_t letters = 2 + m_random.Below(kLetters.size() - 1);
    for (char& c : text) c = kLetters[m_random.Below(letters)];
    return text;
  }

  GrantRandom m_random;
};

}  // namespace vq::test

#endif  // VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H
