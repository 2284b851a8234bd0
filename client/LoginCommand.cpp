// vqclient login: proves that a user can log in, and ends the session again.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ClientSession.h"
#include "Commands.h"

namespace vqclient {
namespace {

int Login(CommandLine& line) {
  ClientSession session(line);
  const int result = session.Login();
  if (Form().json && result != ClientSession::kCredentialsMissing) {
    PrintJson({{"result", result},
               {"connected", LoginHandler::GetGlobal()->IsConnected()},
               {"message", session.Message()}});
  } else if (LoginHandler::GetGlobal()->IsConnected() && IsIn(result)) {
    Say("Logged in as " + ConnectionSettings::Get()->getUserName() + " to " + line.server + ".");
  }
  return ExitCodeOfSession(result);
}

}  // namespace

void AddLoginCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command =
      program.add_subcommand("login", "Log in, tell the result and log out again");
  line.AddConnectionOptions(*command);
  command->callback([&] {
    line.ApplyWithServer();
    exitCode = Login(line);
  });
}

}  // namespace vqclient
