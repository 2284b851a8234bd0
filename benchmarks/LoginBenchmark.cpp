// What the library adds to its remote calls: each session call beside the bare sequence of stub
// calls that it makes, against one server process.
//
// Both sides use the same references and the same connection and take turns call by call, so that
// other load on the host affects both. The response to the challenge and the password's checksum
// belong to a login, so both sides compute them. The server writes no log.
//
// In a cold login whole processes take turns: `vqclient login` and a program that makes the same
// calls through the stubs and loads the same libraries.

#include <filesystem>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include <benchmarks/Comparison.h>
#include <benchmarks/SpawnedProgram.h>
#include <benchmarks/StubCalls.h>
#include <tests/fixture/ChildProcess.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/Server.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace {

using vq::test::ChildProcess;

// Seconds. The many logins are soon forgotten by the server; the session of a single call is not.
constexpr unsigned kShort = 1;
constexpr unsigned kLong = 600;

void Require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

// A naming service, a server and a client that is logged in.
class World {
 public:
  World() : m_naming(m_directory) {
    m_environment.Isolate(m_directory.Path());
    std::filesystem::permissions(m_passwordFile, std::filesystem::perms::owner_read);
    m_directory.Write("root/installed-products.ini", "[NFT]\nversion = 8.0.05\n");
    const std::string ready = m_directory / "ready";
    const std::string site = m_directory.Write("site.json", vq::test::BaseSite().dump());
    m_server = ChildProcess::Start({VQ_SIMULATOR, "--site", site, "--server", "central", "--naming",
                                    m_naming.Reference(), "--ready-file", ready},
                                   {});
    Require(vq::test::WaitUntil([&] { return std::filesystem::exists(ready); }), "no server");
    Require(Login(kLong) == 1, "no login");
    Require(GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, E_GSR, true) == 1 &&
                GetCRBServant<VQCorbaSystemConfiguration>("SystemConfiguration", configuration,
                                                          E_GSR, true) == 1,
            "no references");
  }
  ~World() {
    GL_LogOut(true);
    exit_vqclient_common();
  }

  int Login(unsigned timeOut) {
    std::string initRef = "-ORBInitRef";
    std::string naming = "NameService=" + m_naming.Reference();
    char* arguments[] = {initRef.data(), naming.data(), nullptr};
    std::string message;
    return GL_Login("alice", "secret", "central", timeOut, message, CLIENT_CLI, E_GSR, 2,
                    arguments);
  }

  CORBA::Long LoginByStubs() const {
    CORBA::String_var userId;
    return vq::LoginByStubs(configuration, users, kShort, userId);
  }

  // The whole process of either login.
  void ColdLogin() const {
    vq::RunProgram({VQ_CLIENT, "login", "-s", "central", "-f", m_passwordFile, "-ORBInitRef",
                    "NameService=" + m_naming.Reference()},
                   {"VQ_HOME=" + (m_directory / "root"), "HOME=" + m_directory.Path()});
  }
  void ColdLoginByStubs() const {
    vq::RunProgram({VQ_STUB_LOGIN, "-ORBInitRef", "NameService=" + m_naming.Reference()});
  }

  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();  // these two are borrowed
  VQCorbaSystemConfiguration_ptr configuration = VQCorbaSystemConfiguration::_nil();

 private:
  vq::test::TemporaryDirectory m_directory;
  std::string m_passwordFile = m_directory.Write("password", "user=alice\npassword=secret\n");
  vq::test::Environment m_environment;
  vq::test::NamingService m_naming;
  ChildProcess m_server;
};

World* world = nullptr;

void Parameter(benchmark::State& state) {
  Require(world->Login(kLong) == 1, "no login");
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  std::string value;
  vq::CompareBy(
      CLOCK_MONOTONIC, state,
      [&] { Require(GetSystemParameter("Language", value, "general", E_GSR), "no parameter"); },
      [&] {
        CORBA::String_var text;
        world->configuration->CRB_GetSystemParameterValue("general", "Language", text.out(),
                                                          userId.c_str());
        value = text.in();
      });
}
BENCHMARK(Parameter)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void KeepAlive(benchmark::State& state) {
  Require(world->Login(kLong) == 1, "no login");
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  vq::CompareBy(
      CLOCK_MONOTONIC, state, [] { benchmark::DoNotOptimize(GL_ClientKeepAlive()); },
      [&] { benchmark::DoNotOptimize(world->users->CRB_ClientKeepAlive(userId.c_str())); });
}
BENCHMARK(KeepAlive)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void ColdLogin(benchmark::State& state) {
  world->ColdLogin();  // the first run of each brings the files into memory
  world->ColdLoginByStubs();
  vq::CompareBy(
      CLOCK_MONOTONIC, state, [] { world->ColdLogin(); }, [] { world->ColdLoginByStubs(); });
}
BENCHMARK(ColdLogin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);

// Last, when the file with the client's version is old enough: from then on it is read only when it
// changes.
void Login(benchmark::State& state) {
  vq::CompareBy(
      CLOCK_MONOTONIC, state, [] { Require(world->Login(kShort) == 1, "a login fails"); },
      [] { Require(world->LoginByStubs() == 1, "a login through stubs fails"); });
}
BENCHMARK(Login)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(1.0);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  World here;
  world = &here;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
