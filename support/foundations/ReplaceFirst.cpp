#include <support/foundations/ReplaceFirst.h>

namespace vq {

bool ReplaceFirst(std::string& text, std::string_view pattern, std::string_view by) {
  if (pattern.empty()) return false;
  const std::size_t at = text.find(pattern);
  if (at == std::string::npos) return false;
  text.replace(at, pattern.size(), by);
  return true;
}

}  // namespace vq
