// A client whose memory and traces another process searches for its password: it logs in, changes
// the password and logs out, each when a line on its standard input says so, and tells on its
// standard output when it is done. Passwords come over the standard input, and everything that this
// program does with them it wipes; what is found is the library's.
//
//   canary_client NAMING LOG
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

#include <support/security/SecretString.h>
#include <vq_client_common/vq_client_common.h>

namespace {

// One line of the standard input, read byte by byte into a string that never grows.
vq::SecretString ReadLine() {
  vq::SecretString line;
  line.Text().reserve(128);
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) == 1 && byte != '\n') line.Text() += byte;
  return line;
}

}  // namespace

int main(int, char** argv) {
  TDiag::Instance()->SetMinimumDebugLevel(TDiag::kTrace);
  TDiag::Instance()->AddFileSink(argv[2]);
  TDiag::Instance()->AddCallbackSink([](const TDiagLine& line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.text.size()), line.text.data());
  });
  std::vector<std::string> words{"client", "-ORBInitRef", std::string("NameService=") + argv[1]};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());

  for (;;) {
    const vq::SecretString command = ReadLine();
    std::string message;
    int result = -1;
    if (command.Text() == "login") {
      result = GL_Login("alice", ReadLine().Text(), "central", 600, message, CLIENT_CLI, E_GSR,
                        static_cast<int>(arguments.size()), arguments.data());
      if (result == 1) result = GL_PostLogin(message);
    } else if (command.Text() == "change") {
      result = SetUserPassword(ReadLine().Text(), false);
    } else if (command.Text() == "logout") {
      result = GL_LogOut(true);
      exit_vqclient_common();
    } else {
      return 0;
    }
    std::printf("%d\n", result);
    std::fflush(stdout);
  }
}
