// The doctor: for each broken set-up the first thing that is wrong, and what it says to do.

#include "ClientFixture.h"

#include <csignal>
#include <functional>

#include <sys/socket.h>
#include <unistd.h>

#include <support/orb/ORBCommon.h>
#include <tests/connectivity/Certificates.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

// A port that takes connections and never says a word.
class SilentPort {
 public:
  SilentPort() {
    const sockaddr_in address = Loopback(0);
    bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    listen(m_socket, 10);
  }
  ~SilentPort() { close(m_socket); }
  SilentPort(const SilentPort&) = delete;
  SilentPort& operator=(const SilentPort&) = delete;
  int Number() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
  }

 private:
  int m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

// The text of a reference, one profile an address.
std::string Reference(const std::vector<std::pair<std::string, int>>& addresses) {
  const auto number = [](std::string& bytes, std::size_t value) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
    for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(value >> shift);
  };
  const auto text = [&](std::string& bytes, const std::string& value) {
    number(bytes, value.size());
    bytes += value;
  };
  std::string whole(1, '\0');  // the byte order
  text(whole, std::string("IDL:QCSCorbaUsersManager:1.0") + '\0');
  number(whole, addresses.size());
  for (const auto& [host, port] : addresses) {
    std::string profile("\0\1\0", 3);
    text(profile, host + '\0');
    profile.resize((profile.size() + 1) / 2 * 2);
    profile += static_cast<char>(port >> 8);
    profile += static_cast<char>(port);
    text(profile, "key");
    number(whole, 0);
    text(whole, profile);
  }
  std::string ior = "IOR:";
  for (const char byte : whole) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
    ior += digits;
  }
  return ior;
}

class DoctorTest : public ClientFixture {
 protected:
  // Puts a reference into the naming service under the server's name.
  void Register(const std::vector<std::pair<std::string, int>>& addresses) {
    m_server.reset();
    std::string program = "test", option = "-ORBInitRef";
    std::string reference = "NameService=" + m_naming.Reference();
    char* arguments[] = {program.data(), option.data(), reference.data()};
    ASSERT_TRUE(ORBCommon<1>::Get()->InitCorba4Client(3, arguments, "Test"));
    CosNaming::Name name(1);
    name.length(1);
    name[0].id = "central";
    name[0].kind = "GSR";
    CosNaming::NamingContext_ptr root = ORBCommon<1>::Get()->GetNamingRoot();
    try {
      CosNaming::NamingContext_var made = root->bind_new_context(name);
    } catch (const CosNaming::NamingContext::AlreadyBound&) {
    }
    name.length(2);
    name[1].id = "UsersManager";
    int count = 0;
    CORBA::ORB_var orb = CORBA::ORB_init(count, nullptr);
    CORBA::Object_var object = orb->string_to_object(Reference(addresses).c_str());
    root->rebind(name, object.in());
    ORBCommon<1>::Get()->DestroyOrb(true);
  }

  // A server with a TLS endpoint beside the one in clear.
  void StartTls(const Identity& identity, Server::Place place = Server::kDirect) {
    StartServer(BaseSite(),
                {"-SSLCACertificate", m_authority.File(), "-SSLCertificate",
                 m_directory.Write("server.pem", identity.certificate + identity.key),
                 "-SSLVerifyPeer", "0"},
                place);
  }

  const Authority m_authority{m_directory, "authority"};
};

