#include <support/selection/QCSSelectionDef.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <support/selection/SelectionParser.h>

namespace {

struct TermCollector {
  std::vector<QCSSelectionDef::Term> terms;

  void BeginTerm() { terms.emplace_back(); }
  void OnMatching(const vq::SelectionToken& field, vq::SelectionOperator op,
                  const vq::SelectionToken& value) {
    terms.back().push_back({field.Text(), op, value.Text()});
  }
};

void AppendQuoted(std::string& out, std::string_view text, char quote) {
  out += quote;
  for (const char c : text) {
    if (c == quote) out += quote;
    out += c;
  }
  out += quote;
}

void AppendMatching(std::string& out, const vq::SelectionMatching& matching) {
  if (vq::IsBareField(matching.field)) {
    out += matching.field;
  } else {
    AppendQuoted(out, matching.field, '"');
  }
  out += ' ';
  out += vq::AsText(matching.op);
  out += ' ';
  AppendQuoted(out, matching.value, '\'');
}

void AppendTerm(std::string& out, const QCSSelectionDef::Term& term) {
  if (term.empty()) out += '*';
  for (std::size_t i = 0; i < term.size(); ++i) {
    if (i > 0) out += " AND ";
    AppendMatching(out, term[i]);
  }
}

}  // namespace

QCSSelectionDef::QCSSelectionDef() = default;
QCSSelectionDef::QCSSelectionDef(const QCSSelectionDef&) = default;
QCSSelectionDef::QCSSelectionDef(QCSSelectionDef&&) noexcept = default;
QCSSelectionDef& QCSSelectionDef::operator=(const QCSSelectionDef&) = default;
QCSSelectionDef& QCSSelectionDef::operator=(QCSSelectionDef&&) noexcept = default;
QCSSelectionDef::~QCSSelectionDef() = default;

bool QCSSelectionDef::DoesMissingFit(vq::SelectionOperator op) const {
  bool fits = false;
  bool negatedFits = false;
  // The operation is declared without const for the classes that derive from this one.
  const_cast<QCSSelectionDef*>(this)->HowToEvaluateMissingAttrsMatches(fits, negatedFits);
  return vq::IsNegated(op) ? negatedFits : fits;
}

bool QCSSelectionDef::DoesItFit(const QCSObject& object, bool missingAttrsFit) const {
  const auto matchingFits = [&](const vq::SelectionMatching& matching) {
    const std::string* attribute = object.FindAttribute(matching.field);
    if (attribute == nullptr) return missingAttrsFit || DoesMissingFit(matching.op);
    return vq::MatchesValue(matching.op, matching.value, *attribute);
  };
  return std::any_of(m_terms.begin(), m_terms.end(), [&](const Term& term) {
    return std::all_of(term.begin(), term.end(), matchingFits);
  });
}

std::string QCSSelectionDef::AsString() const {
  std::string text;
  for (std::size_t i = 0; i < m_terms.size(); ++i) {
    if (i > 0) text += " OR ";
    AppendTerm(text, m_terms[i]);
  }
  return text;
}

void QCSSelectionDef::HowToEvaluateMissingAttrsMatches(bool& fits, bool& negatedFits) {
  fits = false;
  negatedFits = false;
}

int QCSSelectionDef::ValidateFields(std::list<std::string>& invalidFields) const {
  invalidFields.clear();
  std::unordered_set<std::string_view> seen;
  for (const Term& term : m_terms) {
    for (const vq::SelectionMatching& matching : term) {
      if (seen.insert(matching.field).second && !IsValidField(matching.field)) {
        invalidFields.push_back(matching.field);
      }
    }
  }
  return invalidFields.empty() ? 1 : 0;
}

bool QCSSelectionDef::IsValidField(const std::string& field) const {
  return !field.empty();
}

bool QCSSelectionDef::Parse(std::string_view text, vq::SelectionParseError& error) {
  TermCollector collector;
  if (!vq::ParseSelection(text, collector, error)) return false;
  m_terms = std::move(collector.terms);
  return true;
}

void QCSSelectionDef::AddTerm(Term term) {
  m_terms.push_back(std::move(term));
}

void QCSSelectionDef::Clear() {
  m_terms.clear();
}
