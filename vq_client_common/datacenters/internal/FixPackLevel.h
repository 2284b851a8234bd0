// How a fix-pack level is trimmed before it is stored or shown.
#ifndef VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_FIXPACKLEVEL_H
#define VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_FIXPACKLEVEL_H

#include <cstddef>
#include <string>
#include <string_view>

namespace vq {

// The level without the blanks (0x20 alone) around it.
inline std::string TrimFixPackLevel(std::string_view level) {
  const std::size_t first = level.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    // Meant so: one blank is an empty level, two or more stay and show as a level.
    return std::string(level.size() == 1 ? std::string_view() : level);
  }
  return std::string(level.substr(first, level.find_last_not_of(' ') + 1 - first));
}

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_DATACENTERS_INTERNAL_FIXPACKLEVEL_H
