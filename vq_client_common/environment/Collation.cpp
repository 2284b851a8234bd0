#include <vq_client_common/environment/Collation.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <string_view>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>

namespace {

// Added to a byte that begins no character: the range of the surrogates, which no encoding uses.
// (To compare only such strings by bytes would make the order inconsistent.)
constexpr wchar_t kBadByte = 0xDC00;

std::wstring Decode(const char* text, std::size_t mostCharacters) {
  std::wstring result;
  std::mbstate_t state{};
  std::size_t left = std::strlen(text);
  while (left > 0 && result.size() < mostCharacters) {
    wchar_t character = 0;
    std::size_t length = std::mbrtowc(&character, text, left, &state);
    if (length == 0 || length > left) {
      state = {};
      character = kBadByte + static_cast<unsigned char>(*text);
      length = 1;
    }
    result.push_back(character);
    text += length;
    left -= length;
  }
  return result;
}

std::wstring WithoutCase(const char* text) {
  std::wstring result = Decode(text, std::string::npos);
  for (wchar_t& c : result) c = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
  return result;
}

const char* OrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

std::string Trim(const char* text, std::string_view left, std::string_view right) {
  std::string_view rest = OrEmpty(text);
  rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(left)));
  return std::string(rest.substr(0, rest.find_last_not_of(right) + 1));
}

}  // namespace

int stricoll(const char* a, const char* b, bool caseInsensitiveAlways) {
  a = OrEmpty(a);
  b = OrEmpty(b);
  if (i18n_aux::IsCJK_mode() && !caseInsensitiveAlways) return std::strcoll(a, b);
  return std::wcscoll(WithoutCase(a).c_str(), WithoutCase(b).c_str());
}

int strncoll(const char* a, const char* b, unsigned int n) {
  return std::wcscoll(Decode(OrEmpty(a), n).c_str(), Decode(OrEmpty(b), n).c_str());
}

std::string i18n_aux::strtrim(const char* text) {
  return Trim(text, " ", " ");
}
std::string i18n_aux::strtrim2(const char* text) {
  return Trim(text, " \t", " \t");
}
std::string i18n_aux::strtrim_left(const char* text) {
  return Trim(text, " ", "");
}
std::string i18n_aux::strtrim_right(const char* text) {
  return Trim(text, "", " ");
}
