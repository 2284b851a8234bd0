// Host and account of this process, as a registration tells them to the server.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_LOCALIDENTITY_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_LOCALIDENTITY_H

#include <cstddef>
#include <string>

#include <support/diagnostics/TDiag.h>

namespace vq::session {

// Thread contract: a plain value.
struct LocalIdentity {
  std::string host;
  std::string account;

  // Asks the machine; an account name of `accountSize` bytes, its closing zero byte included, still
  // fits. False, with a line at level 1 in the caller's scope, when there is no name for the host
  // or the account.
  bool Find(const TDiagFunc& diag, std::size_t accountSize);
};

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_LOCALIDENTITY_H
