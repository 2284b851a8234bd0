// Callbacks between processes: the server calls the client over a new connection, over the client's
// connection, or not at all. A trial leaves nothing behind.

#include <tests/fixture/Product.h>
#include <tests/fixture/SessionFixture.h>

#include <atomic>
#include <list>
#include <set>

#include <support/configuration/ConfigAPI.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/connectivity/internal/DomainTrial.h>
#include <vq_client_common/connectivity/internal/TestCallbackI.h>

// A trial's server stays in memory where its threads do not end in time (EndsWhileNoThreadIsLeft).
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:omni::giopServer\n";
}

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;
using Troubleshoot = TroubleshootConnection;
namespace fs = std::filesystem;

// An address that is reserved for documentation: no host answers.
constexpr const char* kNowhere = "192.0.2.1";

// The resources of this process that a trial must release.
struct Traces {
  std::ptrdiff_t threads = std::distance(fs::directory_iterator("/proc/self/task"), {});
  std::set<std::string> sockets;  // "socket:[inode]"

  Traces() {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      const std::string target = fs::read_symlink(entry.path(), gone);
      if (target.starts_with("socket:")) sockets.insert(target);
    }
  }
  // Nothing beyond what was there before; an idle thread or a connection may have ended meanwhile.
  bool AreWithin(const Traces& before) const {
    return threads <= before.threads && std::ranges::includes(before.sockets, sockets);
  }
};

// A connection to a port of this process that is no server's.
class Intruder {
 public:
  Intruder(int port, std::string_view data) {
    const sockaddr_in address = Loopback(port);
    const timeval limit{5, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    EXPECT_EQ(::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::send(m_socket, data.data(), data.size(), 0), std::ssize(data));
  }
  ~Intruder() { ::close(m_socket); }
  Intruder(const Intruder&) = delete;
  Intruder& operator=(const Intruder&) = delete;

  bool WasClosed() const {
    char data = 0;
    ssize_t length = 1;
    while (length > 0) length = ::recv(m_socket, &data, 1, 0);
    return length == 0;
  }

 private:
  const int m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

struct CallbackTrialTest : SessionFixture {
  CallbackTrialTest() { Troubleshoot::SetTimeout4TestCallback(1000); }
  void SetUp() override {
    SessionFixture::SetUp();
    m_directory.Write("root/config/vq.xml", "<domain/>");
  }
  int LogIn(const std::vector<std::string>& arguments, CLIENT_ID client = CLIENT_CLI) {
    m_orbArguments = arguments;
    return Login("alice", "secret", "central", client);
  }
  // A client that listens on a port, which is returned.
  int ListenAndLogIn(const std::string& published = "", const std::vector<std::string>& more = {}) {
    const int port = FreePort();
    std::vector<std::string> arguments{"-ORBListenEndpoints",
                                       "iiop://127.0.0.1:" + std::to_string(port) + published};
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_EQ(LogIn(arguments, CLIENT_GUI), 1) << m_log.Text();
    return port;
  }
  bool Try(bool biDir, const std::string& address, bool isMask = false) {
    m_roundTrip = -1;
    return Troubleshoot::ORBInitAndTestCallback(biDir, address, m_roundTrip, isMask);
  }
  bool TrySession(int timeOut) {
    return Troubleshoot::TestCallback(ORBCommon<1>::Get(), m_error, m_roundTrip, timeOut);
  }
  static void ExpectNoTraceSince(const Traces& before) {
    EXPECT_TRUE(WaitUntil([&] { return Traces().AreWithin(before); }, std::chrono::seconds(10)));
    const auto domain = ConfigAPIFactoryXML::CreateInForce();
    EXPECT_TRUE(domain->Load() && domain->GetScopes().empty());
  }

  long m_roundTrip = -1;
  std::string m_error, m_host, m_port;
};

TEST_F(CallbackTrialTest, LeavesNoTrace) {
  // Whether over the client's connection, the address, whether it is a mask, and the outcome.
  const std::tuple<bool, std::string, bool, bool> trials[] = {
      {false, "", false, true},         {false, "127.0.0.1", false, true},
      {false, "127.", true, true},      {false, kNowhere, false, false},
      {true, kNowhere, false, true},    {true, "", false, true},
      {false, "no.such.", true, false}, {false, "127.0.0.1", false, true}};
  // A pure client, which does not listen, and one that does; each with and without bidirectional.
  for (const CLIENT_ID client : {CLIENT_VCM, CLIENT_GUI}) {
    for (const char* sessionBiDir : {"0", "1"}) {
      Server& server = StartServer();
      ASSERT_EQ(LogIn({"-BiDirPolicy", sessionBiDir, "-ORBCallTimeout", "5000"}, client), 1);
      const Traces before;
      for (const auto& [biDir, address, isMask, reached] : trials) {
        SCOPED_TRACE(std::to_string(client) + sessionBiDir + (biDir ? " bidirectional " : " ") +
                     address);
        m_log.Clear();
        EXPECT_EQ(Try(biDir, address, isMask), reached) << m_log.Text();
        EXPECT_EQ(m_roundTrip >= 0, reached);
        EXPECT_EQ(GL_ClientKeepAlive(), 1);
      }
      ExpectNoTraceSince(before);
      const std::vector<std::string> calls = server.Operations();
      for (const char* operation : {"CRB_RegisterCallback", "CRB_UnregisterCallbackById"}) {
        EXPECT_EQ(std::count(calls.begin(), calls.end(), operation), 7) << operation;
      }
      GL_LogOut(true);
      server.Kill();
    }
  }
}

// A server may use the first address alone, which must be one that the client's connection offers.
TEST_F(CallbackTrialTest, NamesTheClientsConnectionFirst) {
  if (ThisProduct().manyOrbs) GTEST_SKIP() << "a trial has a connection of its own";
  StartServer();
  const int port = ListenAndLogIn();
  const auto domain = ConfigAPIFactoryXML::CreateInForce();
  const vq::connectivity::TrialScope scope(*domain, true, kNowhere, false);
  const vq::connectivity::TrialOrb orb(scope);
  ASSERT_TRUE(orb.IsUp()) << m_log.Text();
  const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb.Get()->GetChildPoa()));
  EXPECT_TRUE(
      Troubleshoot::GetNetworkInterface4Server(servant->GetReference(), m_host, m_port, E_GSR));
  EXPECT_EQ(m_host, "127.0.0.1");
  EXPECT_EQ(m_port, std::to_string(port));
}

