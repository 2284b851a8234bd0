// The doctor: for each broken set-up the first thing that is wrong, and what it says to do.

#include <unistd.h>

#include <support/orb/ORBCommon.h>
#include <tests/client/ClientFixture.h>
#include <tests/connectivity/Certificates.h>
#include <tests/fixture/Product.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

// A reference of a server that accepts TLS connections only.
constexpr const char* kTlsOnly =
    "IOR:010000001d00000049444c3a514353436f72626155736572734d616e616765723a312e3000000000"
    "010000000000000038000000010102000a0000003132372e302e302e310000000c00000055736572734d"
    "616e616765720100000014000000080000000100660006000100";

class DoctorTest : public ClientFixture {
 protected:
  // Puts a reference into the naming service under the server's name, and others under names of
  // their own.
  void Register(const std::string& addresses, int others = 0) {
    m_server.reset();
    std::string program = "test", option = "-ORBInitRef";
    std::string reference = "NameService=" + m_naming.Reference();
    char* arguments[] = {program.data(), option.data(), reference.data()};
    ASSERT_TRUE(ORBCommon<1>::Get()->InitCorba4Client(3, arguments, "Test"));
    CosNaming::NamingContext_ptr root = ORBCommon<1>::Get()->GetNamingRoot();
    int count = 0;
    CORBA::ORB_var orb = CORBA::ORB_init(count, nullptr);
    const std::string place =
        addresses.starts_with("IOR:") ? addresses : "corbaloc:" + addresses + "/key";
    CORBA::Object_var object = orb->string_to_object(place.c_str());
    CosNaming::Name name(2);
    name.length(1);
    for (int i = 0; i < others; ++i) {
      name[0].id = std::to_string(i).c_str();
      root->rebind(name, object.in());
    }
    name[0].id = "central";
    name[0].kind = "GSR";
    try {
      CosNaming::NamingContext_var made = root->bind_new_context(name);
    } catch (const CosNaming::NamingContext::AlreadyBound&) {
    }
    name.length(2);
    name[1].id = "UsersManager";
    root->rebind(name, object.in());
    ORBCommon<1>::Get()->DestroyOrb(true);
  }

  // A server with a TLS endpoint beside the unencrypted one.
  void StartTls(const Identity& identity) {
    StartServer({.arguments = {"-SSLCACertificate", m_authority.File(), "-SSLCertificate",
                               m_directory.Write("server.pem", identity.certificate + identity.key),
                               "-SSLVerifyPeer", "0"}});
  }

  const Authority m_authority{m_directory, "authority"};
};

