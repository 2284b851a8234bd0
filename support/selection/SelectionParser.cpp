#include <support/selection/SelectionParser.h>

#include <algorithm>

namespace vq {
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
         std::all_of(name.begin(), name.end(), ContinuesField) &&
         !SelectionScanner::IsLanguageWord(name);
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
  while (end < m_text.size() && end - m_at < kExcerpt && !IsSelectionSpace(m_text[end])) ++end;
  error.found = m_at == m_text.size() ? "the end of the text" : m_text.substr(m_at, end - m_at);
  return false;
}

}  // namespace vq
