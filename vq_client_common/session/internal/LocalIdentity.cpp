#include <vq_client_common/session/internal/LocalIdentity.h>

#include <support/foundations/Platform.h>

namespace vq::session {

bool LocalIdentity::Find(const TDiagFunc& diag, std::size_t accountSize) {
  if (!HostName(host)) {
    VQ_LOG(diag, 1) << "Couldn't get host name.";
    return false;
  }
  const bool found = AccountName(account, accountSize);
  VQ_LOG(diag, 5) << "GetUserName/getpwuid resulted with rc=" << found
                  << " SystemUserName=" << account;
  // The name decides, not the call's result.
  if (account.empty()) {
    VQ_LOG(diag, 1) << "couldn't get system user name.";
    return false;
  }
  return true;
}

}  // namespace vq::session
