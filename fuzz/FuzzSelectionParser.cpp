// Any text is parsed or refused; what parses prints to a text that parses back to the same
// definition. The lines of the text are grants, and the index answers for all of them as trying
// each does.

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fuzz/Require.h>
#include <support/grants/GrantIndex.h>
#include <support/selection/QCSSelectionDef.h>

namespace {

// Objects whose attributes come from the definition itself, so that some of them fit.
std::vector<QCSObject> ObjectsFor(const QCSSelectionDef& definition) {
  std::vector<QCSObject> objects(1);
  for (const QCSSelectionDef::Term& term : definition.Terms()) {
    QCSObject object;
    for (const vq::SelectionMatching& matching : term) {
      object.SetAttribute(matching.field, matching.value);
    }
    objects.push_back(object);
    if (objects.size() == 8) break;
  }
  return objects;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = vq::Text(data, size);
  const std::string_view text = input;
  static TDiagRegister diagModule("FuzzSelectionParser");
  const TDiagFunc diag(diagModule, "LLVMFuzzerTestOneInput");
  const auto levelOf = [](std::size_t grant) { return static_cast<QCSAuthLevelEnum>(grant % 6); };
  vq::GrantIndex index;
  std::vector<QCSSelectionDef> definitions;
  std::vector<QCSObject> objects;
  for (std::size_t start = 0; start <= size && index.size() < 32;) {
    const std::string_view line = text.substr(start, text.find('\n', start) - start);
    start += line.size() + 1;
    vq::SelectionParseError error;
    QCSSelectionDef& definition = definitions.emplace_back();
    const bool parses = definition.Parse(line, error);
    vq::Require(index.Add(line, levelOf(index.size()), diag) == parses);
    if (!parses) {
      vq::Require(error.position <= line.size() && !error.expected.empty() && !error.found.empty());
      continue;  // the definition has no terms and fits nothing
    }
    QCSSelectionDef again;
    vq::Require(again.Parse(definition.AsString(), error) && again == definition);
    for (QCSObject& object : ObjectsFor(definition)) objects.push_back(std::move(object));
  }

  for (const QCSObject& object : objects) {
    std::optional<QCSAuthLevelEnum> highest;
    for (std::size_t i = 0; i < definitions.size(); ++i) {
      if (!definitions[i].DoesItFit(object, false)) continue;
      if (!highest || levelOf(i) > *highest) highest = levelOf(i);
    }
    vq::Require(index.HighestFitting(object) == highest);
  }
  return 0;
}
