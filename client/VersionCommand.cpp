// vqclient version: the versions of client and server, and whether they may work together.

#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <vq_idl/UsersManagerC.h>

#include "Commands.h"
#include "ExitCodes.h"
#include "Login.h"
#include "NamingConnection.h"

namespace vqclient {
namespace {

constexpr int kCallLimit = 10000;  // milliseconds

struct Verdict {
  std::string serverVersion;
  std::string words;
};

// Asks the server itself: a refused login has the version in its text alone.
Verdict AskServer(const CommandLine& line, const std::string& clientVersion) {
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, line.kind, true) != 1) {
    return {"", "not judged: the server does not answer"};
  }
  try {
    CORBA::String_var version;
    const int result = users->CRB_VerifyClientServerVersion(clientVersion.c_str(), version.out());
    if (result == 56) return {version.in(), "the server refuses this client"};
    if (result != 1) return {version.in(), "not judged by the server"};
    return {version.in(), "the server accepts this client"};
  } catch (const CORBA::Exception&) {
    return {"", "not judged: the server is too old to say its version"};
  }
}

int Show(CommandLine& line) {
  vq::LoginError error;
  const std::optional<vq::Session> session = LogIn(line, OptionsOf(line), error);
  const vq::LoginResult result = session ? session->Result() : error.Result();
  std::optional<NamingConnection> naming;  // the ORB has ended with a failed login
  if (!session && result != vq::LoginResult::kOrbNotUp)
    naming.emplace(line, kCallLimit, ExitCodeOf(result));
  std::string plain;
  std::string withPatches;
  const bool known = LoginHandler::GetGlobal()->GetClientVersion(plain, withPatches) == 1;
  const Verdict verdict =
      known ? AskServer(line, plain) : Verdict{"", "not judged: no client product is installed"};
  if (Form().json) {
    PrintJson({{"client", known ? withPatches : ""},
               {"server", verdict.serverVersion},
               {"verdict", verdict.words},
               {"result", vq::CodeOf(result)}});
  } else {
    std::cout << "client:  " << (known ? withPatches : "unknown") << '\n'
              << "server:  " << (verdict.serverVersion.empty() ? "unknown" : verdict.serverVersion)
              << '\n'
              << "verdict: " << verdict.words << '\n';
  }
  return ExitCodeOf(result);
}

}  // namespace

void AddVersionCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "version", "Show the versions of client and server and the verdict",
                  true, Show);
}

}  // namespace vqclient
