// Reads the text form of a selection. docs/selection-language.md has the grammar:
//
//   definition = [ term { "OR" term } ]
//   term       = "*" | matchings | "(" matchings ")"
//   matchings  = matching { "AND" matching }
//   matching   = field operator value
//
// The parser goes through the text once and hands what it finds to a sink, so that the same grammar
// serves the definition (QCSSelectionDef) and the index (GrantIndex), which wants no string of its
// own for every value. The grammar does not nest: there is no recursion, and nothing but the sink
// takes memory.
//
//   struct Sink {
//     void BeginTerm();
//     void OnMatching(const vq::SelectionToken& field, vq::SelectionOperator op,
//                     const vq::SelectionToken& value);
//   };
//   vq::SelectionParseError error;
//   if (!vq::ParseSelection(text, sink, error)) Report(error.AsString());
#ifndef VQ_SUPPORT_SELECTION_SELECTIONPARSER_H
#define VQ_SUPPORT_SELECTION_SELECTIONPARSER_H

#include <string>
#include <string_view>

#include <support/selection/SelectionMatching.h>
#include <support/selection/SelectionParseError.h>

namespace vq {

// A field or a value as it stands in the text, without its quotes.
struct SelectionToken {
  std::string_view raw;
  char quote = 0;        // the quote it stood in; 0 for a bare field name
  bool doubled = false;  // whether `raw` holds the quote itself, which is written twice

  std::string Text() const;  // `raw` with the doubled quotes made single
};

// Whether a field name needs no quotes: a letter or `_`, then letters, digits, `_` and `.`, and not
// one of the language's words.
bool IsBareField(std::string_view name);

constexpr bool IsSelectionSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
constexpr bool StartsField(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
constexpr bool ContinuesField(char c) {
  return StartsField(c) || (c >= '0' && c <= '9') || c == '.';
}

// The cursor over one text. The small steps are defined here: a load reads the criteria of
// thousands of grants, and most of that time is these steps. Thread contract: one thread at a time.
class SelectionScanner {
 public:
  explicit SelectionScanner(std::string_view text) : m_text(text) {}

  // Whether nothing but white space is left.
  bool AtEnd() {
    SkipSpace();
    return m_at == m_text.size();
  }
  // Takes the character if it is next.
  bool TakeChar(char c) {
    SkipSpace();
    if (m_at == m_text.size() || m_text[m_at] != c) return false;
    ++m_at;
    return true;
  }
  // Takes the word (given in capitals, found in any case) if it is next.
  bool TakeWord(std::string_view word) {
    SkipSpace();
    const std::size_t end = m_at + word.size();
    if (end > m_text.size() || !IsWord(m_text.substr(m_at, word.size()), word)) return false;
    if (end < m_text.size() && ContinuesField(m_text[end])) return false;
    m_at = end;
    return true;
  }
  bool TakeField(SelectionToken& token) {
    SkipSpace();
    if (m_at == m_text.size()) return false;
    if (!StartsField(m_text[m_at])) return TakeQuoted(token, '"');
    std::size_t end = m_at + 1;
    while (end < m_text.size() && ContinuesField(m_text[end])) ++end;
    const std::string_view name = m_text.substr(m_at, end - m_at);
    if (IsLanguageWord(name)) return false;
    token = SelectionToken{name, 0, false};
    m_at = end;
    return true;
  }
  bool TakeOperator(SelectionOperator& op);
  bool TakeValue(SelectionToken& token) {
    SkipSpace();
    return TakeQuoted(token, '\'');
  }

  // Says what was expected where the cursor stands. Returns false, for the parser to return.
  bool Fail(std::string_view expected, SelectionParseError& error);

  // Whether the name is one of the language's words, in capitals or not.
  static bool IsLanguageWord(std::string_view name) {
    return name.size() <= 4 && (IsWord(name, "AND") || IsWord(name, "OR") || IsWord(name, "LIKE") ||
                                IsWord(name, "NOT"));
  }

 private:
  static bool IsWord(std::string_view text, std::string_view capitals) {
    if (text.size() != capitals.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) != capitals[i])
        return false;
    }
    return true;
  }
  void SkipSpace() {
    while (m_at < m_text.size() && IsSelectionSpace(m_text[m_at])) ++m_at;
  }
  bool TakeQuoted(SelectionToken& token, char quote) {
    if (m_at == m_text.size() || m_text[m_at] != quote) return false;
    const std::size_t start = m_at + 1;
    std::size_t at = start;
    token.quote = quote;
    token.doubled = false;
    for (;;) {
      at = m_text.find(quote, at);
      if (at == std::string_view::npos) {
        m_unclosed = true;
        return false;
      }
      if (at + 1 == m_text.size() || m_text[at + 1] != quote) break;
      token.doubled = true;
      at += 2;
    }
    token.raw = m_text.substr(start, at - start);
    m_at = at + 1;
    return true;
  }

