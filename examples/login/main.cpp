// Logs a user in, completes the login, prints the user's name, and logs out, with the functions of
// older clients. A new client uses vq::Session, as the other examples do.
//
//   login SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: login SERVER USER [-ORBInitRef NameService=REFERENCE]\n";
    return 2;
  }
  UserPass credentials(argv[2], "", "");  // asks for the password, without echo
  if (!credentials.Init()) {
    std::cerr << credentials.GetStatStr() << '\n';
    return 2;
  }

  std::string message;
  int code = GL_Login(credentials.GetUsername(), credentials.GetPassword(), argv[1], 600, message,
                      CLIENT_CLI, E_GSR, argc, argv);
  if (code == 1 || code == 50) code = GL_PostLogin(message);
  if (!message.empty()) std::cerr << message << '\n';

  if (code == 1) {
    std::cout << "Logged in as " << ConnectionSettings::Get()->getUserName()
              << (LoginHandler::GetGlobal()->IsAdministrator() ? ", an administrator" : "")
              << ".\n";
  }
  GL_LogOut(true);
  exit_vqclient_common();
  return code == 1 ? 0 : code == 0 ? 1 : code;
}
