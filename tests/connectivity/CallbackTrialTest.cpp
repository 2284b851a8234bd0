// Callbacks between processes: the server calls the client over a connection of its own, over the
// client's connection, or not at all; and what a trial leaves behind, which is nothing.

#include <tests/fixture/SessionFixture.h>

#include <gmock/gmock.h>

#include <support/configuration/ConfigAPI.h>
#include <support/foundations/Locations.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/connectivity/TestCallbackI.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/connectivity/internal/DomainTrial.h>
#include <vq_client_common/session/GlobalFuncs.h>

#include <tests/fixture/Product.h>

#include "ProcessTraces.h"

namespace vq::test {
namespace {

using Troubleshoot = TroubleshootConnection;
using nlohmann::json;

// An address of a network that documents reserve for examples: nobody answers.
constexpr const char* kNowhere = "192.0.2.1";

class CallbackTrialTest : public SessionFixture {
 protected:
  CallbackTrialTest() { Troubleshoot::SetTimeout4TestCallback(1000); }
  void SetUp() override {
    SessionFixture::SetUp();
    m_directory.Write("root/config/vq.xml", "<domain/>");
  }
  bool Try(bool biDir, const std::string& address, bool isMask = false) {
    m_roundTrip = -1;
    return Troubleshoot::ORBInitAndTestCallback(biDir, address, m_roundTrip, isMask);
  }
  bool TrySession(int timeOut) {
    m_roundTrip = -1;
    return Troubleshoot::TestCallback(ORBCommon<1>::Get(), m_error, m_roundTrip, timeOut);
  }
  void ExpectNoTraceSince(const ProcessTraces& before) const {
    EXPECT_TRUE(
        WaitUntil([&] { return ProcessTraces::Now().AreWithin(before); }, std::chrono::seconds(10)))
        << before.Text() << "\nnow " << ProcessTraces::Now().Text();
    const auto domain = ConfigAPIFactoryXML::Create(GetConfigDomainsDir(), GetConfigDomainName());
    EXPECT_TRUE(domain->Load());
    EXPECT_TRUE(domain->GetScopes().empty());
  }

