// Client and server in two networks with a firewall between them: the server cannot open a
// connection to the client, and calls it back over the client's own one.
//
// Each network is a namespace of the kernel's that ends with its process; nothing of the machine's
// own network is touched. Where namespaces are not allowed the test is skipped and says so.

#include <tests/fixture/SessionFixture.h>

#include <sched.h>

#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/session/GlobalFuncs.h>

namespace vq::test {
namespace {

constexpr const char* kClient = "10.77.0.1";
constexpr const char* kServer = "10.77.0.2";

bool Execute(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

class FirewallTest : public SessionFixture {
 protected:
  void SetUp() override { m_environment.Isolate(m_directory.Path()); }

  // Moves this process into a network of its own and makes another one, joined by a cable. False
  // when that is not allowed.
  bool MakeNetworks() {
    if (::unshare(CLONE_NEWNET) != 0) return false;
    m_network = ChildProcess::Start({"unshare", "--net", "sleep", "300"}, {});
    const std::string pid = std::to_string(m_network.Pid());
    // The program that holds the other network has left this one.
    const auto network = [](const std::string& process) {
      std::error_code ignored;
      return std::filesystem::read_symlink("/proc/" + process + "/ns/net", ignored);
    };
    const auto other = [&] { return network(pid) != network("self") && !network(pid).empty(); };
    return WaitUntil(other, std::chrono::seconds(5)) &&
           Execute("ip link add vqclient type veth peer name vqserver netns " + pid) &&
           Execute("ip address add " + std::string(kClient) + "/24 dev vqclient") &&
           Execute("ip link set vqclient up && ip link set lo up") &&
           OnServer("ip address add " + std::string(kServer) + "/24 dev vqserver") &&
           OnServer("ip link set vqserver up") && OnServer("ip link set lo up");
  }

  bool OnServer(const std::string& command) const {
    return Execute("nsenter --net --target " + std::to_string(m_network.Pid()) + " " + command);
  }

  ChildProcess StartOnServer(std::vector<std::string> command) const {
    const std::vector<std::string> enter{"nsenter", "--net", "--target",
                                         std::to_string(m_network.Pid())};
    command.insert(command.begin(), enter.begin(), enter.end());
    ChildProcess::Options options;
    options.environment["OMNIORB_CONFIG"] = "/dev/null";
    options.standardOutput = m_directory / "output";
    return ChildProcess::Start(command, options);
  }

  // Drops what opens a connection towards the client; connections that are open go on.
  bool RaiseFirewall() const {
    return OnServer("nft add table inet vq") &&
           OnServer("nft add chain inet vq out '{ type filter hook output priority 0 ; }'") &&
           OnServer("nft add rule inet vq out ip daddr " + std::string(kClient) +
                    " tcp flags '&' '(syn|ack)' == syn drop");
  }

  bool Try(bool biDir, const std::string& address) {
    long roundTrip = -1;
    return TroubleshootConnection::ORBInitAndTestCallback(biDir, address, roundTrip, false);
  }

  ChildProcess m_network;
};

TEST_F(FirewallTest, OnlyTheClientsOwnConnectionLeadsBack) {
  if (!MakeNetworks()) {
    GTEST_SKIP() << "network namespaces are not allowed here: no test with a firewall";
  }
  m_directory.Write("root/config/vq.xml", "<domain/>");
  std::filesystem::create_directory(m_directory / "naming");
  const std::string naming = "corbaloc:iiop:" + std::string(kServer) + ":2809/NameService";
  const std::string ready = m_directory / "ready";
  const ChildProcess names =
      StartOnServer({VQ_NAMING_SERVICE, kServer, "2809", m_directory / "naming"});
  ASSERT_TRUE(WaitUntil([&] { return OnServer("bash -c 'true </dev/tcp/10.77.0.2/2809'"); }));
  const ChildProcess server =
      StartOnServer({VQ_SIMULATOR, "--site", m_directory.Write("site.json", BaseSite().dump()),
                     "--server", "central", "--kind", "GSR", "--naming", naming, "--endpoint",
                     "iiop://" + std::string(kServer) + ":5000", "--ready-file", ready});
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(ready); }))
      << ReadFile(m_directory / "output");

  std::vector<std::string> words{"client", "-ORBInitRef", "NameService=" + naming};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  ASSERT_EQ(GL_Login("alice", "secret", "central", 600, m_message, CLIENT_VCM, E_GSR, 3,
                     arguments.data()),
            1)
      << m_message << m_log.Text();
  TroubleshootConnection::SetTimeout4TestCallback(1500);

  EXPECT_TRUE(Try(false, kClient)) << m_log.Text();
  EXPECT_TRUE(Try(false, ""));
  EXPECT_FALSE(Try(false, "127.0.0.1"));  // That is the server's own machine.
  EXPECT_TRUE(Try(true, kClient));

  if (!RaiseFirewall()) GTEST_SKIP() << "nft does not work here: no test with a firewall";
  m_log.Clear();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Try(false, kClient));
  const auto taken = std::chrono::steady_clock::now() - start;
  EXPECT_GE(taken, std::chrono::milliseconds(1400));  // Nobody answers, so the time runs out.
  EXPECT_LT(taken, std::chrono::seconds(4));
  EXPECT_TRUE(m_log.Has(1, "GSR failed to call me back - ")) << m_log.Text();
  EXPECT_TRUE(Try(true, kClient)) << m_log.Text();
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

}  // namespace
}  // namespace vq::test
