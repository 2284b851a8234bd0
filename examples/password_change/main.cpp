// Changes a password, an expired one too, after checking the new one against the site's policy.
//
//   password_change SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// Asks for the present password, then for the new one until the policy takes it, then once more.

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// Asks without echo; false when nobody answers.
bool Ask(const char* question, vq::SecretString& password) {
  std::cerr << question << '\n';
  std::string user = ConnectionSettings::Get()->getUserName();
  password = vq::SecretString();
  return vq::AskForPassword()(user, password).empty();
}

// Asks for a new password that the policy takes and that was typed the same twice; empty if not.
vq::SecretString AskForNewPassword() {
  std::cout << "Passwords have " << GetMinPasswordLength() << " to " << GetMaxPasswordLength()
            << " characters.\n";
  vq::SecretString password;
  std::string message;
  do {
    if (!message.empty()) std::cout << message << '\n';
    if (!Ask("The new password:", password)) return {};
  } while (CheckPasswordValidity(password.Text(), message) != 1);  // 51 and why

  vq::SecretString again;
  if (!Ask("The new password again:", again)) return {};
  if (again.Text() == password.Text()) return password;
  std::cout << "The two differ.\n";
  return {};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: password_change SERVER USER [-ORBInitRef NameService=REFERENCE]\n";
    return 2;
  }
  bool expired = false;
  bool changed = false;
  try {
    vq::Session session({.server = argv[1],
                         .user = argv[2],
                         .credentials = vq::AskForPassword(),
                         // Called when the password has expired: the change then also logs in.
                         .newPassword =
                             [&expired](const std::string& message) {
                               expired = true;
                               std::cout << message << '\n';
                               return AskForNewPassword();
                             },
                         .orbArguments = {argv, argv + argc}});
    changed = expired || session.ChangePassword(AskForNewPassword()) == vq::LoginResult::kSuccess;
  } catch (const vq::LoginError& e) {
    std::cerr << e.what() << '\n' << e.Cause() << '\n';
    // The change may have been made before the login failed.
    changed = expired && WasPasswordChanged();
  }
  std::cout << (changed ? "The password is changed.\n" : "The password is not changed.\n");
  return changed ? 0 : 1;
}
