// vqclient login: proves that a user can log in, and ends the session again.

#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ClientSession.h"
#include "Commands.h"

namespace vqclient {
namespace {

int Login(CommandLine& line) {
  ClientSession session(line);
  const int result = session.Login();
  if (line.json) {
    std::cout << nlohmann::json{{"result", result},
                                {"connected", LoginHandler::GetGlobal()->IsConnected()},
                                {"message", session.Message()}}
                     .dump(2)
              << '\n';
  } else if (LoginHandler::GetGlobal()->IsConnected() && (result == 1 || result == 50)) {
    std::cout << "Logged in as " << ConnectionSettings::Get()->getUserName() << " to "
              << line.server << ".\n";
  }
  return ExitCodeOfSession(result);
}

}  // namespace

void AddLoginCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command =
      program.add_subcommand("login", "Log in, tell the result and log out again");
  line.AddConnectionOptions(*command);
  command->callback([&] {
    line.Apply();
    exitCode = Login(line);
  });
}

}  // namespace vqclient
