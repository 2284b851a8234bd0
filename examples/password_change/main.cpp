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
bool Ask(const char* question, std::string& password) {
  std::cerr << question << '\n';
  UserPass answer(ConnectionSettings::Get()->getUserName(), "", "");
  const bool answered = answer.GetConsoleMissData();
  password = answer.GetPassword();
  return answered;
}

// Asks for a new password that the policy takes and that was typed the same twice.
bool AskForNewPassword(std::string& password) {
  std::cout << "Passwords have " << GetMinPasswordLength() << " to " << GetMaxPasswordLength()
            << " characters.\n";
  std::string message;
  do {
    if (!message.empty()) std::cout << message << '\n';
    if (!Ask("The new password:", password)) return false;
  } while (CheckPasswordValidity(password, message) != 1);  // 51 and why

  std::string again;
  if (!Ask("The new password again:", again)) return false;
  if (again != password) std::cout << "The two differ.\n";
  return again == password;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: password_change SERVER USER [-ORBInitRef NameService=REFERENCE]\n";
    return 2;
  }
  UserPass credentials(argv[2], "", "");
  if (!credentials.Init()) return 2;

  std::string message;
  const int login = GL_Login(credentials.GetUsername(), credentials.GetPassword(), argv[1], 600,
                             message, CLIENT_CLI, E_GSR, argc, argv);
  if (!message.empty()) std::cout << message << '\n';

  const bool expired = login == 48;
  bool changed = false;
  if (std::string password; (login == 1 || login == 50 || expired) && AskForNewPassword(password)) {
    // With an expired password the change also logs in. A server that fails on the way leaves 1 as
    // well, but no session.
    changed = SetUserPassword(password, expired) == 1 && LoginHandler::GetGlobal()->IsConnected();
    if (changed && expired) changed = GL_PostLogin(message) == 1;
    std::cout << (changed ? "The password is changed.\n" : "The password is not changed.\n");
  }
  GL_LogOut(true);
  exit_vqclient_common();
  return changed ? 0 : 1;
}
