// vqclient passwd: changes the user's password, also an expired one.

#include <CLI/CLI.hpp>

#include "ClientSession.h"
#include "Commands.h"
#include "ExitCodes.h"

namespace vqclient {
namespace {

// Asks without echo; false when nobody answers.
bool Ask(const std::string& question, std::string& password) {
  Tell(question);
  UserPass answer(ConnectionSettings::Get()->getUserName(), "", "");
  const bool answered = answer.GetConsoleMissData();
  password = answer.GetPassword();
  return answered;
}

int Change(CommandLine& line) {
  ClientSession session(line);
  const int login = session.Login();
  const bool expired = login == kPasswordExpired;
  if (!IsIn(login) && !expired) return ExitCodeOfSession(login);

  std::string password;
  std::string repeated;
  int result = kNoCredentials;
  if (!Ask("The new password:", password) || !Ask("The new password again:", repeated)) {
    Tell("No new password was given.");
  } else if (password != repeated) {
    Tell("The two new passwords differ; nothing is changed.");
  } else if (std::string message; CheckPasswordValidity(password, message) != 1) {
    Tell(message);
    result = kPasswordRefused;
  } else {
    const int changed = SetUserPassword(password, expired);
    const bool done = changed == 1 && WasPasswordChanged();
    result = done ? kSuccess : changed == 1 ? kRefused : ExitCodeOf(changed);
    if (done) {
      Say("The password is changed.");
    } else {
      Tell("The server did not change the password (code " + std::to_string(changed) + ").");
    }
  }
  Wipe(password);
  Wipe(repeated);
  return result;
}

}  // namespace

void AddPasswordCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command = program.add_subcommand("passwd", "Change the password");
  line.AddConnectionOptions(*command);
  command->callback([&] {
    line.ApplyWithServer();
    exitCode = Change(line);
  });
}

}  // namespace vqclient
