// vqclient passwd: changes the user's password, also an expired one.

#include <utility>

#include <CLI/CLI.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>

namespace vqclient {
namespace {

// Asks without echo; empty without an answer.
vq::SecretString Ask(const std::string& question) {
  PrintError(question);
  std::string user = ConnectionSettings::Get()->getUserName();
  vq::SecretString password;
  vq::AskForPassword()(user, password);
  return password;
}

// Empty when there is none; the reason is printed.
vq::SecretString AskForNewPassword() {
  vq::SecretString password = Ask("The new password:");
  const vq::SecretString repeated =
      password.Text().empty() ? vq::SecretString() : Ask("The new password again:");
  if (!repeated.Text().empty() && password.Text() == repeated.Text()) return password;
  PrintError(repeated.Text().empty() ? "There is no new password."
                                     : "The two new passwords differ; nothing is changed.");
  return {};
}

int Change(CommandLine& line) {
  const auto ask = [&line] {
    const CommandLine::StoppedClock stopped(line);
    return AskForNewPassword();
  };
  vq::SecretString password;
  bool expired = false;
  vq::SessionOptions options = OptionsOf(line);
  options.newPassword = [&](const std::string& message) {
    PrintError(message);
    expired = true;
    return password = ask();
  };
  vq::LoginError error;
  std::optional<vq::Session> session = LogIn(line, std::move(options), error);
  vq::LoginResult result = session ? session->Result() : error.Result();
  if (!session && !expired) return ExitCodeOf(result);
  if (!expired) password = ask();
  const auto limit = line.LimitBeforeLogout();
  if (password.Text().empty()) return kNoCredentials;
  if (!expired) {
    result = session->ChangePassword(password);
    if (result == vq::LoginResult::kPasswordRefusedByPolicy) PrintError(session->Message());
  }
  if (vq::IsLoggedIn(result)) {
    PrintLine("The password is changed.");
  } else if (result != vq::LoginResult::kPasswordRefusedByPolicy) {
    // The server has changed it if only the reply was lost.
    PrintError(WithCause(
        "The server did not confirm the change (code " + std::to_string(vq::CodeOf(result)) + ").",
        GL_GetFailureCause()));
  }
  return ExitCodeOf(result);
}

}  // namespace

void AddPasswordCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "passwd", "Change the password", true, Change);
}

}  // namespace vqclient