TEST_F(DoctorTest, SaysWhatIsWrongAndWhatToDo) {
  const Authority other(m_directory, "other");
  const SilentPort silent;
  const std::string silentPort = std::to_string(silent.Number());
  const auto start = [this] { StartServer(); };
  const Words central{"-s", "central", "-u", "alice"};
  const auto naming = [](const std::string& address) {
    return Words{"-s", "central", "-u", "alice", "-n", address, "--call-timeout", "1000"};
  };
  const auto usual = [this](Words more = {}, const std::string& user = "alice") {
    return Connected(std::move(more), user);
  };
  const auto tls = [&] { return usual({"--ca", m_authority.File(), "--call-timeout", "3000"}); };
  const struct {
    const char* name;
    std::function<void()> prepare;
    Words arguments;
    int code;
    std::string finding, advice;
    std::string input = "secret\n";
  } rows[] = {
      {"no naming service is configured", start, central, 55, "naming service: No naming service",
       "vqclient config set naming HOST:PORT"},
      {"its host is unknown", start, naming("no.such.host.invalid:2809"), 55,
       "naming service: no.such.host.invalid port 2809 cannot be reached",
       "This host does not know the name 'no.such.host.invalid'"},
      {"it is down", start, naming("127.0.0.1:1"), 55, "naming service: 127.0.0.1 port 1",
       "Nobody listens there: start the naming service"},
      {"it is down, on IPv6", start, naming("[::1]:1"), 55, "naming service: ::1 port 1",
       "Nobody listens there: start the naming service"},
      {"it is silent", start, naming("127.0.0.1:" + silentPort), 55,
       "port " + silentPort + " does not answer", "takes connections, but gives no answer"},
      {"a setting is malformed", start, usual({"-ORBCallTimeout", "soon"}), 55,
       "settings: the value", "Correct it where it is set"},
      {"there is no such CA file", start, usual({"--ca", "/no/such.pem"}), 55,
       "settings: ", "Correct that setting"},
      {"the server is unknown", start, Connected({}, "alice", "nowhere"), 54,
       "knows no server 'nowhere' of kind GSR", "vqclient servers"},
      {"the server is dead", [&] { StartServer().Kill(); }, usual(), 54,
       "cannot be reached: Connection refused", "Nobody listens there: start the server"},
      {"the server is silent",
       [&] {
         Register({{"127.0.0.1", silent.Number()}});
       },
       usual({"--call-timeout", "1000"}), 54, "server: it does not answer",
       "takes connections, but gives no answer: the server hangs"},
      {"the server's host is unknown",
       [&] {
         Register({{"no.such.host.invalid", 1}});
       },
       usual(), 54, "no.such.host.invalid port 1 cannot be reached", "does not know the name"},
      {"the server is down, on IPv6",
       [&] {
         Register({{"::1", 1}});
       },
       usual(), 54, "::1 port 1 cannot be reached", "start the server"},
      {"a link-local address",
       [&] {
         Register({{"fe80::1", 1}});
       },
       usual(), 54, "fe80::1 port 1 is a link-local address", "publish another address"},
      {"only a later profile is reached",
       [&] {
         Register({{"127.0.0.1", 1}, {"127.0.0.1", silent.Number()}});
       },
       usual(), 54, "stands in a later profile", "the first profile of a reference alone"},
      {"the server offers no TLS", start, tls(), 54, "TLS is on here, and the server offers none",
       "Give the server a TLS endpoint"},
      {"the server hangs in TLS",
       [&] {
         StartTls(m_authority.Issue());
         m_server->Stop();
       },
       tls(), 54, "server: it does not answer", "The TLS handshake does not come to an end"},
      {"the CA is another one", [&] { StartTls(other.Issue()); }, tls(), 54,
       "server: it does not answer", "Give the file with the CA"},
      {"the certificate has expired",
       [&] { StartTls(m_authority.Issue({.fromDays = -20, .toDays = -10})); }, tls(), 54,
       "server: it does not answer", "Have the server's certificate renewed."},
      {"the certificate is for another host",
       [&] { StartTls(m_authority.Issue({.names = "DNS:other.site"})); }, tls(), 54,
       "server: it does not answer", "names the server's host"},
      {"wrong password", start, usual(), 1, "login: code 0", "Check user and password", "wrong\n"},
      {"no password", start, usual(), 4, "login: no user name or password", "--password-file FILE",
       ""},
      {"expired", start, usual({}, "expired"), 48, "login: code 48", "vqclient passwd"},
      {"locked", start, usual({}, "locked"), 49, "login: code 49", "administrator"},
      {"no callback works",
       [&] {
         json site = BaseSite();
         site["callback"] = {{"refuse", true}, {"message", "Not today."}};
         StartServer(site);
       },
       usual(), 8, "callbacks: the server reaches this client in no way", "bidirectional"},
      {"the domain cannot be written",
       [&] {
         StartServer();
         m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
       },
       usual(), 8, "callbacks: not tried, for the settings cannot be stored: /proc",
       "or set VQ_CONFIG_DOMAINS"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    row.prepare();
    Words arguments = row.arguments;
    arguments.insert(arguments.begin(), "doctor");
    const Outcome outcome = Run(arguments, row.input);
    EXPECT_EQ(outcome.code, row.code) << outcome.words;
    const std::size_t bad = outcome.output.find("[BAD]  ");
    ASSERT_NE(bad, std::string::npos) << outcome.output << outcome.words;
    EXPECT_THAT(outcome.output.substr(bad), HasSubstr(row.finding));
    EXPECT_THAT(outcome.output.substr(bad), HasSubstr(row.advice));
    EXPECT_EQ(outcome.output.find("[BAD]", bad + 1), std::string::npos) << outcome.output;
    if (m_server) m_server->Kill();
  }
}

TEST_F(DoctorTest, FindsNothingBadOnAHealthyHostAndNoConnectionThatIsNotThere) {
  StartTls(m_authority.Issue());
  for (const Words& more : {Words{}, Words{"--ca", m_authority.File(), "--bidir", "1"}}) {
    Words arguments = Connected({"doctor"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.words;
    EXPECT_THAT(outcome.output, Not(HasSubstr("[BAD]")));
    if (more.empty()) {
      EXPECT_THAT(outcome.output, HasSubstr("[good] callback over the client's own connection"));
    }
    EXPECT_THAT(outcome.output, Not(HasSubstr("\033["))) << "colours are for terminals";
  }
  StartServer(BaseSite(), {"--no-bidir"});
  const Outcome outcome = Run(Connected({"doctor"}));
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.output, HasSubstr("[note] callback over the client's own connection"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("[BAD]")));
}

TEST_F(DoctorTest, WritesWhatTheNextLoginNeedsOnlyAfterAYesAndOnlyWhereItCan) {
  StartServer();
  const Words login{"login", "-s", "central", "-u", "alice"};
  EXPECT_EQ(Run(Connected({"doctor", "--fix"}), "secret\nn\n").code, 0);
  EXPECT_EQ(Run(login).code, 55);
  const Outcome written = Run(Connected({"doctor", "--fix"}), "secret\ny\n");
  EXPECT_EQ(written.code, 0) << written.words;
  EXPECT_THAT(written.output, HasSubstr("Written;"));
  EXPECT_EQ(Run(login).code, 0);
  // What was written does not come into force: a stronger layer says otherwise.
  if (geteuid() == 0) {
    m_environment.Set("VQ_CONFIG_DOMAINS", std::nullopt);
    m_directory.Write(".config/vq/vq.xml",
                      "<domain><scope name=\"default\"><var name=\"-ORBListenEndpoints\">iiop://"
                      "</var></scope></domain>");
    const Outcome hidden = Run(Connected({"doctor", "--fix"}), "secret\ny\n");
    EXPECT_EQ(hidden.code, 1) << hidden.output;
    EXPECT_THAT(hidden.words, HasSubstr("-ORBListenEndpoints is still 'iiop://'"));
    EXPECT_THAT(hidden.output, Not(HasSubstr("Written;")));
  }
}

}  // namespace
}  // namespace vq::test
