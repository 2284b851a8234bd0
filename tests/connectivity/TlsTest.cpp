// Logins and callbacks over TLS between processes, and every certificate that must not pass.

#include <tests/fixture/SessionFixture.h>

#include <sys/stat.h>

#include <support/orb/ORBCommon.h>
#include <support/orb/OrbProduct.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>

#include <tests/connectivity/Certificates.h>

namespace vq::test {
namespace {

using Words = std::vector<std::string>;

struct TlsTest : SessionFixture {
  void SetUp() override {
    SessionFixture::SetUp();
    m_directory.Write("root/config/vq.xml", "<domain/>");
  }
  // A server that has a TLS endpoint beside the unencrypted one.
  Server& StartTlsServer(const Identity& identity, bool verifyPeer = false,
                         Server::Place place = Server::kDirect) {
    const std::string file = m_directory.Write(
        "server-" + std::to_string(m_servers.size()) + ".pem", identity.certificate + identity.key);
    return StartServer(
        {.place = place,
         .arguments = {"-SSLCACertificate", m_caFile, "-SSLCertificate", file, "-SSLVerifyPeer",
                       verifyPeer ? "1" : "0", "-SSLVerifyHost", "0"}});
  }
  // Logs in to a server with that certificate, and out again.
  void ExpectLogin(const Identity& identity, int code, Server::Place place = Server::kDirect) {
    Server& server = StartTlsServer(identity, false, place);
    m_log.Clear();
    EXPECT_EQ(Login(), code) << m_log.Text();
    m_cause = GL_GetFailureCause();
    EXPECT_EQ(server.Calls().empty(), code != 1) << "nothing goes unencrypted instead";
    GL_LogOut(true);
    server.Kill();
  }
  // The settings of a client that has a certificate.
  Words OwnCertificate(const CertificateOptions& options) {
    const Identity own = m_authority.Issue(options);
    return {"-SSLCACertificate", m_caFile,
            "-SSLCertificate",   m_directory.Write("own.pem", own.certificate),
            "-SSLPrivateKey",    m_directory.Write("own.key", own.key)};
  }