// A client that is killed during a trial cannot remove its scope.
TEST_F(CallbackTrialTest, SweepsScopesOfEndedProcesses) {
  const std::string alive = "\"Test" + std::to_string(::getppid()) + '"';
  const std::string ended = "\"Test4194305\"";  // above the highest process id
  StartSession();
  for (const bool configure : {false, true}) {
    m_directory.Write("root/config/vq.xml", "<domain><scope name=" + alive +
                                                "/><scope name=" + ended +
                                                "/><scope name=\"Test4194305b\"/></domain>");
    EXPECT_TRUE(configure ? Troubleshoot::ORBConfigure("127.0.0.1", false, false)
                          : Try(false, "127.0.0.1"));
    const std::string domain = m_directory.Read("root/config/vq.xml");
    EXPECT_THAT(domain, HasSubstr(alive));
    EXPECT_THAT(domain, HasSubstr("\"Test4194305b\""));
    EXPECT_THAT(domain, Not(HasSubstr(ended)));
  }
}

// More trials in a second than omniORB's limit of connections to one server.
TEST_F(CallbackTrialTest, TriesManyInARow) {
  StartServer();
  for (const bool biDir : {false, true}) {
    ASSERT_EQ(LogIn({"-BiDirPolicy", biDir ? "1" : "0", "-ORBCallTimeout", "5000"}), 1);
    for (int trial = 0; trial < 14; ++trial) {
      EXPECT_TRUE(Try(trial % 2 == 0 && !biDir, "")) << biDir << trial;
    }
    GL_LogOut(true);
  }
}

