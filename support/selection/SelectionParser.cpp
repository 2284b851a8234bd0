#include <support/selection/SelectionParser.h>

#include <algorithm>
#include <array>

namespace vq {
namespace {

constexpr std::array<std::string_view, 4> kWords = {"AND", "OR", "LIKE", "NOT"};

constexpr bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
constexpr bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool StartsField(char c) {
  return IsLetter(c) || c == '_';
}
constexpr bool ContinuesField(char c) {
  return StartsField(c) || (c >= '0' && c <= '9') || c == '.';
}

constexpr std::array<bool, 256> kContinuesField = [] {
  std::array<bool, 256> table{};
  for (std::size_t c = 0; c < table.size(); ++c) table[c] = ContinuesField(static_cast<char>(c));
  return table;
}();

bool IsWord(std::string_view text, std::string_view capitals) {
  return std::equal(text.begin(), text.end(), capitals.begin(), capitals.end(), [](char c, char w) {
    return (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) == w;
  });
}

bool IsAnyWord(std::string_view text) {
  return text.size() <= 4 && std::any_of(kWords.begin(), kWords.end(),
                                         [text](auto word) { return IsWord(text, word); });
}

}  // namespace

std::string SelectionToken::Text() const {
  if (!doubled) return std::string(raw);
  std::string text;
  text.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    text += raw[i];
    if (raw[i] == quote) ++i;  // the second of the two
  }
  return text;
}

std::string SelectionParseError::AsString() const {
  return "at position " + std::to_string(position) + ": expected " + expected + ", found " + found;
}

bool IsBareField(std::string_view name) {
  return !name.empty() && StartsField(name.front()) &&
         std::all_of(name.begin(), name.end(), ContinuesField) && !IsAnyWord(name);
}

void SelectionScanner::SkipSpace() {
  while (m_at < m_text.size() && IsSpace(m_text[m_at])) ++m_at;
}

std::size_t SelectionScanner::WordEnd() const {
  std::size_t end = m_at;
  while (end < m_text.size() && kContinuesField[static_cast<unsigned char>(m_text[end])]) ++end;
  return end;
}

bool SelectionScanner::AtEnd() {
  SkipSpace();
  return m_at == m_text.size();
}

bool SelectionScanner::TakeChar(char c) {
  SkipSpace();
  if (m_at == m_text.size() || m_text[m_at] != c) return false;
  ++m_at;
  return true;
}

bool SelectionScanner::TakeWord(std::string_view word) {
  SkipSpace();
  const std::size_t end = m_at + word.size();
  if (end > m_text.size() || !IsWord(m_text.substr(m_at, word.size()), word)) return false;
  if (end < m_text.size() && ContinuesField(m_text[end])) return false;
  m_at = end;
  return true;
}

bool SelectionScanner::TakeQuoted(SelectionToken& token, char quote) {
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

bool SelectionScanner::TakeField(SelectionToken& token) {
  SkipSpace();
  if (m_at == m_text.size()) return false;
  if (!StartsField(m_text[m_at])) return TakeQuoted(token, '"');
  const std::size_t end = WordEnd();
  const std::string_view name = m_text.substr(m_at, end - m_at);
  if (IsAnyWord(name)) return false;
  token = SelectionToken{name, 0, false};
  m_at = end;
  return true;
}

bool SelectionScanner::TakeOperator(SelectionOperator& op) {
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
  if (TakeWord("NOT")) {
    if (TakeWord("LIKE")) {
      op = SelectionOperator::NotLike;
      return true;
    }
    m_at = start;
  }
  return false;
}

bool SelectionScanner::TakeValue(SelectionToken& token) {
  SkipSpace();
  return TakeQuoted(token, '\'');
}

bool SelectionScanner::Fail(std::string_view expected, SelectionParseError& error) {
  constexpr std::size_t kExcerpt = 20;
  if (m_unclosed) {
    error.expected = std::string("the closing quote of the text that starts at position ") +
                     std::to_string(m_at);
    m_at = m_text.size();
  } else {
    error.expected = expected;
  }
  SkipSpace();
  error.position = m_at;
  std::size_t end = m_at;
  while (end < m_text.size() && end - m_at < kExcerpt && !IsSpace(m_text[end])) ++end;
  error.found = m_at == m_text.size() ? "the end of the text" : m_text.substr(m_at, end - m_at);
  return false;
}

}  // namespace vq
