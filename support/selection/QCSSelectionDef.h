// A selection: a condition that decides which objects it selects.
//
// Terms. A *matching* is a field, an operator and a value (SelectionMatching.h). A *term* is
// matchings joined by AND: all of them must fit. A *definition* is terms joined by OR: one of them
// must fit. A definition without terms fits nothing; a term without matchings, written `*`, fits
// every object.
//
//   QCSObject job;
//   job.SetAttribute("OWNER", "ops");
//   QCSSelectionDef selection;
//   vq::SelectionParseError error;
//   if (!selection.Parse("DATACENTER = 'PROD' AND TABLE LIKE 'PAY*' OR OWNER = 'ops'", error)) {
//     Show(error.AsString());   // such as "at position 13: expected a value in single quotes, ..."
//   }
//   if (selection.DoesItFit(job, false)) Show("The job fits.");
//
// The text form is described in docs/selection-language.md.
#ifndef VQ_SUPPORT_SELECTION_QCSSELECTIONDEF_H
#define VQ_SUPPORT_SELECTION_QCSSELECTIONDEF_H

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include <support/Export.h>
#include <support/selection/QCSObject.h>
#include <support/selection/SelectionMatching.h>

namespace vq {

// Where and why a selection's text does not parse.
//
//   NAME LIKE PAY*
//             ^ position 10: expected a value in single quotes, found PAY*
struct VQ_CLIENT_COMMON_API SelectionParseError {
  std::size_t position = 0;  // bytes before the fault, from 0
  std::string expected;      // a description of what is allowed there
  std::string found;         // the text there, at most 20 bytes of it, or "the end of the text"

  // "at position 10: expected a value in single quotes, found PAY*"
  std::string AsString() const;
};

}  // namespace vq

class VQ_CLIENT_COMMON_API QCSSelectionDef {
 public:
  // Matchings that are joined by AND.
  using Term = std::vector<vq::SelectionMatching>;

  // The virtual operations keep this order: classes of other libraries derive from this one.
  virtual ~QCSSelectionDef();

  // Whether the object fits. A matching whose attribute the object lacks fits when
  // `missingAttrsFit` is true; otherwise HowToEvaluateMissingAttrsMatches decides.
  virtual bool DoesItFit(const QCSObject& object, bool missingAttrsFit) const;

  // The text form. Parses back to an equal definition. Empty for a definition without terms.
  virtual std::string AsString() const;

  // Sets whether a matching fits whose attribute is missing: `fits` for the positive operators
  // (=, <, <=, >, >=, LIKE), `negatedFits` for the negative ones (!=, NOT LIKE). Both are false
  // here. A derived class may override this, and must not change the object: DoesItFit calls it, on
  // constant objects, too.
  virtual void HowToEvaluateMissingAttrsMatches(bool& fits, bool& negatedFits);

  // Checks the fields of all matchings by IsValidField. Returns 1 when all are valid, else 0.
  // `invalidFields` is set to those that are not, each once, in the order of the text.
  virtual int ValidateFields(std::list<std::string>& invalidFields) const;

  // Whether matchings may name this field. Any name but the empty one here; a derived class knows
  // the fields of its kind of object.
  virtual bool IsValidField(const std::string& field) const;

  // Without terms: it fits nothing.
  QCSSelectionDef();
  QCSSelectionDef(const QCSSelectionDef&);
  QCSSelectionDef(QCSSelectionDef&&) noexcept;
  QCSSelectionDef& operator=(const QCSSelectionDef&);
  QCSSelectionDef& operator=(QCSSelectionDef&&) noexcept;

  // Replaces the terms by those of the text. Returns false when the text does not parse, with the
  // reason in `error` and the definition unchanged. The empty text has no terms. Time and memory
  // are proportional to the text.
  bool Parse(std::string_view text, vq::SelectionParseError& error);

  // The terms in order; valid until the definition changes.
  const std::vector<Term>& Terms() const { return m_terms; }
  // Appends a term; one without matchings fits every object.
  void AddTerm(Term term);
  // Removes every term: it then fits nothing.
  void Clear();

  // Equal terms in the same order.
  friend bool operator==(const QCSSelectionDef& left, const QCSSelectionDef& right) {
    return left.m_terms == right.m_terms;
  }

 private:
  bool DoesMissingFit(vq::SelectionOperator op) const;

  std::vector<Term> m_terms;
};

#endif  // VQ_SUPPORT_SELECTION_QCSSELECTIONDEF_H
