// Logins and callbacks over TLS between processes, and every certificate that must not pass.

#include <tests/fixture/SessionFixture.h>

#include <support/orb/ORBCommon.h>
#include <support/orb/OrbProduct.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/session/GlobalFuncs.h>

#include "Certificates.h"

namespace vq::test {
namespace {

using Words = std::vector<std::string>;

class TlsTest : public SessionFixture {
 protected:
  void SetUp() override {
    SessionFixture::SetUp();
    m_directory.Write("root/config/vq.xml", "<domain/>");
  }

  // A server that has a TLS endpoint beside the one in clear.
  Server& StartTlsServer(const Identity& identity, bool verifyPeer = false,
                         Server::Place place = Server::kDirect) {
    const std::string file = m_directory.Write(
        "server-" + std::to_string(m_servers.size()) + ".pem", identity.certificate + identity.key);
    m_servers.push_back(std::make_unique<Server>(
        m_directory, m_naming->Reference(), BaseSite(), Words{"GSR"}, "central", 0, place,
        Words{"-SSLCACertificate", m_caFile, "-SSLCertificate", file, "-SSLVerifyPeer",
              verifyPeer ? "1" : "0", "-SSLVerifyHost", "0"}));
    return *m_servers.back();
  }

  // Logs in to a server with that certificate, and out again.
  void ExpectLogin(const Identity& identity, int code, Server::Place place = Server::kDirect) {
    Server& server = StartTlsServer(identity, false, place);
    m_log.Clear();
    EXPECT_EQ(Login(), code) << m_log.Text();
    m_cause = GL_GetFailureCause();
    EXPECT_EQ(server.Calls().empty(), code != 1);  // Nothing went out in clear instead.
    GL_LogOut(true);
    server.Kill();
  }
  bool Logged(const std::string& text) const {
    return m_log.Text().find(text) != std::string::npos;
  }

  // The settings of a client with a certificate of its own.
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

TEST_F(TlsTest, EachBadCertificateIsRefusedWithItsReason) {
  const Authority other(m_directory, "other");
  const std::pair<Identity, std::string> rows[] = {
      {m_authority.Issue(), ""},  // It is good.
      {m_authority.Issue({.fromDays = -20, .toDays = -10}), "it has expired;"},
      {m_authority.Issue({.fromDays = 10, .toDays = 20}), "it is not yet valid;"},
      {m_authority.Issue({.names = "IP:192.0.2.1,DNS:other.site"}), "it is for another host;"},
      {m_authority.Issue({.names = ""}), "it is for another host;"},
      {other.Issue(), "its CA is unknown;"},
      {m_authority.SelfSigned(), "it is self-signed;"}};
  m_orbArguments = {"-SSLCACertificate", m_caFile, "-ORBCallTimeout", "5000"};
  for (const auto& [identity, reason] : rows) {
    SCOPED_TRACE(reason);
    ExpectLogin(identity, reason.empty() ? 1 : 54);
    EXPECT_EQ(m_log.Has(1, "The certificate of 127.0.0.1:"), !reason.empty());
    EXPECT_EQ(Logged(" is refused: " + reason), !reason.empty()) << m_log.Text();
  }
  // A reference may name its host; then the name counts, whatever its address is.
  ExpectLogin(m_authority.Issue({.names = "DNS:localhost"}), 1, Server::kByName);
  ExpectLogin(m_authority.Issue({.names = "DNS:other.site,IP:127.0.0.1"}), 54, Server::kByName);
  EXPECT_TRUE(m_log.Has(1, "The certificate of localhost:")) << m_log.Text();
}

// A login fails for the same reason in the log and in what the caller can ask for.
TEST_F(TlsTest, SettingsNarrowWhichCertificatesPass) {
  const Identity good = m_authority.Issue({.names = "IP:127.0.0.1,DNS:a.example.org"});
  const Identity revoked = m_authority.Issue();
  const std::string noneRevoked = m_directory.Write("none.crl", m_authority.RevocationList());
  m_authority.Revoke(revoked);
  const std::string oneRevoked = m_directory.Write("one.crl", m_authority.RevocationList());
  const std::string others =
      m_directory.Write("others.crl", Authority(m_directory, "other").RevocationList());
  const std::tuple<const char*, std::string, Identity, std::string> rows[] = {
      {"-SSLServerNames", "b.example.org,*.site,10.1.1.1", good, "none of its names is among"},
      {"-SSLServerNames", "*.a.example.org", good, "none of its names is among"},
      {"-SSLServerNames", "*.site,*.example.org", good, ""},
      {"-SSLServerNames", "a.example.org", good, ""},
      {"-SSLServerNames", "127.0.0.1", good, ""},
      {"-SSLRevocationList", noneRevoked, revoked, ""},
      {"-SSLRevocationList", oneRevoked, revoked, "its CA has revoked it"},
      {"-SSLRevocationList", oneRevoked, good, ""},
      {"-SSLRevocationList", others, good, "has no list of its CA"}};
  for (const auto& [setting, value, identity, reason] : rows) {
    SCOPED_TRACE(value + ": " + reason);
    m_orbArguments = {"-SSLCACertificate", m_caFile, setting, value};
    ExpectLogin(identity, reason.empty() ? 1 : 54);
    EXPECT_EQ(m_cause.empty(), reason.empty()) << m_cause;
    EXPECT_NE(m_cause.find(reason), std::string::npos) << m_cause;
    EXPECT_TRUE(Logged(m_cause)) << m_log.Text();
  }
}

TEST_F(TlsTest, ChecksAreSwitchedOffByASettingThatIsLogged) {
  const std::tuple<const char*, CertificateOptions, const char*> rows[] = {
      {"-SSLVerifyHost", {.names = "DNS:other.site"}, "TLS certificates are not compared"},
      {"-SSLVerifyPeer", {.fromDays = -20, .toDays = -10}, "TLS certificates are not verified"}};
  for (const auto& [setting, certificate, line] : rows) {
    m_orbArguments = {"-SSLCACertificate", m_caFile, setting, "0"};
    ExpectLogin(m_authority.Issue(certificate), 1);
    EXPECT_TRUE(m_log.Has(1, line));
  }
}

TEST_F(TlsTest, AServerWithoutTlsIsNotCalledInClear) {
  Server& server = StartSession();
  EXPECT_EQ(ORBCommon<1>::Get()->CheckCertificateExpiration(100000), 0) << "there is none";
  GL_LogOut(true);
  server.ForgetCalls();
  m_orbArguments = {"-SSLCACertificate", m_caFile};
  EXPECT_EQ(Login(), 54);
  EXPECT_TRUE(server.Calls().empty());
  EXPECT_TRUE(
      Logged("127.0.0.1:" + std::to_string(server.Port()) + " is refused: it would be unencrypted"))
      << m_log.Text();
}

// Both ends show certificates, and the server calls back over a TLS connection of its own.
TEST_F(TlsTest, CallbacksGoOverTlsBothWays) {
  StartTlsServer(m_authority.Issue(), true);
  m_orbArguments = OwnCertificate({});
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_GUI), 1) << m_log.Text();
  std::string error;
  long roundTrip = -1;
  EXPECT_TRUE(TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, roundTrip, 2000))
      << error;
  EXPECT_TRUE(TroubleshootConnection::ORBInitAndTestCallback(false, "127.0.0.1", roundTrip, false))
      << m_log.Text();
  if (vq::orb::ProductName() == "omniORB") {
    EXPECT_TRUE(Logged("override endpoint 0: 'giop:ssl:127.0.0.1:"));
    EXPECT_FALSE(Logged("override endpoint 0: 'giop:tcp:"));
  }
  EXPECT_TRUE(TroubleshootConnection::ORBInitAndTestCallback(true, "", roundTrip, false))
      << m_log.Text();
  GL_LogOut(true);
  m_orbArguments = {"-SSLCACertificate", m_caFile};  // and none of its own
  EXPECT_EQ(Login(), 54);
  if (vq::orb::ProductName() == "omniORB") {
    EXPECT_NE(GL_GetFailureCause().find("certificate"), std::string::npos) << m_log.Text();
  }
}