  const Authority m_authority{m_directory, "authority"};
  const std::string m_caFile = m_authority.File();
  std::string m_cause;  // of the last ExpectLogin
};

// A login fails for the same reason in the log and in what the caller can ask for.
TEST_F(TlsTest, RefusesEachBadCertificate) {
  const Authority other(m_directory, "other");
  const Identity good = m_authority.Issue({.names = "IP:127.0.0.1,DNS:a.example.org"});
  const Identity revoked = m_authority.Issue();
  const std::string noneRevoked = m_directory.Write("none.crl", m_authority.RevocationList());
  m_authority.Revoke(revoked);
  const std::string oneRevoked = m_directory.Write("one.crl", m_authority.RevocationList());
  const std::string others = m_directory.Write("others.crl", other.RevocationList());
  const std::tuple<Identity, Words, std::string> rows[] = {
      {good, {}, ""},
      {m_authority.Issue({.fromDays = -20, .toDays = -10}), {}, "it has expired;"},
      {m_authority.Issue({.fromDays = 10, .toDays = 20}), {}, "it is not yet valid;"},
      {m_authority.Issue({.names = "IP:192.0.2.1,DNS:other.site"}), {}, "it is for another host;"},
      {m_authority.Issue({.names = ""}), {}, "it is for another host;"},
      {other.Issue(), {}, "its CA is unknown;"},
      {m_authority.SelfSigned(), {}, "it is self-signed;"},
      {good, {"-SSLServerNames", "b.example.org,*.site,10.1.1.1"}, "none of its names is among"},
      {good, {"-SSLServerNames", "*.a.example.org"}, "none of its names is among"},
      {good, {"-SSLServerNames", "*.site,*.example.org"}, ""},
      {good, {"-SSLServerNames", "127.0.0.1"}, ""},
      {revoked, {"-SSLRevocationList", noneRevoked}, ""},
      {revoked, {"-SSLRevocationList", oneRevoked}, "its CA has revoked it"},
      {good, {"-SSLRevocationList", oneRevoked}, ""},
      {good, {"-SSLRevocationList", others}, "has no list of its CA"}};
  for (const auto& [identity, settings, reason] : rows) {
    SCOPED_TRACE(::testing::PrintToString(settings) + reason);
    m_orbArguments = {"-SSLCACertificate", m_caFile, "-ORBCallTimeout", "5000"};
    m_orbArguments.insert(m_orbArguments.end(), settings.begin(), settings.end());
    ExpectLogin(identity, reason.empty() ? 1 : 54);
    EXPECT_EQ(m_cause.empty(), reason.empty()) << m_cause;
    EXPECT_NE(m_cause.find(reason), std::string::npos) << m_cause;
    EXPECT_TRUE(m_log.Contains(m_cause)) << m_log.Text();
  }
  // A reference may name its host; then the name counts, whatever its address is.
  m_orbArguments = {"-SSLCACertificate", m_caFile};
  ExpectLogin(m_authority.Issue({.names = "DNS:localhost"}), 1, Server::kByName);
  ExpectLogin(m_authority.Issue({.names = "DNS:other.site,IP:127.0.0.1"}), 54, Server::kByName);
  EXPECT_TRUE(m_log.Has(1, "The certificate of localhost:")) << m_log.Text();
  m_orbArguments = {"-SSLCACertificate", m_caFile, "-SSLVerifyHost", "0"};
  ExpectLogin(m_authority.Issue({.names = "DNS:other.site"}), 1);
  EXPECT_TRUE(m_log.Has(1, "TLS certificates are not compared"));
  m_orbArguments = {"-SSLCACertificate", m_caFile, "-SSLVerifyPeer", "0"};
  ExpectLogin(m_authority.Issue({.fromDays = -20, .toDays = -10}), 1);
  EXPECT_TRUE(m_log.Has(1, "TLS certificates are not verified"));
  m_orbArguments = {};
  StartServer();
  EXPECT_EQ(Login(), 1);
  GL_LogOut(false);
  m_orbArguments = {"-SSLCACertificate", m_caFile};
  EXPECT_EQ(Login(), 55) << "the ORB that is up has no TLS";
  EXPECT_TRUE(GL_GetFailureCause().starts_with("-SSLCACertificate is '' in the ORB that is up"));
}

// Both peers present certificates, and the server calls back over a new TLS connection.
TEST_F(TlsTest, CallsBackOverTls) {
  Server& server = StartTlsServer(m_authority.Issue(), true);
  const bool isOmni = vq::orb::ProductName() == "omniORB";
  const int port = FreePort();  // for TLS as well, as there is no ssl_port
  m_orbArguments = OwnCertificate({});
  m_orbArguments.insert(m_orbArguments.end(),
                        {"-ORBListenEndpoints", "iiop://127.0.0.1:" + std::to_string(port)});
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_GUI), 1) << m_log.Text();
  std::string error;
  long roundTrip = -1;
  EXPECT_TRUE(Listens(port));
  EXPECT_TRUE(TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, roundTrip, 2000))
      << error;
  EXPECT_TRUE(TroubleshootConnection::ORBInitAndTestCallback(false, "127.0.0.1", roundTrip, false))
      << m_log.Text();
  EXPECT_FALSE(m_log.Contains("override endpoint 0: 'giop:tcp:"));
  EXPECT_TRUE(TroubleshootConnection::ORBInitAndTestCallback(true, "", roundTrip, false))
      << m_log.Text();
  // The ends of the trials' ORBs leave the session's checks in force.
  server.Kill();
  StartTlsServer(m_authority.SelfSigned());
  const CORBA::Object_var other =
      ORBCommon<1>::Get()->Bind("central", "GSR", "UsersManager", false);
  EXPECT_ANY_THROW(other->_non_existent());
  EXPECT_TRUE(m_log.Contains("it is self-signed;")) << m_log.Text();
  GL_LogOut(true);
  m_orbArguments = {"-SSLCACertificate", m_caFile};  // without a client certificate
  EXPECT_EQ(Login(), 54);
  EXPECT_TRUE(!isOmni || GL_GetFailureCause().find("certificate") != std::string::npos);
}