TEST_F(CallbackTrialTest, EndsWhileThePoaHoldsRequests) {
  StartServer();
  ASSERT_EQ(LogIn({"-BiDirPolicy", "1", "-ORBCallTimeout", "1000"}), 1);
  const PortableServer::POAManager_var manager =
      ORBCommon<1>::Get()->GetChildPoa()->the_POAManager();
  manager->hold_requests(false);
  EXPECT_FALSE(TrySession(5000));
  manager->activate();
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

TEST_F(CallbackTrialTest, ReachesAnAddressWithoutBidirectionalOnTheServer) {
  StartServer({.arguments = {"--no-bidir"}});
  ASSERT_EQ(Login(), 1);
  EXPECT_FALSE(Try(false, kNowhere));
  EXPECT_TRUE(Try(false, "127.0.0.1"));
  // Settings that cannot be saved are tried nevertheless.
  m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
  EXPECT_FALSE(Try(false, kNowhere));
  EXPECT_TRUE(Try(false, "127.0.0.1"));
  EXPECT_TRUE(m_log.Contains("'iiop:///hostname_in_ior=127.0.0.1' -BiDirPolicy '0'"));
}

TEST_F(CallbackTrialTest, ReportsWhyACallbackFails) {
  Server& server = StartSession();
  // The session has lost its connection, so that a trial opens one.
  server.SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "drop"}}});
  EXPECT_ANY_THROW(GL_ClientKeepAlive());
  const Traces before;
  const json claim = Return("CRB_TryCallback", 1);  // without calling
  const std::tuple<json, json, const char*> rows[] = {
      {{{"delayMs", 60000}}, json::array(), "The callback was not answered in time."},
      {{{"refuse", true}, {"delayMs", 0}, {"message", "Not today."}}, json::array(), "Not today."},
      {{{"refuse", false}}, claim, ""}};
  for (const auto& [callback, faults, reason] : rows) {
    server.Patch({{"callback", callback}});
    server.SetFaults(faults);
    m_log.Clear();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Try(false, "127.0.0.1"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(m_log.Has(1, std::string("GSR failed to call me back - ") + reason));
  }
  ExpectNoTraceSince(before);
  server.Kill();
  EXPECT_FALSE(TrySession(500));
  EXPECT_THAT(m_error, ::testing::MatchesRegex("Failed to send test callback object to GSR - "
                                               "(COMM_FAILURE|TRANSIENT) [(].+[)]"));
  EXPECT_EQ(m_roundTrip, -1);
  EXPECT_FALSE(Troubleshoot::TestCallback(nullptr, m_error, m_roundTrip, 500));
}

// The beginning of a call, a message that announces nearly 4 GiB, a fragment of no call, one that
// cancels a call, and a call whose target is a profile in place of a key.
constexpr std::string_view kHalfCall(
    "GIOP\1\2\3\0\x1C\0\0\0\5\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\2\0\0\0x\0\0\0\0\0\0\0", 40);
constexpr std::string_view kHuge("GIOP\1\2\1\0\xF4\xFF\xFF\xFF", 12);
constexpr std::string_view kFragment("GIOP\1\2\1\7\4\0\0\0\5\0\0\0", 16);
constexpr std::string_view kCancel("GIOP\1\2\1\2\4\0\0\0\5\0\0\0", 16);
constexpr std::string_view kToProfile(
    "GIOP\1\2\1\0\x24\0\0\0\5\0\0\0\3\0\0\0\1\0\0\0\0\0\0\0\x10\0\0\0"
    "\1\1\0\0\2\0\0\0h\0\1\0\0\0\0\0",
    48);

// Other programs at the client's port: unfinished messages, and those that omniORB cannot bear.
TEST_F(CallbackTrialTest, IsCalledBackDespiteIntruders) {
  StartServer();
  const int port = ListenAndLogIn();
  std::list<Intruder> intruders;
  for (int i = 0; i < 150; ++i) intruders.emplace_back(port, "GIOP");
  if (!ThisProduct().roomForAnnounced) {
    intruders.emplace_back(port, kHalfCall);
    for (const std::string_view message : {kHuge, kFragment, kCancel, kToProfile}) {
      EXPECT_TRUE(intruders.emplace_back(port, message).WasClosed()) << message.size();
    }
  }
  EXPECT_TRUE(TrySession(1000)) << m_error;
}

