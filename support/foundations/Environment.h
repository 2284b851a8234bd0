// The process's environment: its variables, its host and its account.
//
// A program that runs with more rights than its caller reads every variable as unset, because the
// caller chooses their values and they name files.
//
//   if (vq::GetEnv("ENABLE_TEST_CALLBACK")) ...              // set to anything, empty included
//   const std::string home = vq::GetEnvOr("VQ_HOME", "/x");  // empty counts as unset
//   std::string host;
//   if (!vq::HostName(host)) return 0;
#ifndef VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H
#define VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>

namespace vq {

// Both read the current environment. Thread safety: no thread of the process may change the
// environment at the same time.

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

// Puts the host's name into `name`. False when the system does not return it, or when it has more
// than 254 bytes; `name` is then empty.
bool HostName(std::string& name);

// Puts the name of the account that the process runs under (its effective user) into `name`. False
// when there is no such account, or when the name and a closing zero byte do not fit into `size`
// bytes; `name` is then empty, and errno tells why the accounts cannot be read. The name is kept
// for as long as that user is the effective one.
bool AccountName(std::string& name, std::size_t size);

// The account's home directory as the account database has it; empty when there is no such account.
std::string AccountHome();

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_ENVIRONMENT_H
