#include <client/Login.h>

#include <utility>

#include <client/ExitCodes.h>
#include <client/NamingConnection.h>

namespace vqclient {

vq::SessionOptions OptionsOf(CommandLine& line, bool postLogin) {
  vq::SessionOptions options{.server = line.server,
                             .kind = line.kind,
                             .user = line.user,
                             .timeOut = std::chrono::seconds(line.lifetime),
                             .orbArguments = line.orb,
                             .postLogin = postLogin};
  const bool hasFile = !line.passwordFile.empty();
  if (hasFile && !line.user.empty()) {
    throw Failure(kNoCredentials, "Conflict, Have a Username and password file");
  }
  const auto find = hasFile ? vq::ReadPasswordFile(line.passwordFile) : vq::AskForPassword();
  const CommandLine::StoppedClock stopped(line);
  const std::string failure = find(options.user, options.password);
  if (!failure.empty()) throw Failure(kNoCredentials, failure);
  return options;
}

std::optional<vq::Session> LogIn(CommandLine& line, vq::SessionOptions options,
                                 vq::LoginError& error) {
  line.StartClock();
  std::optional<vq::Session> session = vq::Session::Open(std::move(options), error);
  if (!session) {
    std::string text = error.what();
    const std::string code = std::to_string(error.Code());
    if (ExitCodeOf(error.Result()) == kServerCode && text.find(code) == std::string::npos) {
      text += " (code " + code + ")";
    }
    PrintError(WithCause(text, error.Cause()));
  } else if (!Form().quiet && !session->Message().empty()) {
    PrintError(session->Message());
  }
  return session;
}

vq::Session LogIn(CommandLine& line, vq::SessionOptions options) {
  vq::LoginError error;
  std::optional<vq::Session> session = LogIn(line, std::move(options), error);
  if (!session) throw Failure(ExitCodeOf(error.Result()), "");
  return *std::move(session);
}

bool LogOut() {
  std::string cause;
  try {
    LoginHandler::GetGlobal()->Logout();
  } catch (const CORBA::Exception& e) {
    cause = CauseOf(e);
  }
  const bool isDone = !LoginHandler::GetGlobal()->IsConnected();
  if (!isDone) PrintError(WithCause("The server does not confirm the logout.", cause));
  ConnectionSettings::Get()->SetUserID("");  // so that the end of the session does not try again
  return isDone;
}

}  // namespace vqclient
