// vqclient ping: whether naming service and server answer, and how fast, without a login.

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Interrupt.h>
#include <client/NamingConnection.h>
#include <support/orb/ORBCommon.h>

namespace vqclient {
namespace {

constexpr int kCallLimit = 5000;  // milliseconds

struct Rounds {
  int count = 3;          // 0: until interrupted
  double interval = 1.0;  // seconds
};

// The round trips to the naming service or the server.
class Target {
 public:
  explicit Target(std::string name) : m_name(std::move(name)) {}

  template <class Find>
  void Ask(Find find) {
    ++m_asked;
    CORBA::Object_var object;
    try {
      object = find();
      const auto start = std::chrono::steady_clock::now();
      if (object->_non_existent()) throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
      const std::chrono::duration<double, std::milli> taken =
          std::chrono::steady_clock::now() - start;
      m_times.push_back(taken.count());
    } catch (const CosNaming::NamingContext::NotFound&) {
      m_error = "the naming service does not know this server";
    } catch (const CORBA::Exception& e) {
      m_error = CORBA::is_nil(object.in()) ? CauseOf(e) : Describe(e);
    }
  }

  bool Answers() const { return !m_times.empty(); }

  // Prints the result as text, and returns it for --json.
  nlohmann::json Result() {
    nlohmann::json data{{"asked", m_asked}, {"answers", m_times.size()}};
    std::string line = std::to_string(m_times.size()) + " of " + std::to_string(m_asked);
    line += " answers";
    if (Answers()) {
      std::sort(m_times.begin(), m_times.end());
      data.update({{"minMs", m_times.front()}, {"medianMs", Median()}, {"maxMs", m_times.back()}});
      char times[100];
      std::snprintf(times, sizeof times, ", min/median/max %.3f/%.3f/%.3f ms", m_times.front(),
                    Median(), m_times.back());
      line += times;
    }
    PrintLine(m_name + ": " + line);
    if (!m_error.empty()) {
      data["error"] = m_error;
      PrintError(m_name + ": " + m_error);
    }
    return data;
  }

 private:
  double Median() const {
    const std::size_t half = m_times.size() / 2;
    return m_times.size() % 2 == 1 ? m_times[half] : (m_times[half - 1] + m_times[half]) / 2;
  }

  std::string m_name;
  std::vector<double> m_times;  // milliseconds
  int m_asked = 0;
  std::string m_error;
};

int Ping(CommandLine& line, const Rounds& rounds) {
  const NamingConnection connection(line, kCallLimit, kRefused);
  const std::string kind = GL_ResolveServerID(line.kind);
  try {
    std::string reason;
    if (line.server.empty()) line.server = connection.OnlyServer(line.kind, reason);
  } catch (const CORBA::Exception&) {  // the round trips show it
  }
  Target naming("naming service");
  Target server("server " + line.server + " (" + kind + ")");
  Interrupt interrupt;
  using Clock = std::chrono::steady_clock;
  const std::chrono::milliseconds pause(static_cast<long>(rounds.interval * 1000));
  for (int round = 0; rounds.count == 0 || round < rounds.count; ++round) {
    if (round > 0 && interrupt.WaitUntil(std::min(Clock::now() + pause, line.End()))) break;
    if (round > 0 && line.IsTimeOver()) break;
    naming.Ask([] { return CORBA::Object::_duplicate(ORBCommon<1>::Get()->GetNamingRoot()); });
    if (line.server.empty()) continue;
    // Bind connects, before the time is measured.
    server.Ask([&] { return ORBCommon<1>::Get()->Bind(line.server, kind, "UsersManager", true); });
  }
  nlohmann::json data{{"naming", naming.Result()}};
  if (!line.server.empty()) data["server"] = server.Result();
  if (Form().json) PrintJson(data);
  return naming.Answers() && (line.server.empty() || server.Answers()) ? kSuccess : kRefused;
}

}  // namespace

void AddPingCommand(CLI::App& program, CommandLine& line) {
  auto rounds = std::make_shared<Rounds>();
  CLI::App* const command = line.AddCommand(
      program, "ping",
      "Test whether naming service and server answer, without a login; exit code 1 if one does not",
      false, [rounds](CommandLine& given) { return Ping(given, *rounds); });
  command->add_option("-c,--count", rounds->count, "Number of round trips; 0: until Ctrl-C")
      ->check(CLI::Range(0, INT_MAX).description(""))
      ->capture_default_str()
      ->type_name("NUMBER");
  command->add_option("-i,--interval", rounds->interval, "Time between two round trips")
      ->check(CLI::Range(0.0, 86400.0).description(""))
      ->capture_default_str()
      ->type_name("SECONDS");
}

}  // namespace vqclient
