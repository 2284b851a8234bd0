// vqclient login: logs in and out, to test whether a user can log in.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>

namespace vqclient {
namespace {

int Login(CommandLine& line) {
  vq::LoginError error;
  const std::optional<vq::Session> session = LogIn(line, OptionsOf(line), error);
  const vq::LoginResult result = session ? session->Result() : error.Result();
  const std::string user = ConnectionSettings::Get()->getUserName();
  if (session) PrintLine("Logged in as " + user + " to " + line.server + ".");
  const bool isOut = session && LogOut();
  PrintJson({{"result", vq::CodeOf(result)},
             {"connected", session.has_value()},
             {"loggedOut", isOut},
             {"message", session ? session->Message() : error.what()},
             {"cause", error.Cause()}});
  return session && !isOut ? kSessionLost : ExitCodeOf(result);
}

}  // namespace

void AddLoginCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "login", "Log in, print the result and log out again", true, Login);
}

}  // namespace vqclient
