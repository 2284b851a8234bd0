// Random selections and objects for the tests of selections and of the grant index.
#ifndef VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H
#define VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H

#include <iterator>
#include <string>
#include <string_view>

#include <benchmarks/GrantGenerator.h>
#include <support/selection/QCSObject.h>
#include <support/selection/QCSSelectionDef.h>

namespace vq::test {

// Random definitions and objects over a few short texts, so that fits, near misses and equal keys
// are all common.
class RandomSelection : public GrantRandom {
 public:
  using GrantRandom::GrantRandom;

  QCSSelectionDef Definition() {
    QCSSelectionDef definition;
    for (std::size_t terms = Below(4); terms > 0; --terms) {
      QCSSelectionDef::Term term;
      for (std::size_t i = Below(8) == 0 ? 0 : 1 + Below(3); i > 0; --i) {
        term.push_back({Field(), static_cast<SelectionOperator>(Below(8)), Letters(12)});
      }
      definition.AddTerm(term);
    }
    return definition;
  }
  QCSObject Object() {
    QCSObject object;
    for (std::size_t i = Below(4); i > 0; --i) object.SetAttribute(Field(), Letters(20));
    return object;
  }
  // Shorter than `longest`, of the letters.
  std::string Text(std::string_view letters, std::size_t longest) {
    std::string text(Below(longest), ' ');
    for (char& c : text) c = letters[Below(letters.size())];
    return text;
  }

 private:
  std::string Field() {
    constexpr const char* kFields[] = {"A", "B", "long.name_1", "or", "with \"quotes\"", ""};
    return kFields[Below(std::size(kFields))];
  }
  std::string Letters(std::size_t longest) {
    return Text(std::string_view("aaabb**?'\"1 ").substr(0, 2 + Below(11)), longest);
  }
};

}  // namespace vq::test

#endif  // VQ_TESTS_SUPPORT_SELECTION_RANDOMSELECTION_H
