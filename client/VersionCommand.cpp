// vqclient version: the versions of client and server, and whether they may work together.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>
#include <client/NamingConnection.h>
#include <vq_idl/UsersManagerC.h>

namespace vqclient {
namespace {

constexpr int kCallLimit = 10000;  // milliseconds
constexpr int kClientRefused = 56;

struct Verdict {
  std::string serverVersion;
  std::string words;
};

// Asks the server itself: after a refused login its version is only part of a text.
Verdict AskServer(const CommandLine& line, const std::string& clientVersion) {
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, line.kind, true) != 1) {
    return {"", "unknown: the server cannot be asked"};
  }
  try {
    CORBA::String_var version;
    const int result = users->CRB_VerifyClientServerVersion(clientVersion.c_str(), version.out());
    if (result == kClientRefused) return {version.in(), "the server refuses this client"};
    if (result != 1) return {version.in(), "unknown: the server does not judge it"};
    return {version.in(), "the server accepts this client"};
  } catch (const CORBA::Exception&) {
    return {"", "unknown: the server does not return its version"};
  }
}

int Show(CommandLine& line) {
  vq::LoginError error;
  const std::optional<vq::Session> session = LogIn(line, OptionsOf(line), error);
  const vq::LoginResult result = session ? session->Result() : error.Result();
  std::optional<NamingConnection> naming;  // a failed login has ended the ORB
  if (!session && result != vq::LoginResult::kOrbNotUp && !line.IsTimeOver())
    naming.emplace(line, kCallLimit, ExitCodeOf(result));
  const auto limit = line.LimitBeforeLogout();
  std::string plain;
  std::string withPatches;
  const bool known = LoginHandler::GetGlobal()->GetClientVersion(plain, withPatches) == 1;
  Verdict verdict = AskServer(line, known ? plain : "0");
  if (!known) verdict.words = "unknown: no client product is installed";
  PrintJson({{"client", known ? withPatches : ""},
             {"server", verdict.serverVersion},
             {"verdict", verdict.words},
             {"result", vq::CodeOf(result)}});
  PrintText("client:  " + (known ? withPatches : "unknown") +
            "\nserver:  " + (verdict.serverVersion.empty() ? "unknown" : verdict.serverVersion) +
            "\nverdict: " + verdict.words + '\n');
  return ExitCodeOf(result);
}

}  // namespace

void AddVersionCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "version", "Show the versions of client and server and the verdict",
                  true, Show);
}

}  // namespace vqclient