TEST_F(TlsTest, WarnsBeforeTheOwnCertificateExpires) {
  StartTlsServer(m_authority.Issue());
  for (const long days : {59, 61, -1}) {
    m_orbArguments = OwnCertificate({.fromDays = -20, .toDays = days});
    EXPECT_EQ(Login(), 1) << days << m_log.Text();
    std::string message = "untouched";
    EXPECT_EQ(GL_CheckSSLCertificateExpiration(message), 1);
    EXPECT_EQ(message, days > 60 ? "" : "SSL Certificate is going to expire in less than 60days.")
        << days;
    GL_LogOut(true);
  }
}

// Settings that cannot work keep the ORB down, and say which file of which setting it is.
TEST_F(TlsTest, UnusableFilesKeepTheOrbDown) {
  const Identity own = m_authority.Issue();
  const std::string good = m_directory.Write("good.pem", own.certificate + own.key);
  const std::string wrongKey = m_directory.Write("wrong.key", m_authority.Issue().key);
  const std::string garbage = m_directory.Write("garbage.pem", "no certificate");
  const std::pair<Words, const char*> rows[] = {
      {{"-SSLCACertificate", "/no/such.pem"}, "'/no/such.pem' of -SSLCACertificate cannot be used"},
      {{"-SSLCACertificate", garbage}, "of -SSLCACertificate cannot be used"},
      {{"-SSLCertificate", garbage}, "of -SSLCertificate cannot be used"},
      {{"-SSLCertificate", good, "-SSLPrivateKey", wrongKey}, "of -SSLPrivateKey cannot be used"},
      {{"-SSLCertificate", m_caFile}, "(one without a pass phrase is needed)"},
      {{"-SSLPrivateKey", good}, "-SSLCertificate is not"},
      {{"-SSLCACertificate", m_caFile, "-SSLRevocationList", m_caFile},
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
    EXPECT_TRUE(Logged(text)) << text << m_log.Text();
  }
  m_orbArguments = {"-SSLCACertificate", m_caFile, "-SSLCertificate", good};
  ExpectLogin(m_authority.Issue(), 1);
}

}  // namespace
}  // namespace vq::test
