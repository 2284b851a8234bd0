// vqclient ping: whether naming service and server answer, and how fast, without a login.

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>

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
    try {
      const CORBA::Object_var object = find();
      const auto start = std::chrono::steady_clock::now();
      if (object->_non_existent()) throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
      const std::chrono::duration<double, std::milli> taken =
          std::chrono::steady_clock::now() - start;
      m_times.push_back(taken.count());
    } catch (const CosNaming::NamingContext::NotFound&) {
      m_error = "the naming service does not know this server";
    } catch (const CORBA::Exception& e) {
      m_error = CauseOf(e);
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
      const double least = m_times.front(), most = m_times.back();
      const double median = (m_times[(m_times.size() - 1) / 2] + m_times[m_times.size() / 2]) / 2;
      data.update({{"minMs", least}, {"medianMs", median}, {"maxMs", most}});
      char times[100];
      std::snprintf(times, sizeof times, ", min/median/max %.3f/%.3f/%.3f ms", least, median, most);
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
  std::string m_name;
  std::vector<double> m_times;  // milliseconds
  int m_asked = 0;
  std::string m_error;
};

int Ping(CommandLine& line, const Rounds& rounds) {
  const NamingConnection connection(line, kCallLimit, kRefused);
  const std::string kind = GL_ResolveServerID(line.kind);
  std::string reason;  // why no server is asked
  try {
    if (line.server.empty()) line.server = connection.OnlyServer(line.kind, reason);
  } catch (const CORBA::Exception& e) {
    reason = CauseOf(e);
  }
  if (!reason.empty()) PrintError("no server is asked: " + reason + "; give --server NAME");
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
  data["server"] = reason.empty() ? server.Result()
                                  : nlohmann::json{{"asked", 0}, {"answers", 0}, {"error", reason}};
  PrintJson(data);
  return naming.Answers() && server.Answers() ? kSuccess : kRefused;
}

}  // namespace

void AddPingCommand(CLI::App& program, CommandLine& line) {
  auto rounds = std::make_shared<Rounds>();
  CLI::App* const command = line.AddCommand(
      program, "ping",
      "Test whether naming service and server answer, without a login; exit code 1 if one does not",
      false, [rounds](CommandLine& given) { return Ping(given, *rounds); });
  AddNumber(*command, "-c,--count", rounds->count, INT_MAX, "NUMBER",
            "Number of round trips; 0: until Ctrl-C");
  AddNumber(*command, "-i,--interval", rounds->interval, 86400.0, "SECONDS",
            "Time between two round trips");
}

}  // namespace vqclient
