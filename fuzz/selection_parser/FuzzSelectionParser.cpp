// Any text is parsed or refused; what parses prints to a text that parses back to the same
// definition, and the index answers for it as the definition does.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <support/selection/GrantIndex.h>
#include <support/selection/QCSSelectionDef.h>

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

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
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::vector<vq::Grant> grants = {{text, 3}};
  const vq::GrantIndex index(grants);
  QCSSelectionDef definition;
  vq::SelectionParseError error;
  if (!definition.Parse(text, error)) {
    Require(error.position <= size && !error.expected.empty() && !error.found.empty());
    Require(index.RefusedGrants().size() == 1);
    return 0;
  }
  QCSSelectionDef again;
  Require(again.Parse(definition.AsString(), error) && again == definition);
  Require(index.RefusedGrants().empty());
  for (const QCSObject& object : ObjectsFor(definition)) {
    Require((index.HighestFitting(object) == 3) == definition.DoesItFit(object, false));
  }
  return 0;
}
