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

// The cursor over one text. Thread contract: one thread at a time.
class SelectionScanner {
 public:
  explicit SelectionScanner(std::string_view text) : m_text(text) {}

  bool AtEnd();                          // nothing but white space is left
  bool TakeChar(char c);                 // takes the character if it is next
  bool TakeWord(std::string_view word);  // takes the word (given in capitals, found in any case)
  bool TakeField(SelectionToken& token);
  bool TakeOperator(SelectionOperator& op);
  bool TakeValue(SelectionToken& token);

  // Says what was expected where the cursor stands. Returns false, for the parser to return.
  bool Fail(std::string_view expected, SelectionParseError& error);

 private:
  void SkipSpace();
  bool TakeQuoted(SelectionToken& token, char quote);
  std::size_t WordEnd() const;

  std::string_view m_text;
  std::size_t m_at = 0;
  bool m_unclosed = false;  // a quote was opened and never closed
};

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
