// Finds the grants that fit an object, among thousands, without trying each of them.
//
// A *grant* is a criteria text (a selection, see QCSSelectionDef.h) with a level. The answers are
// those of trying QCSSelectionDef::DoesItFit(object, false) on every grant; only the time differs.
//
//   const TDiagFunc diag(diagModule, "Example");
//   vq::GrantIndex index;
//   index.Add("TABLE LIKE 'PAY*'", UPDATE_ACCESS, diag);
//   index.Add("TABLE = 'PAYROLL'", BROWSE_ACCESS, diag);
//   QCSObject table;
//   table.SetAttribute("TABLE", "PAYROLL");
//   index.HighestFitting(table);   // UPDATE_ACCESS
//
// How. Each term of a grant is filed once: under a field and a text that a fitting value of that
// field begins with, ends with or contains. For `=` that is the whole value; for LIKE the text
// before its first wildcard, the text after its last one, and the longest text between two. Where a
// term has several, it is filed where the fewest terms are. A query looks up the beginnings, ends
// and parts of the object's values that have a length in use, and evaluates the terms found there.
// Terms without such a text (only !=, NOT LIKE, <, > and the like) are tried one by one when the
// object has the field.
#ifndef VQ_SUPPORT_GRANTS_GRANTINDEX_H
#define VQ_SUPPORT_GRANTS_GRANTINDEX_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <support/diagnostics/TDiag.h>
#include <support/orb/Corba.h>
#include <support/selection/QCSObject.h>
#include <support/selection/QCSSelectionDef.h>
#include <vq_idl/AuthorizationC.h>

namespace vq {

class GrantIndex {
 public:
  // Adds a grant; the first one has the number 0. Returns false when the criteria do not parse.
  // Such a grant counts as one but fits nothing. The first of them are logged at level 1.
  bool Add(std::string_view criteria, QCSAuthLevelEnum level, const TDiagFunc& diag);

  // How many grants there are, including those that do not parse.
  std::size_t size() const { return m_grants; }

  // The highest level of the grants that fit; nothing when none fits.
  std::optional<QCSAuthLevelEnum> HighestFitting(const QCSObject& object) const;

  // Whether `accept` returns true for the number of a grant that fits. Calls it until it does, in
  // no particular order, and once for each fitting term of a grant.
  bool AnyFitting(const QCSObject& object, const std::function<bool(std::uint32_t)>& accept) const;

 private:
  struct Term {
    QCSSelectionDef::Term matchings;
    std::uint32_t grant;
    QCSAuthLevelEnum level;
  };
  using Terms = std::vector<Term>;

  enum Place { Begin, End, Part, kPlaces };
  struct Key {
    std::string_view field;
    Place place;
    std::string_view text;
  };
  // By the hash of a text: two texts with one hash only mean that a term is evaluated in vain.
  using TermsByText = std::unordered_map<std::size_t, Terms>;
  struct Field {
    std::map<std::size_t, TermsByText> places[kPlaces];  // by the length of the text
    Terms others;
  };

  static std::vector<Key> KeysOf(const QCSSelectionDef::Term& matchings);
  const Terms* Find(const Key& key) const;
  Terms& TermsFor(const QCSSelectionDef::Term& matchings);
  std::vector<const Terms*> MayFit(const QCSObject& object) const;
  static bool Fits(const Term& term, const QCSObject& object);

  std::uint32_t m_grants = 0;
  std::size_t m_refused = 0;  // the grants that do not parse
  Terms m_always;             // terms without matchings
  std::map<std::string, Field, std::less<>> m_fields;
};

// Whether the user's grants, or where none of them fits the groups', give at least the level over
// the object. Where none of either fits, they give DEFAULT_ACCESS.
bool GrantsGiveLevel(const GrantIndex& user, const GrantIndex& groups, const QCSObject& object,
                     QCSAuthLevelEnum level);

}  // namespace vq

#endif  // VQ_SUPPORT_GRANTS_GRANTINDEX_H