TEST_F(TlsTest, WarnsBeforeTheOwnCertificateExpires) {
  Server& server = StartTlsServer(m_authority.Issue());
  const std::tuple<long, nlohmann::json, const char*> rows[] = {
      {59, nullptr, "60"}, {61, nullptr, ""}, {-1, nullptr, "60"},
      {31, "30", ""},      {29, "30", "30"},  {29, "soon", ""}};
  for (const auto& [days, parameter, warned] : rows) {
    server.SetParameter("general", "WarningSSLExpirationDays", parameter);
    m_orbArguments = OwnCertificate({.fromDays = -20, .toDays = days});
    EXPECT_EQ(Login(), 1) << days << m_log.Text();
    EXPECT_EQ(GL_CheckSSLCertificateExpiration(m_message), 1);
    const std::string text = "SSL Certificate is going to expire in less than ";
    EXPECT_EQ(m_message, *warned == '\0' ? "" : text + warned + "days.") << days;
    GL_LogOut(true);
  }
}

// The ORB does not start with unusable settings, and the log names the file and the setting.
TEST_F(TlsTest, UnusableFilesKeepTheOrbDown) {
  const Identity own = m_authority.Issue();
  const std::string good = m_directory.Write("good.pem", own.certificate + own.key);
  const std::string wrongKey = m_directory.Write("wrong.key", m_authority.Issue().key);
  const std::string garbage = m_directory.Write("garbage.pem", "no certificate");
  const std::string fifo = m_directory / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const std::string binaryBehindList =
      m_directory.Write("odd.crl", m_authority.RevocationList() + "0\x82\x01");
  const std::pair<Words, const char*> rows[] = {
      {{"-SSLCACertificate", "/no/such.pem"}, "'/no/such.pem' of -SSLCACertificate cannot be used"},
      {{"-SSLCACertificate", garbage}, "of -SSLCACertificate cannot be used"},
      {{"-SSLCACertificate", fifo}, "it is no file that can be read"},
      {{"-SSLCertificate", garbage}, "of -SSLCertificate cannot be used"},
      {{"-SSLCertificate", good, "-SSLPrivateKey", wrongKey}, "of -SSLPrivateKey cannot be used"},
      {{"-SSLCertificate", m_caFile}, "(one without a pass phrase is needed)"},
      {{"-SSLPrivateKey", good}, "-SSLCertificate is not"},
      {{"-SSLCACertificate", m_caFile, "-SSLRevocationList", m_caFile},
       "of -SSLRevocationList cannot be used"},
      {{"-SSLCACertificate", m_caFile, "-SSLRevocationList", binaryBehindList},
       "of -SSLRevocationList cannot be used"},
      {{"-SSLCACertificate", m_caFile, "-SSLServerNames", "*.site", "-SSLVerifyPeer", "0"},
       "is set, and -SSLVerifyPeer is 0"},
      {{"-SSLEncryptLookups", "1"}, "and TLS is off"},
      {{"-SSLCACertificate", m_caFile, "-SSLEncryptLookups", "1"}, "-SSLEncryptLookups is 1"},
      {{"-ORBListenEndpoints", "iiop:///ssl_port=5001"}, "ssl_port, and -SSLCertificate is not"}};
  for (const auto& [arguments, text] : rows) {
    m_log.Clear();
    m_orbArguments = arguments;
    EXPECT_EQ(Login(), 55);
    EXPECT_TRUE(m_log.Contains(text)) << text << m_log.Text();
  }
}

}  // namespace
}  // namespace vq::test
