// Splits a string into tokens at delimiters, each a single character. Empty tokens are dropped, so
// adjacent delimiters count as one, and those at either end as none.
//
//   const os_tokenizer tokens("E_GAS \t 8.0.00", " \t");
//   tokens.size();   // 2
//   tokens[1];       // "8.0.00"
//
//   std::string_view text = "a=b=c";
//   vq::Cut(text, '=');   // "a", and the text is "b=c"
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TOKENIZER_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TOKENIZER_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class os_tokenizer {
 public:
  // The text is copied. Without delimiters the whole text is one token, unless it is empty.
  os_tokenizer(std::string_view text, std::string_view delimiters) {
    for (std::size_t begin = text.find_first_not_of(delimiters); begin != std::string_view::npos;) {
      const std::size_t end = text.find_first_of(delimiters, begin);
      m_tokens.emplace_back(text.substr(begin, end - begin));
      begin = text.find_first_not_of(delimiters, end);
    }
  }

  std::size_t size() const { return m_tokens.size(); }
  bool empty() const { return m_tokens.empty(); }
  // From 0; raises std::out_of_range for a token that does not exist.
  const std::string& operator[](std::size_t index) const { return m_tokens.at(index); }
  std::vector<std::string>::const_iterator begin() const { return m_tokens.begin(); }
  std::vector<std::string>::const_iterator end() const { return m_tokens.end(); }

 private:
  std::vector<std::string> m_tokens;
};

namespace vq {

// Takes what is before the first separator off the text, with the separator; all of a text without
// one.
inline std::string_view Cut(std::string_view& text, char separator) {
  const std::string_view taken = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(taken.size() + 1, text.size()));
  return taken;
}

}  // namespace vq

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TOKENIZER_H
