// vq_simulator: a server to try, demonstrate and test clients against (docs/simulator.md).

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <pthread.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <simulator/Callbacks.h>
#include <simulator/Control.h>
#include <simulator/Credentials.h>
#include <simulator/Naming.h>
#include <simulator/NamingProcess.h>
#include <simulator/Options.h>
#include <simulator/Orb.h>
#include <simulator/Server.h>
#include <simulator/World.h>
#include <support/orb/ReferenceAddress.h>

namespace {

using namespace vq::sim;

// Extracts the options of the ORB, which are not options of this program.
std::vector<std::string> Take(std::string_view prefix, std::vector<std::string>& arguments) {
  std::vector<std::string> taken;
  std::vector<std::string> rest;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!arguments[i].starts_with(prefix)) {
      rest.push_back(arguments[i]);
      continue;
    }
    taken.push_back(arguments[i]);
    if (i + 1 < arguments.size()) taken.push_back(arguments[++i]);
  }
  arguments = rest;
  return taken;
}

// The settings that clients have too. Raises std::invalid_argument.
vq::orb::TlsSettings ParseTls(const std::vector<std::string>& arguments) {
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  const vq::orb::OrbArguments split =
      vq::orb::SplitArguments(static_cast<int>(pointers.size()), pointers.data());
  if (!split.rest.empty()) throw std::invalid_argument("unknown option " + split.rest.front());
  return vq::orb::ResolveSettings(split, {}).tls;
}

// Written under another name and renamed, so that a waiting program finds it complete.
void WriteReadyFile(const std::string& path, const Arguments& arguments, CORBA::ORB_ptr orb,
                    const std::vector<std::unique_ptr<Server>>& servers) {
  const auto endpoints = vq::orb::EndpointsOf(servers.front()->Services().begin()->second.in());
  nlohmann::ordered_json ready = {{"pid", getpid()},
                                  {"port", endpoints.empty() ? 0 : endpoints.front().port},
                                  {"server", arguments.server},
                                  {"control", arguments.control}};
  for (std::size_t i = 0; i < servers.size(); ++i) {
    for (const auto& [service, object] : servers[i]->Services()) {
      const CORBA::String_var ior = orb->object_to_string(object);
      ready["iors"][arguments.kinds[i]][service] = ior.in();
    }
  }
  const std::string draft = path + ".new";
  {
    std::ofstream file(draft);
    file << ready.dump(2) << '\n';
    if (!file.flush()) throw std::runtime_error(path + ": cannot be written");
  }
  std::filesystem::rename(draft, path);
}

bool MayLogIn(const User& user) {
  const int result = user.result.value_or(1);
  return !user.locked && user.expiry != Expiry::kExpired && (result == 1 || result == 50);
}

// Prints what a person needs for a login.
void SayReady(const Arguments& arguments, const Site& site) {
  constexpr int kNamed = 8;
  std::string users;
  int count = 0;
  for (const auto& [name, user] : site.users) {
    if (MayLogIn(user) && ++count <= kNamed) users += (users.empty() ? "" : ", ") + name;
  }
  if (count == 0) users = "none";
  if (count > kNamed) users += " and " + std::to_string(count - kNamed) + " more";
  std::string kinds;
  for (const std::string& kind : arguments.kinds) kinds += (kinds.empty() ? "" : ", ") + kind;
  const std::string& naming = arguments.orb.naming;
  std::cout << "vq_simulator is ready: server " << arguments.server << " (" << kinds << "), "
            << (naming.empty() ? "no naming service" : "naming service " + naming)
            << "; users: " << users << "; passwords: " << arguments.site << std::endl;
}

void RemoveReadyFile(const Arguments& arguments) {
  std::error_code ignored;  // it need not be there
  if (!arguments.readyFile.empty()) std::filesystem::remove(arguments.readyFile, ignored);
}

// Serves until SIGTERM or SIGINT. SIGHUP reloads the site.
void ServeUntilTold(const sigset_t& signals, Control& control) {
  for (int signal = 0; sigwait(&signals, &signal) == 0;) {
    if (signal != SIGHUP) return;
    std::cerr << "vq_simulator: reload: " << control.Execute(R"({"command":"reload"})") << '\n';
  }
}

