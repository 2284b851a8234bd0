#include <vq_client_common/session/internal/Registrant.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include <support/foundations/Environment.h>
#include <support/orb/FailureCause.h>
#include <support/security/ChallengeResponse.h>

namespace vq::session {

bool Registrant::FindNames(const TDiagFunc& diag, std::size_t accountSize) {
  if (!HostName(host)) {
    orb::NoteCause("this host has no name");
    VQ_LOG(diag, 1) << "Couldn't get host name.";
    return false;
  }
  errno = 0;
  const bool found = AccountName(account, accountSize);
  const int failure = errno;
  VQ_LOG(diag, 5) << "GetUserName/getpwuid resulted with rc=" << found
                  << " SystemUserName=" << account;
  // Intentional: an empty name is the failure, not the call's result.
  if (account.empty()) {
    orb::NoteCause(found || failure == 0
                       ? "the account of this process has no name of at most " +
                             std::to_string(accountSize - 1) + " bytes"
                       : std::string("the account of this process cannot be read: ") +
                             std::strerror(failure));
    VQ_LOG(diag, 1) << "couldn't get system user name.";
    return false;
  }
  return true;
}

bool Registrant::FindPassword(const ConnectionSettings& settings, QCSCorbaUsersManager_ptr users,
                              const TDiagFunc& diag) {
  password = SecretString(settings.GetPassword(ENC_AS_CONFIGURED));
  if (!settings.IsChallengeResponse()) return true;
  VQ_LOG(diag, 4) << "It's ChallengeResponse";
  CORBA::String_var first;
  CORBA::String_var second;
  if (users->CRB_AquireChallenge(first.out(), second.out()) != 1) {
    orb::NoteCause("the server gave no challenge for the password");
    VQ_LOG(diag, 1) << "Couldn't get Challenge";
    return false;
  }
  SecretString response;
  MakeChallengeResponse(first.in(), second.in(), password.Text(), response.Text());
  password = std::move(response);
  return true;
}

}  // namespace vq::session