TEST_F(DoctorTest, SaysWhatIsWrongAndWhatToDo) {
  const Authority other(m_directory, "other");
  NamingService silent(m_directory);  // takes connections, and never says a word
  silent.Stop();
  const std::string place = "127.0.0.1:" + std::to_string(silent.Port());
  const std::string toSilent = "doctor -s central -u alice --call-timeout 1000 -n " + place;
  const std::string silentText = "127.0.0.1 port " + std::to_string(silent.Port());
  const std::string tls = "doctor @alice --call-timeout 3000 --ca " + m_authority.File();
  const auto start = [this] { StartServer(); };
  const auto at = [this](const std::string& addresses) {
    return [this, addresses] { Register(addresses); };
  };
  const struct {
    const char* name;
    std::function<void()> prepare;
    std::string command;
    int code;
    std::string finding, advice;
    std::string input = "secret\n";
  } rows[] = {
      {"no naming service is configured", start, "doctor -s central -u alice", 55,
       "naming service: no naming service", "vqclient config set naming HOST:PORT"},
      {"its host is unknown", start, "doctor -s central -n no.such.host.invalid", 55,
       "naming service: the host no.such.host.invalid cannot be resolved",
       "This host cannot resolve the name 'no.such.host.invalid'"},
      {"it is down", start, "doctor -s central -n 127.0.0.1:1", 55,
       "naming service: connection refused at 127.0.0.1:1",
       "No program listens on that port: start the naming service"},
      {"it is down, on IPv6", start, "doctor -s central -n [::1]:1", 55,
       "naming service: connection refused at [::1]:1",
       "No program listens on that port: start the naming service"},
      {"it is silent", start, toSilent, 55, "naming service: no answer from",
       "accepts connections, but the call fails"},
      {"it is something else", start,
       "doctor @ -ORBInitRef NameService=corbaloc::" + At() + "/Other", 55,
       "refers to no existing object", "Correct --naming"},
      {"a setting is malformed", start, "doctor @ -ORBCallTimeout soon", 55, "settings: the value",
       "Correct it where it is set"},
      {"there is no such CA file", start, "doctor @ --ca /no/such.pem", 55,
       "settings: ", "Correct that setting"},
      {"the listen port is taken", start, "doctor @ --listen iiop://" + place, 55,
       "naming service: the ORB does not start",
       "and --listen. To store it: vqclient config set listen"},
      {"the server is unknown", start, "doctor -s nowhere -n " + At(), 54,
       "knows no server 'nowhere' of kind GSR", "vqclient servers"},
      {"the server is dead", [&] { StartServer().Kill(); }, "doctor @", 54,
       "address: connection refused at 127.0.0.1",
       "No program listens on that port: start the server"},
      {"no address of the server works", at(":1.2@127.0.0.1:1,:1.2@127.0.0.1:2"), "doctor @", 54,
       "connection refused at 127.0.0.1:1\n          connection refused at 127.0.0.1:2",
       "No program listens on that port: start the server"},
      {"TLS is on only at the server", at(kTlsOnly), "doctor @", 54,
       "address: the server accepts TLS connections only", "Enable TLS: --ca FILE"},
      {"the server is silent", at("iiop:" + place), "doctor @ --call-timeout 1000", 54,
       "server: no answer from", "accepts connections, but the call fails: the server hangs"},
      {"another server has its port", at("iiop:" + At()), "doctor @", 54,
       "does not know the object", "did not register after a restart"},
      {"the server's host is unknown", at(":no.such.host.invalid:1"), "doctor @", 54,
       "the host no.such.host.invalid cannot be resolved", "cannot resolve the name"},
      {"the server is down, on IPv6", at(":[::1]:1"), "doctor @", 54,
       "connection refused at [::1]:1", "start the server"},
      {"a link-local address of IPv6", at(":[fe80::1]:1"), "doctor @", 54,
       "fe80::1 port 1 is a link-local address", "publish another address"},
      {"the server offers no TLS", start, tls, 54,
       "TLS is enabled here, but the server has no TLS endpoint", "Give the server a TLS endpoint"},
      {"the server hangs in TLS",
       [&] {
         StartTls(m_authority.Issue());
         m_server->Stop();
       },
       tls, 54, "server: The TLS handshake with", "requires a client certificate"},
      {"the CA is another one", [&] { StartTls(other.Issue()); }, tls, 54,
       "server: The certificate of 127.0.0.1:", "file of --ca"},
      {"the certificate has expired",
       [&] { StartTls(m_authority.Issue({.fromDays = -20, .toDays = -10})); }, tls, 54,
       "server: The certificate of 127.0.0.1:", "Have it renewed."},
      {"the certificate is for another host",
       [&] { StartTls(m_authority.Issue({.names = "DNS:other.site"})); }, tls, 54,
       "server: The certificate of 127.0.0.1:", "names this host"},
      {"wrong password", start, "doctor @alice", 1, "login: code 0", "Check user and password",
       "wrong\n"},
      {"no password", start, "doctor @alice", 4, "login: Missing password", "--password-file FILE",
       ""},
      {"expired", start, "doctor @expired", 48, "login: code 48", "vqclient passwd"},
      {"locked", start, "doctor @locked", 49, "login: code 49", "administrator"},
      {"the versions differ",
       [&] {
         json site = BaseSite();
         site["server"]["version"] = "7.0.00";
         StartServer({.site = site});
       },
       "doctor @alice", 1, "this client refuses the version", "min-accepted-servers.txt"},
      {"no callback works",
       [&] {
         json site = BaseSite();
         site["callback"] = {{"refuse", true}, {"message", "Not today."}};
         StartServer({.site = site});
       },
       "doctor @alice", 8, "callbacks: the server cannot call this client back", "bidirectional"},
      {"the domain cannot be written",
       [&] {
         StartServer();
         m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
       },
       "doctor @alice", 8, "callbacks: not tried: settings cannot be stored: /proc",
       "or set VQ_CONFIG_DOMAINS"}};
  for (const auto& row : rows) {
    if (!ThisProduct().takesIpv6 && std::string_view(row.name).ends_with("IPv6")) continue;
    SCOPED_TRACE(row.name);
    row.prepare();
    const Outcome outcome = Run(row.command, row.input);
    EXPECT_EQ(outcome.code, row.code) << outcome.words;
    const std::size_t bad = outcome.output.find("[BAD]  ");
    ASSERT_NE(bad, std::string::npos) << outcome.output << outcome.words;
    EXPECT_THAT(outcome.output.substr(bad), HasSubstr(row.finding));
    EXPECT_THAT(outcome.output.substr(bad), HasSubstr(row.advice));
    EXPECT_EQ(outcome.output.find("[BAD]", bad + 1), std::string::npos);
    if (m_server) m_server->Kill();
  }
}

