#include <vq_client_common/session/internal/RegistrationPassword.h>

#include <string>

#include <support/security/ChallengeResponse.h>

namespace vq::session {

RegistrationPassword::RegistrationPassword(const ConnectionSettings& settings)
    : m_challengeResponse(settings.IsChallengeResponse()) {
  std::string password = settings.GetPassword(ENC_AS_CONFIGURED);
  m_password.Text() = password;
  Wipe(password);
}

bool RegistrationPassword::Answer(QCSCorbaUsersManager_ptr users, const TDiagFunc& diag) {
  if (!m_challengeResponse) return true;
  VQ_LOG(diag, 4) << "It's ChallengeResponse";
  CORBA::String_var first;
  CORBA::String_var second;
  if (users->CRB_AquireChallenge(first.out(), second.out()) != 1) {
    VQ_LOG(diag, 1) << "Couldn't get Challenge";
    return false;
  }
  SecretString response;
  MakeChallengeResponse(first.in(), second.in(), m_password.Text(), response.Text());
  m_password = std::move(response);
  return true;
}

}  // namespace vq::session
