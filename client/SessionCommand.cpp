// vqclient session: a whole session, from login to logout, kept alive as long as asked for.

#include <algorithm>
#include <chrono>
#include <climits>
#include <ctime>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "Login.h"

namespace vqclient {
namespace {

struct Upkeep {
  int interval = 0;    // seconds; 0: log out at once
  int count = 0;       // keep-alives; 0: until interrupted
  bool again = false;  // log in again when the server no longer knows the session
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
  if (Form().json) {
    PrintJson({{"time", Now()}, {"event", event}, {"result", result}}, -1);
  } else {
    Say(Now() + " " + event + ": " + std::to_string(result));
  }
  std::cout.flush();
}

// Returns true as long as the session is there.
bool KeepUp(vq::Session& session, const Upkeep& upkeep) {
  const vq::LoginResult result = session.KeepAlive();
  const bool silent = result == vq::LoginResult::kNoServer;
  if (silent) Tell(session.Message());
  Report("keep-alive", silent ? 0 : vq::CodeOf(result));
  if (result == vq::LoginResult::kSuccess) return true;
  if (!upkeep.again) return false;
  const vq::LoginResult again = session.Renew();
  if (!vq::IsLoggedIn(again)) Tell(session.Message());
  Report("login again", vq::CodeOf(again));
  return vq::IsLoggedIn(again);
}

int Run(CommandLine& line, const Upkeep& upkeep) {
  vq::SessionOptions options = OptionsOf(line, true);
  using Clock = std::chrono::steady_clock;
  const auto end = line.maxTime > 0 ? Clock::now() + std::chrono::seconds(line.maxTime)
                                    : Clock::time_point::max();
  Interrupt interrupt;
  vq::LoginError error;
  std::optional<vq::Session> session = LogIn(line, std::move(options), error);
  Report("login", session ? vq::CodeOf(session->Result()) : error.Code());
  if (!session) return ExitCodeOf(error.Result());

  // The time of all is that of the login first; later the session ends in order when it is over.
  line.EndClock();
  int kept = 0;
  bool alive = true;
  while (alive && upkeep.interval > 0 && (upkeep.count == 0 || kept < upkeep.count)) {
    const auto pause =
        std::min<Clock::duration>(std::chrono::seconds(upkeep.interval), end - Clock::now());
    if (interrupt.Wait(std::chrono::ceil<std::chrono::milliseconds>(pause)) ||
        Clock::now() >= end) {
      break;
    }
    alive = KeepUp(*session, upkeep);
    ++kept;
  }
  Report("logout", GL_LogOut(false));
  return alive ? kSuccess : kSessionLost;
}

}  // namespace

void AddSessionCommand(CLI::App& program, CommandLine& line) {
  auto upkeep = std::make_shared<Upkeep>();
  CLI::App* const command = line.AddCommand(
      program, "session", "Log in, load what the user may do, keep the session alive and log out",
      true, [upkeep](CommandLine& given) { return Run(given, *upkeep); });
  command
      ->add_option("-i,--interval", upkeep->interval,
                   "Time between keep-alives, until Ctrl-C (at most 86400); 0 logs out at once")
      ->check(CLI::Range(0, 86400).description(""))
      ->capture_default_str()
      ->type_name("SECONDS");
  command->add_option("-c,--count", upkeep->count, "Log out after this many keep-alives")
      ->check(CLI::Range(0, INT_MAX).description(""))
      ->type_name("NUMBER");
  command->add_flag("--again", upkeep->again, "Log in again when the session is lost");
}

}  // namespace vqclient