TEST_F(DoctorTest, FindsNothingBadOnAHealthyHostAndNoConnectionThatIsNotThere) {
  const bool hasTls = ThisProduct().mixesTls;
  hasTls ? StartTls(m_authority.Issue()) : static_cast<void>(StartServer());
  NamingService silent(m_directory);
  silent.Stop();
  const std::string two = " --call-timeout 2000 -ORBInitRef NameService=corbaloc::127.0.0.1:" +
                          std::to_string(silent.Port()) + ",:" + At() + "/NameService";
  for (const std::string& more : {std::string(), " --bidir 1 --ca " + m_authority.File(), two}) {
    if (!hasTls && !more.empty()) continue;
    const Outcome outcome = Run("doctor @alice" + more);
    EXPECT_EQ(outcome.code, 0) << outcome.words;
    EXPECT_THAT(outcome.output, Not(HasSubstr("[BAD]")));
    if (more.empty()) {
      EXPECT_THAT(outcome.output, HasSubstr("[good] callback over the client's connection"));
    }
    EXPECT_THAT(outcome.output, Not(HasSubstr("\033["))) << "colours are for terminals";
  }
  StartServer({.arguments = {"--no-bidir"}});
  const Outcome outcome = Run("doctor @alice");
  EXPECT_EQ(outcome.code, 0);
  if (ThisProduct().tellsConnection) {
    EXPECT_THAT(outcome.output, HasSubstr("[note] callback over the client's connection "
                                          "(bidirectional IIOP): the server called"));
  }
  EXPECT_THAT(outcome.output, Not(HasSubstr("[BAD]")));
}

// While TLS is on: a list, and one so long that an iterator has the rest.
TEST_F(DoctorTest, ServersAreListedByAnUnencryptedNamingService) {
  StartTls(m_authority.Issue());
  const std::string command = "servers -n " + At() + " --ca " + m_authority.File();
  for (const int others : {0, 600}) {
    if (others > 0) Register("iiop:127.0.0.1:1", others);
    const Outcome outcome = Run("--json " + command);
    EXPECT_EQ(outcome.code, 0) << outcome.words;
    const json servers = json::parse(outcome.output);
    ASSERT_FALSE(servers.empty());
    EXPECT_EQ(servers.back()["tls"], others == 0);
    EXPECT_EQ(servers.back()["alive"], others == 0) << "another one is not called unencrypted";
  }
  EXPECT_EQ(Run(command + " --encrypt-lookups 1").code, 55);
}

TEST_F(DoctorTest, WritesWhatTheNextLoginNeeds) {
  StartServer();
  const std::string login = "login -s central -u alice";
  EXPECT_EQ(Run(login).code, 55);
  const Outcome written = Run("doctor @alice --fix", "secret\ny\n");
  EXPECT_EQ(written.code, 0) << written.words;
  EXPECT_THAT(written.output, HasSubstr("Written."));
  EXPECT_EQ(Run(login).code, 0);
  const std::string endpoint = "iiop://:" + std::to_string(FreePort());
  const Outcome own = Run("doctor @alice --fix --listen " + endpoint, "secret\ny\n");
  EXPECT_THAT(own.output, HasSubstr("callback with the settings in effect: round trip"));
  EXPECT_THAT(Run("config show").output, HasSubstr(endpoint));
  const Outcome stored = Run("doctor -s central -u alice --fix", "secret\ny\n");
  EXPECT_THAT(stored.output, HasSubstr("Nothing needs to be written"));
  EXPECT_EQ(Run("config unset listen").code, 0);
  const std::string host = ThisProduct().takesIpv6 ? "[::]:" : ":";
  const std::string ofSite = "iiop://" + host + std::to_string(FreePort());
  EXPECT_EQ(Run("--site here config set listen " + ofSite).code, 0);
  const Outcome site = Run("--site here doctor @alice --fix", "secret\ny\n");
  EXPECT_THAT(site.output, HasSubstr("Written."));
  EXPECT_THAT(Run("config show").output, HasSubstr(ofSite));
  EXPECT_EQ(Run("config unset listen").code, 0);
  // What was written does not come into force: a stronger layer says otherwise.
  if (geteuid() == 0) {
    m_environment.Set("VQ_CONFIG_DOMAINS", std::nullopt);
    m_directory.Write(".config/vq/vq.xml",
                      "<domain><scope name=\"default\"><var name=\"-ORBListenEndpoints\">iiop://"
                      "</var></scope></domain>");
    const Outcome hidden = Run("doctor @alice --fix", "secret\ny\n");
    EXPECT_EQ(hidden.code, 1) << hidden.output;
    EXPECT_THAT(hidden.words, HasSubstr("-ORBListenEndpoints is still 'iiop://'"));
    EXPECT_THAT(hidden.output, Not(HasSubstr("Written.")));
  }
}

}  // namespace
}  // namespace vq::test
