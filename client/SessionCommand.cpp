// vqclient session: a whole session, from login to logout, with keep-alives.

#include <algorithm>
#include <chrono>
#include <climits>
#include <ctime>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Interrupt.h>
#include <client/Login.h>

namespace vqclient {
namespace {

struct Upkeep {
  int interval = 0;    // seconds; 0: log out at once
  int count = 0;       // keep-alives; 0: until interrupted
  bool again = false;  // log in again when the session is lost
};

// "2026-11-21T23:22:37+0100"
std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32] = {};
  std::strftime(text, sizeof text, "%FT%T%z", &local);
  return text;
}

void Report(const char* event, int result) {
  PrintJson({{"time", Now()}, {"event", event}, {"result", result}}, -1);
  PrintLine(Now() + " " + event + ": " + std::to_string(result));
  std::cout.flush();
}

// Sends a keep-alive. Returns its result.
vq::LoginResult KeepAlive(vq::Session& session) {
  const vq::LoginResult result = session.KeepAlive();
  if (result == vq::LoginResult::kNoServer) {
    PrintError(WithCause("The server does not answer.", GL_GetFailureCause()));
  } else if (result != vq::LoginResult::kSuccess) {
    PrintError(kUnknownSession);
  }
  Report("keep-alive", vq::CodeOf(result));
  return result;
}

vq::LoginResult Renew(vq::Session& session) {
  const vq::LoginResult result = session.Renew();
  if (!vq::IsLoggedIn(result)) PrintError(WithCause(session.Message(), GL_GetFailureCause()));
  Report("login again", vq::CodeOf(result));
  return result;
}

// Sends keep-alives until all are sent, a signal arrives, the time is over, the session is lost or
// nobody reads what is printed. With `again` it renews a lost session, and goes on while the server
// does not answer. Returns whether the session is alive.
bool KeepUp(const CommandLine& line, vq::Session& session, const Upkeep& upkeep,
            Interrupt& interrupt) {
  using Clock = std::chrono::steady_clock;
  const auto end = line.EndBeforeLogout();
  const auto limit = line.LimitBeforeLogout();
  bool isAlive = true;
  for (int sent = 0; upkeep.count == 0 || sent < upkeep.count; ++sent) {
    const auto next = std::min(Clock::now() + std::chrono::seconds(upkeep.interval), end);
    if (interrupt.WaitUntil(next) || next == end) break;
    vq::LoginResult result = KeepAlive(session);
    const bool isOver = interrupt.WaitUntil(Clock::now()) || end <= Clock::now();
    if (result != vq::LoginResult::kSuccess && upkeep.again && !isOver) result = Renew(session);
    isAlive = vq::IsLoggedIn(result);
    const bool mayReturn = upkeep.again && result == vq::LoginResult::kNoServer;
    if ((!isAlive && !mayReturn) || !std::cout) break;
  }
  return isAlive;
}

int Run(CommandLine& line, const Upkeep& upkeep) {
  vq::SessionOptions options = OptionsOf(line, true);
  Interrupt interrupt;
  vq::LoginError error;
  std::optional<vq::Session> session = LogIn(line, std::move(options), error);
  Report("login", session ? vq::CodeOf(session->Result()) : error.Code());
  if (!session) return ExitCodeOf(error.Result());
  const bool alive = upkeep.interval == 0 || KeepUp(line, *session, upkeep, interrupt);
  if (session->IsLost()) return kSessionLost;
  const bool isOut = LogOut();
  Report("logout", vq::CodeOf(isOut ? vq::LoginResult::kSuccess : vq::LoginResult::kNoServer));
  return isOut && alive ? kSuccess : kSessionLost;
}

}  // namespace

void AddSessionCommand(CLI::App& program, CommandLine& line) {
  auto upkeep = std::make_shared<Upkeep>();
  CLI::App* const command = line.AddCommand(
      program, "session", "Log in, load the authorizations, keep the session alive and log out",
      true, [upkeep](CommandLine& given) { return Run(given, *upkeep); });
  AddNumber(*command, "-i,--interval", upkeep->interval, 86400, "SECONDS",
            "Time between keep-alives, at most 86400; 0: log out at once");
  AddNumber(*command, "-c,--count", upkeep->count, INT_MAX, "NUMBER",
            "Log out after this number of keep-alives; 0: on Ctrl-C");
  command->add_flag("--again", upkeep->again, "Log in again when the session is lost");
}

}  // namespace vqclient
