#include <support/selection/QCSSelectionDef.h>

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>
#include <utility>

namespace {

constexpr std::string_view kSpace = " \t\r\n";

constexpr bool StartsField(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
constexpr bool ContinuesField(char c) {
  return StartsField(c) || (c >= '0' && c <= '9') || c == '.';
}

// Whether the text is the word, which is given in capitals and found in any case.
bool IsWord(std::string_view text, std::string_view capitals) {
  return std::ranges::equal(text, capitals, {}, [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
}

bool IsLanguageWord(std::string_view name) {
  static constexpr std::array<std::string_view, 4> kWords = {"AND", "OR", "LIKE", "NOT"};
  return std::ranges::any_of(kWords, [&](std::string_view word) { return IsWord(name, word); });
}

// The cursor over one text. Each Take function moves it past the token that it takes, and leaves it
// in place when another token comes next.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : m_text(text) {}

  // Whether nothing but white space is left.
  bool AtEnd() { return Rest().empty(); }

  bool TakeChar(char c) {
    if (!Rest().starts_with(c)) return false;
    ++m_at;
    return true;
  }

  // The word is given in capitals and found in any case.
  bool TakeWord(std::string_view capitals) {
    const std::string_view rest = Rest();
    if (!IsWord(rest.substr(0, capitals.size()), capitals)) return false;
    if (rest.size() > capitals.size() && ContinuesField(rest[capitals.size()])) return false;
    m_at += capitals.size();
    return true;
  }

  bool TakeField(std::string& field) {
    const std::string_view rest = Rest();
    if (rest.empty() || !StartsField(rest.front())) return TakeQuoted(field, '"');
    const auto end = std::ranges::find_if_not(rest, ContinuesField);
    const std::string_view name(rest.begin(), end);
    if (IsLanguageWord(name)) return false;
    field = name;
    m_at += name.size();
    return true;
  }

  bool TakeOperator(vq::SelectionOperator& op) {
    using enum vq::SelectionOperator;
    // Longer ones before those that they begin with.
    static constexpr vq::SelectionOperator kSigns[] = {NotEqual,       LessOrEqual, Less,
                                                       GreaterOrEqual, Greater,     Equal};
    for (const vq::SelectionOperator sign : kSigns) {
      if (!Rest().starts_with(vq::AsText(sign))) continue;
      m_at += vq::AsText(sign).size();
      op = sign;
      return true;
    }
    const std::size_t start = m_at;
    op = TakeWord("NOT") ? NotLike : Like;
    if (TakeWord("LIKE")) return true;
    m_at = start;
    return false;
  }

  // A text in quotes; a quote in it is written twice.
  bool TakeQuoted(std::string& text, char quote) {
    if (!Rest().starts_with(quote)) return false;
    std::string taken;
    for (std::size_t at = m_at + 1; at < m_text.size(); ++at) {
      if (m_text[at] == quote && !m_text.substr(++at).starts_with(quote)) {
        m_at = at;
        text = std::move(taken);
        return true;
      }
      taken += m_text[at];
    }
    m_unclosed = true;
    return false;
  }

  // Reports what was expected at the cursor. Returns false, for the parser to return.
  bool Fail(std::string_view expected, vq::SelectionParseError& error) {
    constexpr std::size_t kExcerpt = 20;
    error.expected = expected;
    if (m_unclosed) {
      error.expected =
          "the closing quote of the text that starts at position " + std::to_string(m_at);
      m_at = m_text.size();
    }
    std::string_view rest = Rest();
    rest = rest.substr(0, rest.find_first_of(kSpace)).substr(0, kExcerpt);
    error.position = m_at;
    error.found = rest.empty() ? "the end of the text" : rest;
    return false;
  }

 private:
  // What is left, without the white space before it.
  std::string_view Rest() {
    m_at = std::min(m_text.find_first_not_of(kSpace, m_at), m_text.size());
    return m_text.substr(m_at);
  }

  std::string_view m_text;
  std::size_t m_at = 0;
  bool m_unclosed = false;  // a quote was opened and never closed
};

// Whether a field name needs no quotes: it is read back as it is.
bool IsBareField(std::string_view name) {
  std::string read;
  return Scanner(name).TakeField(read) && read == name;
}

// The grammar, which does not nest (docs/selection-language.md):
//
//   definition = [ term { "OR" term } ]
//   term       = "*" | matchings | "(" matchings ")"
//   matchings  = matching { "AND" matching }
//   matching   = field operator value
bool ParseSelection(std::string_view text, std::vector<QCSSelectionDef::Term>& terms,
                    vq::SelectionParseError& error) {
  Scanner scanner(text);
  if (scanner.AtEnd()) return true;
  for (;;) {
    QCSSelectionDef::Term& term = terms.emplace_back();
    const char* next = "OR or the end of the text";
    if (!scanner.TakeChar('*')) {
      const bool bracketed = scanner.TakeChar('(');
      do {
        vq::SelectionMatching& matching = term.emplace_back();
        if (!scanner.TakeField(matching.field)) {
          return scanner.Fail(bracketed ? "a field name" : "a field name, ( or *", error);
        }
        if (!scanner.TakeOperator(matching.op)) {
          return scanner.Fail("an operator (=, !=, <, <=, >, >=, LIKE or NOT LIKE)", error);
        }
        if (!scanner.TakeQuoted(matching.value, '\'')) {
          return scanner.Fail("a value in single quotes", error);
        }
      } while (scanner.TakeWord("AND"));
      if (bracketed && !scanner.TakeChar(')')) return scanner.Fail("AND or )", error);
      if (!bracketed) next = "AND, OR or the end of the text";
    }
    if (scanner.AtEnd()) return true;
    if (!scanner.TakeWord("OR")) return scanner.Fail(next, error);
  }
}

std::string Quoted(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char c : text) quoted.append(c == quote ? 2 : 1, c);
  return quoted + quote;
}

std::string Printed(const vq::SelectionMatching& matching) {
  const std::string& field = matching.field;
  std::string text = IsBareField(field) ? field : Quoted(field, '"');
  text.append(" ").append(vq::AsText(matching.op)).append(" ");
  return text + Quoted(matching.value, '\'');
}

std::string Printed(const QCSSelectionDef::Term& term) {
  if (term.empty()) return "*";
  std::string text;
  for (const vq::SelectionMatching& matching : term) {
    text += (text.empty() ? "" : " AND ") + Printed(matching);
  }
  return text;
}

}  // namespace

std::string vq::SelectionParseError::AsString() const {
  return "at position " + std::to_string(position) + ": expected " + expected + ", found " + found;
}

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
  const auto termFits = [&](const Term& term) { return std::ranges::all_of(term, matchingFits); };
  return std::ranges::any_of(m_terms, termFits);
}

std::string QCSSelectionDef::AsString() const {
  std::string text;
  for (const Term& term : m_terms) text += (text.empty() ? "" : " OR ") + Printed(term);
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
  std::vector<Term> terms;
  if (!ParseSelection(text, terms, error)) return false;
  m_terms = std::move(terms);
  return true;
}

void QCSSelectionDef::AddTerm(Term term) {
  m_terms.push_back(std::move(term));
}

void QCSSelectionDef::Clear() {
  m_terms.clear();
}
