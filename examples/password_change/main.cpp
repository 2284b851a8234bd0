// Checks a new password against the site's rules and changes it, also an expired one.
//
//   password_change SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// Asks for the current password, then for the new one until it meets the rules, then for the new
// one again.

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// Asks without echo; false without an answer.
bool Ask(const char* question, vq::SecretString& password) {
  std::cerr << question << '\n';
  std::string user = ConnectionSettings::Get()->getUserName();
  password = vq::SecretString();
  return vq::AskForPassword()(user, password).empty();
}

// Asks for a new password that meets the rules and is typed twice; empty without one.
vq::SecretString AskForNewPassword() {
  std::cout << "Passwords have " << GetMinPasswordLength() << " to " << GetMaxPasswordLength()
            << " characters.\n";
  vq::SecretString password;
  std::string message;
  do {
    if (!message.empty()) std::cout << message << '\n';
    if (!Ask("The new password:", password)) return {};
  } while (CheckPasswordValidity(password.Text(), message) != 1);

  vq::SecretString again;
  if (!Ask("The new password again:", again)) return {};
  if (again.Text() == password.Text()) return password;
  std::cout << "The two passwords differ.\n";
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
                         // Called when the password has expired; the change then logs in, too.
                         .newPassword =
                             [&expired](const std::string& message) {
                               expired = true;
                               std::cout << message << '\n';
                               return AskForNewPassword();
                             },
                         .orbArguments = {argv, argv + argc}});
    changed = expired;
    if (!expired) {
      const vq::SecretString password = AskForNewPassword();
      changed =
          !password.Text().empty() && session.ChangePassword(password) == vq::LoginResult::kSuccess;
    }
  } catch (const vq::LoginError& e) {
    std::cerr << e.what() << '\n' << e.Cause() << '\n';
    // The password may have been changed before the login failed.
    changed = expired && WasPasswordChanged();
  }
  std::cout << (changed ? "The password is changed.\n" : "The server confirmed no change.\n");
  return changed ? 0 : 1;
}