// The intruders occupy all threads, so the trial's connections do not end with the trial.
TEST_F(CallbackTrialTest, EndsWhileNoThreadIsLeft) {
  if (ThisProduct().manyOrbs) GTEST_SKIP() << "it has threads of its own";
  StartServer();
  const int port = ListenAndLogIn("", {"-ORBmaxServerThreadPoolSize", "2"});
  std::list<Intruder> intruders;
  {
    const auto domain = ConfigAPIFactoryXML::CreateInForce();
    const vq::connectivity::TrialScope scope(*domain, false, "127.0.0.1", false);
    const vq::connectivity::TrialOrb orb(scope);
    const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb.Get()->GetChildPoa()));
    Troubleshoot::GetNetworkInterface4Server(servant->GetReference(), m_host, m_port, E_GSR);
    const std::size_t before = Traces().sockets.size();
    for (const int at : {port, port, port, std::stoi(m_port), std::stoi(m_port)}) {
      intruders.emplace_back(at, "GIOP");
      EXPECT_TRUE(
          WaitUntil([&] { return Traces().sockets.size() == before + 2 * intruders.size(); }));
    }
  }
  intruders.clear();
  EXPECT_TRUE(Try(false, "127.0.0.1")) << m_log.Text();
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

// A thread that is in a function of the application, or gets no processor, ends late.
TEST_F(CallbackTrialTest, EndsAfterAllThreads) {
  if (ThisProduct().manyOrbs) GTEST_SKIP() << "it waits for its threads anyway";
  StartServer();
  const int port = ListenAndLogIn();
  TDiag::Instance()->SetMinimumDebugLevel(2);  // Others do not log, and so do not wait.
  std::atomic<bool> isBusy = false;
  const TDiag::SinkId sink = TDiag::Instance()->AddCallbackSink([&](const TDiagLine&) {
    isBusy = true;
    std::this_thread::sleep_for(std::chrono::seconds(3));
  });
  const Intruder intruder(port, kHuge);
  ASSERT_TRUE(WaitUntil([&] { return isBusy.load(); }));
  GL_LogOut(true);
  TDiag::Instance()->RemoveSink(sink);
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

// The client listens on one address and publishes another, which the server uses.
TEST_F(CallbackTrialTest, PublishesAnotherHostThanItListensOn) {
  StartServer();
  const int port = ListenAndLogIn("/hostname_in_ior=localhost");
  const ServantPtr<TestCallbackI> servant(new TestCallbackI(ORBCommon<1>::Get()->GetChildPoa()));
  const TestCallback_var kept = TestCallback::_narrow(servant->GetReference());
  EXPECT_TRUE(Troubleshoot::GetNetworkInterface4Server(kept.in(), m_host, m_port, E_GSR));
  EXPECT_EQ(m_host, "localhost");
  EXPECT_EQ(m_port, std::to_string(port));
  EXPECT_TRUE(TrySession(1000)) << m_error;
  kept->CRB_Ping();
  servant->Deactivate();
  EXPECT_THROW(kept->CRB_Ping(), CORBA::OBJECT_NOT_EXIST);
  EXPECT_FALSE(kept->_is_equivalent(servant->GetReference())) << "activated anew";
  // A reference that outlives its ORB has no address, and the question starts no other ORB.
  ORBCommon<1>::Get()->GetChildPoa()->destroy(true, true);  // as a client may
  GL_LogOut(true);
  EXPECT_FALSE(Troubleshoot::GetNetworkInterface4Server(kept.in(), m_host, m_port, E_GSR));
  EXPECT_TRUE(m_log.Has(1, "Invalid stub"));
  if (!ThisProduct().freesPort) return;
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

}  // namespace
}  // namespace vq::test