  long m_roundTrip = -1;
  std::string m_error;
};

TEST_F(CallbackTrialTest, ATrialTellsWhatWorksAndLeavesNoTrace) {
  // Whether over the client's connection, the address, whether it is a mask, and the outcome.
  const std::tuple<bool, std::string, bool, bool> trials[] = {
      {false, "", false, true},         {false, "127.0.0.1", false, true},
      {false, "127.", true, true},      {false, kNowhere, false, false},
      {true, kNowhere, false, true},    {true, "", false, true},
      {false, "no.such.", true, false}, {false, "127.0.0.1", false, true}};
  // A pure client, which does not listen, and one that does; each with and without bidirectional.
  for (const CLIENT_ID client : {CLIENT_VCM, CLIENT_GUI}) {
    for (const char* sessionBiDir : {"0", "1"}) {
      m_orbArguments = {"-BiDirPolicy", sessionBiDir, "-ORBCallTimeout", "5000"};
      Server& server = StartServer();
      ASSERT_EQ(Login("alice", "secret", "central", client), 1) << m_log.Text();
      const ProcessTraces before = ProcessTraces::Now();
      for (const auto& [biDir, address, isMask, reached] : trials) {
        SCOPED_TRACE(std::string(client == CLIENT_VCM ? "pure " : "listening ") + sessionBiDir +
                     (biDir ? " bidirectional '" : " '") + address + "'");
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

// A server may go by the first address alone: it has to be one that the client's connection offers.
TEST_F(CallbackTrialTest, BidirectionalReferenceNamesTheClientsConnectionFirst) {
  if (ThisProduct().manyOrbs) GTEST_SKIP() << "a trial has a connection of its own";
  StartServer();
  m_orbArguments = {"-ORBListenEndpoints", "iiop://127.0.0.1:"};
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_GUI), 1) << m_log.Text();
  const std::set<int> offered = ProcessTraces::Now().ports;
  const auto domain = ConfigAPIFactoryXML::CreateInForce();
  const vq::connectivity::TrialScope scope(*domain, true, kNowhere, false);
  const vq::connectivity::TrialOrb orb(scope);
  ASSERT_TRUE(orb.IsUp()) << m_log.Text();
  const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb.Get()->GetChildPoa()));
  std::string host, port;
  EXPECT_TRUE(Troubleshoot::GetNetworkInterface4Server(servant->GetReference(), host, port, E_GSR));
  EXPECT_EQ(host, "127.0.0.1");
  EXPECT_TRUE(offered.contains(std::stoi(port))) << port;
}

// A client that is killed in the middle of a trial cannot take its scope away.
TEST_F(CallbackTrialTest, ScopesOfEndedProcessesAreSwept) {
  const std::string alive = "Test" + std::to_string(::getppid());
  const std::string ended = "Test4194305";  // above the highest process id
  StartSession();
  for (const bool configure : {false, true}) {
    m_directory.Write("root/config/vq.xml", "<domain><scope name=\"" + alive +
                                                "\"/><scope name=\"" + ended +
                                                "\"/><scope name=\"Test4194305b\"/></domain>");
    EXPECT_TRUE(configure ? Troubleshoot::ORBConfigure("127.0.0.1", false, false)
                          : Try(false, "127.0.0.1"));
    const std::string domain = ReadFile(m_directory / "root/config/vq.xml");
    EXPECT_THAT(domain, ::testing::HasSubstr('"' + alive + '"'));
    EXPECT_THAT(domain, ::testing::HasSubstr("\"Test4194305b\""));
    EXPECT_THAT(domain, ::testing::Not(::testing::HasSubstr('"' + ended + '"')));
  }
}

// More in a second than omniORB keeps connections to one server.
TEST_F(CallbackTrialTest, TrialsInARowDoNotWaitForEachOther) {
  StartServer();
  for (const char* sessionBiDir : {"0", "1"}) {
    m_orbArguments = {"-BiDirPolicy", sessionBiDir, "-ORBCallTimeout", "5000"};
    ASSERT_EQ(Login(), 1) << m_log.Text();
    for (int trial = 0; trial < 14; ++trial) {
      EXPECT_TRUE(Try(trial % 2 == 0 && *sessionBiDir == '0', "")) << sessionBiDir << trial;
    }
    GL_LogOut(true);
  }
}

TEST_F(CallbackTrialTest, WithoutBidirectionalOnTheServerOnlyAReachableAddressWorks) {
  StartServer(BaseSite(), {"GSR"}, {"--no-bidir"});
  ASSERT_EQ(Login(), 1);
  EXPECT_FALSE(Try(false, kNowhere));
  EXPECT_TRUE(Try(false, "127.0.0.1"));
  // Settings that nobody can save are tried all the same.
  m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
  EXPECT_FALSE(Try(false, kNowhere));
  EXPECT_TRUE(Try(false, "127.0.0.1"));
  EXPECT_TRUE(m_log.Has(4,
                        "The trial goes by -ORBListenEndpoints "
                        "'iiop:///hostname_in_ior=127.0.0.1' -BiDirPolicy '0'"))
      << m_log.Text();
  EXPECT_TRUE(m_log.Has(1, "The settings of the trial cannot be saved: ")) << m_log.Text();
}

TEST_F(CallbackTrialTest, ACallbackThatCannotWorkIsReportedWithinItsTime) {
  Server& server = StartSession();
  const ProcessTraces before = ProcessTraces::Now();
  const std::pair<json, const char*> rows[] = {
      {{{"delayMs", 60000}}, "The callback was not answered in time."},
      {{{"refuse", true}, {"delayMs", 0}, {"message", "Not today."}}, "Not today."}};
  for (const auto& [callback, reason] : rows) {
    server.Patch({{"callback", callback}});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Try(false, "127.0.0.1"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(m_log.Has(1, std::string("GSR failed to call me back - ") + reason))
        << m_log.Text();
  }
  ExpectNoTraceSince(before);
}

TEST_F(CallbackTrialTest, WhoSendsTheObjectIsToldWhyThatFails) {
  StartSession().Kill();
  EXPECT_FALSE(TrySession(500));
  EXPECT_THAT(m_error, ::testing::MatchesRegex("Failed to send test callback object to GSR - "
                                               "(COMM_FAILURE|TRANSIENT) [(].+[)]"));
  EXPECT_EQ(m_roundTrip, -1);
  EXPECT_FALSE(Troubleshoot::TestCallback(nullptr, m_error, m_roundTrip, 500));
}

// The client listens on one address and names another; the server goes by the name.
TEST_F(CallbackTrialTest, ThePublishedHostMayDifferFromTheOneListenedOn) {
  StartServer();
  m_orbArguments = {"-ORBListenEndpoints", "iiop://127.0.0.1/hostname_in_ior=localhost"};
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_GUI), 1);
  std::string host, port;
  CORBA::Object_var kept;
  {
    const ServantPtr<TestCallbackI> servant(new TestCallbackI(ORBCommon<1>::Get()->GetChildPoa()));
    kept = CORBA::Object::_duplicate(servant->GetReference());
    EXPECT_TRUE(Troubleshoot::GetNetworkInterface4Server(kept.in(), host, port, E_GSR));
  }
  EXPECT_EQ(host, "localhost");
  EXPECT_TRUE(ProcessTraces::Now().ports.contains(std::stoi(port))) << port;
  EXPECT_TRUE(TrySession(1000)) << m_error;
  // A reference that outlives its ORB leads nowhere, and asking starts no other ORB.
  GL_LogOut(true);
  EXPECT_FALSE(Troubleshoot::GetNetworkInterface4Server(kept.in(), host, port, E_GSR));
  EXPECT_TRUE(m_log.Has(1, "Invalid stub"));
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

}  // namespace
}  // namespace vq::test
