// Any file answers any language: with a locale that fits the buffer and has no white space at its
// end, or with the buffer untouched. Input: the language, a zero byte, the file.

#include <cctype>
#include <cstring>
#include <memory>

#include <fuzz/Require.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/environment/LanguageLocale.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vq::test::TemporaryDirectory directory;
  static const vq::test::Variable home("VQ_HOME", directory.Path());
  const std::string input = vq::Text(data, size);
  const std::string language = input.c_str();
  directory.Write("ini/locale.ini",
                  language.size() < input.size() ? input.substr(language.size() + 1) : "");

  // On the heap and of exactly the promised size, so that a sanitizer sees a byte too many.
  const std::unique_ptr<char[]> locale(new char[255]);
  std::memset(locale.get(), '~', 255);
  const int result = get_locale(language.c_str(), locale.get());
  const bool isUntouched = std::string(255, '~') == std::string(locale.get(), 255);
  if (result == 1 && !isUntouched) {
    const std::string text = locale.get();
    vq::Require(text.empty() || std::isspace(static_cast<unsigned char>(text.back())) == 0);
    vq::Require(text.find('\n') == std::string::npos);
  } else {
    vq::Require(isUntouched && (result == 1 || result == 12 || result == 22));
  }
  return 0;
}
