#include <support/foundations/Environment.h>

#include <cstdlib>

namespace vq {

std::optional<std::string> GetEnv(const char* name) {
  const char* value = ::secure_getenv(name);
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

std::string GetEnvOr(const char* name, const std::string& fallback) {
  const char* value = ::secure_getenv(name);
  return value != nullptr && *value != '\0' ? std::string(value) : fallback;
}

}  // namespace vq
