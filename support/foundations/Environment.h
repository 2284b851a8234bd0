// The process's environment.
//
// A program that runs with more rights than its caller reads every variable as unset, because the
// caller chooses what stands in them and they name files.
//
//   if (vq::GetEnv("ENABLE_TEST_CALLBACK")) ...              // set to anything, empty included
//   const std::string home = vq::GetEnvOr("VQ_HOME", "/x");  // empty counts as unset
#ifndef VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H
#define VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H

#include <cstdlib>
#include <optional>
#include <string>

namespace vq {

// Both read the environment as it is now. They are safe on any thread as long as no thread of the
// process changes the environment at the same time.

// The variable's value; nothing when it is not set.
inline std::optional<std::string> GetEnv(const char* name) {
  const char* value = ::secure_getenv(name);
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

// The variable's value; `fallback` when it is not set or empty.
inline std::string GetEnvOr(const char* name, const std::string& fallback) {
  const char* value = ::secure_getenv(name);
  return value != nullptr && *value != '\0' ? std::string(value) : fallback;
}

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H