  std::string_view m_text;
  std::size_t m_at = 0;
  bool m_unclosed = false;  // a quote was opened and never closed
};

inline bool SelectionScanner::TakeOperator(SelectionOperator& op) {
  SkipSpace();
  if (m_at == m_text.size()) return false;
  const bool orEqual = m_at + 1 < m_text.size() && m_text[m_at + 1] == '=';
  switch (m_text[m_at]) {
    case '=':
      op = SelectionOperator::Equal;
      ++m_at;
      return true;
    case '!':
      if (!orEqual) return false;
      op = SelectionOperator::NotEqual;
      m_at += 2;
      return true;
    case '<':
      op = orEqual ? SelectionOperator::LessOrEqual : SelectionOperator::Less;
      m_at += orEqual ? 2 : 1;
      return true;
    case '>':
      op = orEqual ? SelectionOperator::GreaterOrEqual : SelectionOperator::Greater;
      m_at += orEqual ? 2 : 1;
      return true;
    default:
      break;
  }
  if (TakeWord("LIKE")) {
    op = SelectionOperator::Like;
    return true;
  }
  const std::size_t start = m_at;
  if (TakeWord("NOT") && TakeWord("LIKE")) {
    op = SelectionOperator::NotLike;
    return true;
  }
  m_at = start;
  return false;
}

// Hands every term and matching of the text to the sink, in order. Returns false and fills `error`
// when the text is not of the grammar; the sink has then received what came before the fault.
template <class Sink>
bool ParseSelection(std::string_view text, Sink& sink, SelectionParseError& error) {
  SelectionScanner scanner(text);
  if (scanner.AtEnd()) return true;
  for (;;) {
    sink.BeginTerm();
    if (scanner.TakeChar('*')) {
      if (scanner.AtEnd()) return true;
      if (!scanner.TakeWord("OR")) return scanner.Fail("OR or the end of the text", error);
      continue;
    }
    const bool bracketed = scanner.TakeChar('(');
    do {
      SelectionToken field;
      SelectionToken value;
      SelectionOperator op{};
      if (!scanner.TakeField(field)) {
        return scanner.Fail(bracketed ? "a field name" : "a field name, ( or *", error);
      }
      if (!scanner.TakeOperator(op)) {
        return scanner.Fail("an operator (=, !=, <, <=, >, >=, LIKE or NOT LIKE)", error);
      }
      if (!scanner.TakeValue(value)) return scanner.Fail("a value in single quotes", error);
      sink.OnMatching(field, op, value);
    } while (scanner.TakeWord("AND"));
    if (bracketed && !scanner.TakeChar(')')) return scanner.Fail("AND or )", error);
    if (scanner.AtEnd()) return true;
    if (!scanner.TakeWord("OR")) {
      return scanner.Fail(
          bracketed ? "OR or the end of the text" : "AND, OR or the end of the text", error);
    }
  }
}

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_SELECTIONPARSER_H
