#include <vq_client_common/environment/Trim.h>

#include <algorithm>
#include <string_view>

namespace {

std::string Trim(const char* text, std::string_view left, std::string_view right) {
  std::string_view rest = text != nullptr ? text : "";
  rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(left)));
  return std::string(rest.substr(0, rest.find_last_not_of(right) + 1));
}

}  // namespace

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