// A naming service that has just been started listens a moment before it answers.
std::unique_ptr<Naming> Connect(CORBA::ORB_ptr orb, bool justStarted) {
  constexpr std::chrono::seconds kPatience{10};
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    try {
      return std::make_unique<Naming>(orb);
    } catch (const CORBA::SystemException&) {
      if (!justStarted || std::chrono::steady_clock::now() > end) throw;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
}

std::string SampleSite() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  return (program.parent_path() / VQ_SAMPLE_SITE).lexically_normal();
}

int Run(const Arguments& arguments, const sigset_t& signals) {
  PrepareCredentials();
  World world;
  world.Load(ParseSiteFile(arguments.site), arguments.site);
  if (!arguments.log.empty()) world.log.Open(arguments.log);
  RemoveReadyFile(arguments);  // one that a dead process left

  const std::unique_ptr<vq::orb::ServerOrb> started = vq::orb::StartServerOrb(arguments.orb);
  const CORBA::ORB_ptr orb = started->Orb();
  Callbacks callbacks(world);
  std::vector<std::unique_ptr<Server>> servers;
  for (const std::string& kind : arguments.kinds) {
    servers.push_back(
        std::make_unique<Server>(orb, arguments.orb, world, callbacks, arguments.server, kind));
  }
  started->Serve();
  std::unique_ptr<Naming> naming;
  int status = kDone;
  try {
    if (!arguments.orb.naming.empty()) {
      naming = Connect(orb, arguments.ownNaming);
      for (std::size_t i = 0; i < servers.size(); ++i) {
        naming->Register(arguments.server, arguments.kinds[i], servers[i]->Services());
      }
    }
    Control control(world, arguments.site);
    if (!arguments.control.empty()) control.Start(arguments.control);
    if (!arguments.readyFile.empty()) WriteReadyFile(arguments.readyFile, arguments, orb, servers);
    SayReady(arguments, *world.GetSite());
    ServeUntilTold(signals, control);
  } catch (const CORBA::Exception& exception) {
    std::cerr << "vq_simulator: the naming service at " << arguments.orb.naming
              << " does not answer: " << exception._name() << '\n';
    status = kNoNaming;
  } catch (const std::exception& exception) {
    std::cerr << "vq_simulator: " << exception.what() << '\n';
    status = kNoFile;
  }
  world.Stop();
  if (naming) naming->Unregister();
  RemoveReadyFile(arguments);
  started->Stop();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  std::vector<std::string> texts(argv + 1, argv + argc);
  arguments.orb.rest = Take("-ORB", texts);
  const std::vector<std::string> tls = Take("-SSL", texts);
  std::reverse(texts.begin(), texts.end());  // as CLI11 takes them

  const std::unique_ptr<CLI::App> program = MakeProgram(arguments);
  try {
    program->parse(texts);
  } catch (const CLI::ParseError& error) {
    return program->exit(error) == 0 ? kDone : kBadUse;
  }
  if (arguments.kinds.empty()) arguments.kinds = {"GSR"};
  if (std::set(arguments.kinds.begin(), arguments.kinds.end()).size() < arguments.kinds.size()) {
    std::cerr << "vq_simulator: a --kind is given twice\n";
    return kBadUse;
  }

  // Every thread has these blocked; the main thread waits for them.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  try {
    arguments.orb.tls = ParseTls(tls);
    std::unique_ptr<NamingProcess> naming;
    if (arguments.ownNaming) {
      naming = std::make_unique<NamingProcess>();
      arguments.orb.naming = naming->Reference();
    }
    if (arguments.site.empty()) arguments.site = SampleSite();
    return Run(arguments, signals);
  } catch (const std::invalid_argument& error) {
    // An unusable site (SiteError), a malformed endpoint, or unusable TLS settings.
    std::cerr << "vq_simulator: " << error.what() << '\n';
    return kBadUse;
  } catch (const CORBA::Exception& exception) {
    std::cerr << "vq_simulator: the ORB does not start on " << arguments.orb.endpoint << ": "
              << exception._name() << '\n';
    return kNoOrb;
  } catch (const std::exception& error) {
    std::cerr << "vq_simulator: " << error.what() << '\n';
    // Without its reference, a naming service of its own has not started.
    return arguments.ownNaming && arguments.orb.naming.empty() ? kNoNaming : kNoFile;
  }
}
