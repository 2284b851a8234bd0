#include <support/os_toolkit/os_tokenizer.h>

os_tokenizer::os_tokenizer(std::string_view text, std::string_view delimiters) {
  for (std::size_t begin = text.find_first_not_of(delimiters); begin != std::string_view::npos;) {
    const std::size_t end = text.find_first_of(delimiters, begin);
    m_tokens.emplace_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(delimiters, end);
  }
}
