#include <vq_client_common/session/LoginExceptions.h>

#include <cstddef>
#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ReferenceAddress.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/UsersManager.h>

namespace {

TDiagRegister diagModule("LoginExceptions");

constexpr std::size_t kLongestNameInText = 45;

constexpr const char* kCauses = "This error may be caused by any of the following:\n";

std::string ServerTypeText() {
  const std::string server = ConnectionSettings::Get()->GetServerName();
  return vq::Filled(std::string(kCauses) +
                        " - Server '%s' has incorrect or old version.\n"
                        " - Server '%s' went down during login process.\t",
                    {server, server});
}

std::string UserAuthText(const std::string& user) {
  const bool named = user.size() <= kLongestNameInText;
  std::string text =
      std::string(kCauses) +
      (named ? " - User '%s' is not defined properly.\n" : " - User is not defined properly.\n") +
      " - The specified password is incorrect.\n\n"
      "For more information, refer to the VELTRA-M/Quorum Manager documentation.";
  if (named) vq::ReplaceFirst(text, "%s", user);
  return text;
}

std::string NoServerText() {
  const std::string server = ConnectionSettings::Get()->GetServerName();
  QCSCorbaUsersManager_ptr users;
  std::string cause = vq::orb::TakeCause();  // The look-up clears it.
  // Without a probe: the reference has the server's address even when the server does not run.
  const int found = vq::session::GetUsersManager(users, vq::session::SessionServerId(), false);
  vq::orb::NoteCause(std::move(cause));
  if (found == 1) {
    vq::orb::ReferenceAddress address;
    const vq::orb::AddressFault fault = vq::orb::AddressOf(users, address);
    if (fault != vq::orb::AddressFault::kNone) {
      VQ_LOG(diagModule, 5) << vq::orb::AddressFaultText(fault);
    }
    return std::string(kCauses) + " - Server '" + server + "' is not running on '" + address.host +
           "'.\t\n" + " - The Server listening port of " + address.port +
           " is blocked by the firewall.\t\n - The outgoing ports are blocked in this computer.\t";
  }
  return std::string(kCauses) + " - Server '" + server +
         "' is not running.\t\n - The Server listening port is blocked by the firewall.\t\n"
         " - The outgoing ports are blocked in this computer.\t";
}

}  // namespace

BaseLoginEx::BaseLoginEx(const std::string& reason) : m_reason(reason) {}

BaseLoginEx::BaseLoginEx(const std::string& reason, int returnCode, int errorNumber)
    : m_reason(reason), m_returnCode(returnCode), m_errorNumber(errorNumber) {}

std::string BaseLoginEx::handle() {
  VQ_LOG(diagModule, 1) << m_reason;
  return m_reason;
}

BadOrbixCfgEx::BadOrbixCfgEx(const std::string& reason)
    : BaseLoginEx(reason, vq::CodeOf(vq::LoginResult::kOrbNotUp), 60008) {}

NoServerEx::NoServerEx(const std::string& reason)
    : BaseLoginEx(reason.empty() ? NoServerText() : reason, vq::CodeOf(vq::LoginResult::kNoServer),
                  60007) {}

ServerTypeEx::ServerTypeEx(const std::string& reason)
    : BaseLoginEx(reason.empty() ? ServerTypeText() : reason, vq::CodeOf(vq::LoginResult::kFailed),
                  60009) {}

UserAuthEx::UserAuthEx(const std::string& reason, const std::string& user)
    : BaseLoginEx(reason, vq::CodeOf(vq::LoginResult::kFailed), 60010) {
  if (!reason.empty()) return;
  SetReason(UserAuthText(user.empty() ? ConnectionSettings::Get()->getUserName() : user));
}

UserLockedEx::UserLockedEx(const std::string& reason) : UserAuthEx("", "") {
  SetReason(reason.empty() ? "User account is locked.\t" : reason);
  SetCodes(vq::CodeOf(vq::LoginResult::kAccountLocked), 60006);
}

UserPwdExpEx::UserPwdExpEx(const std::string& reason) : UserAuthEx("", "") {
  SetReason(reason.empty() ? "Password has expired.\t" : reason);
  SetCodes(vq::CodeOf(vq::LoginResult::kPasswordExpired), 60011);
}
