// What the library adds to its remote calls: each session call beside the bare sequence of stub
// calls that it makes, against one server process.
//
// The cold login is the exception: there whole processes take turns, `vqclient login` and a program
// that makes the same calls through the stubs and loads the same libraries.
//
// Both sides use the same references and the same connection and take turns call by call, so that
// whatever the machine does meanwhile hits both. The answer to the challenge and the password's
// checksum belong to a login, so both sides compute them. The server writes no log.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <benchmarks/SpawnedProgram.h>
#include <support/security/ChallengeResponse.h>
#include <tests/fixture/ChildProcess.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/Server.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

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

  // The remote calls of one login and what has to be computed between them.
  int LoginByStubs() const {
    CORBA::String_var encode;
    CORBA::String_var mode;
    CORBA::String_var version;
    CORBA::String_var first;
    CORBA::String_var second;
    configuration->CRB_GetSystemParameterValue("general", "PasswordEncode", encode.out(), "");
    configuration->CRB_GetSystemParameterValue("general", "I18N", mode.out(), "");
    users->CRB_VerifyClientServerVersion("8.0.05", version.out());
    users->CRB_AquireChallenge(first.out(), second.out());
    std::string checksum;
    std::string response;
    ChkSum("secret", checksum);
    MakeChallengeResponse(first.in(), second.in(), checksum.substr(0, 8), response);
    QCSCorbaLMInfoSeq_var messages;
    CORBA::String_var message;
    CORBA::String_var userId;
    CORBA::String_var dbUser;
    return users->CRB_Register("alice", response.c_str(), "host", "account", "vq_cli", "8.0.05",
                               messages.out(), kShort, message.out(), userId.out(), dbUser.out());
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

template <class Call>
double Seconds(Call call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double>& values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

// Times the two in turn, and which of them goes first changes as well. The time is the library's;
// "ratio" is that of the medians.
template <class Library, class Stubs>
void Compare(benchmark::State& state, Library library, Stubs stubs) {
  std::vector<double> ours;
  std::vector<double> theirs;
  for (auto _ : state) {
    const bool first = ours.size() % 2 == 0;
    if (first) theirs.push_back(Seconds(stubs));
    ours.push_back(Seconds(library));
    if (!first) theirs.push_back(Seconds(stubs));
    state.SetIterationTime(ours.back());
  }
  state.counters["peer_s"] = Median(theirs);
  state.counters["ratio"] = Median(ours) / Median(theirs);
}

void Parameter(benchmark::State& state) {
  Require(world->Login(kLong) == 1, "no login");
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  std::string value;
  Compare(
      state,
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
  Compare(
      state, [] { benchmark::DoNotOptimize(GL_ClientKeepAlive()); },
      [&] { benchmark::DoNotOptimize(world->users->CRB_ClientKeepAlive(userId.c_str())); });
}
BENCHMARK(KeepAlive)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void ColdLogin(benchmark::State& state) {
  world->ColdLogin();  // the first run of each brings the files into memory
  world->ColdLoginByStubs();
  Compare(
      state, [] { world->ColdLogin(); }, [] { world->ColdLoginByStubs(); });
}
BENCHMARK(ColdLogin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);

// Last, when the file that tells the client's version has not just been written: from then on it
// is looked at and not read.
void Login(benchmark::State& state) {
  Compare(
      state, [] { Require(world->Login(kShort) == 1, "a login fails"); },
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
