// How client and server judge each other's version, from the reading of versions to a login that is
// refused.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace vq::test {
namespace {

struct Gate : LoginHandler {
  using LoginHandler::GetMinimumServerVersionAllowed;
  using LoginHandler::IsServerVersionPermitted;
};

struct VersionGateTest : SessionFixture {
  void Accept(const std::string& content) {
    m_directory.Write("root/min-accepted-servers.txt", content);
  }
};

TEST(ParseVersion, SplitsAtTheSecondPoint) {
  // A version, the texts of its parts and their numbers; what is left as it was, if it is refused.
  const std::pair<std::string, std::string> rows[] = {
      {"8.0.05", "8.0 05 8 5"},        {"9.1.18.250", "9.1 18.250 9.1 18.25"},
      {"8.0", "8.0 8.0 8 8"},          {"8", "old old -1 -1"},
      {"", "old old -1 -1"},           {"..", ".  0 0"},
      {"8.0.07beta", "8.0 07beta 8 7"}};
  for (const auto& [version, parts] : rows) {
    const bool valid = !parts.starts_with("old");
    LogCapture log;
    std::string major = "old", minor = "old";
    double majorNumber = -1, minorNumber = -1;
    EXPECT_EQ(LoginHandler::ParseVersion(version, major, minor), valid) << version;
    EXPECT_EQ(LoginHandler::ParseVersion(version, majorNumber, minorNumber), valid) << version;
    EXPECT_EQ(
        (std::ostringstream() << major << ' ' << minor << ' ' << majorNumber << ' ' << minorNumber)
            .str(),
        parts);
    EXPECT_EQ(log.Count(1, "Invalid value found for version: " + version), valid ? 0 : 2);
  }
}

TEST_F(VersionGateTest, TheClientVersionComesWithItsPatches) {
  // No patches mean that nothing is installed.
  const std::tuple<const char*, CLIENT_ID, int, const char*, const char*> rows[] = {
      {nullptr, CLIENT_CLI, 0, "0", "0"},
      {"", CLIENT_CLI, 1, "8.0.00", "8.0.00"},
      {"P1", CLIENT_GUI, 1, "8.0.00", "8.0.00::P1"},
      {"P1, P2,P3", CLIENT_RCI, 1, "8.0.00", "8.0.00::P1,P2,P3"},
      {"P1", CLIENT_QIMC, 20, "old", "old"},
      {"P1", CLIENT_UNKNOWN, 20, "old", "old"}};
  for (const auto& [patches, client, result, plainText, full] : rows) {
    if (patches != nullptr) InstallClient("8.0.00", patches);
    std::string plain = "old", withPatches = "old";
    ConnectionSettings::Get()->SetClientID(client);
    EXPECT_EQ(LoginHandler::GetGlobal()->GetClientVersion(plain, withPatches), result);
    EXPECT_EQ(plain, plainText) << client;
    EXPECT_EQ(withPatches, full) << client;
  }
}

TEST_F(VersionGateTest, TheFileOfAcceptedServersIsReadByTheseRules) {
  const Gate gate;
  std::string version;
  const auto expect = [&](const std::string& content, SERVER_ID server, const char* expected) {
    Accept(content);
    version = "old";
    EXPECT_EQ(gate.GetMinimumServerVersionAllowed(server, version), 1) << content;
    EXPECT_EQ(version, expected) << content;
  };
  const std::pair<const char*, const char*> rows[] = {{"", "old"},
                                                      {"0 7.0.00 \n", "7.0.00"},
                                                      {"E_GSR 8.0.00", "8.0.00"},
                                                      {"# 6.0.00 \n", "6.0.00"},
                                                      {"E_GAS 7.0.00 \n", "7.0.00"},
                                                      {"E_GSR 8.0.00 comment\n", "8.0.00"},
                                                      {"\t E_GSR\t \t8.0.00\n", "8.0.00\n"},
                                                      {"E_GSR 7.0.00\nE_GSR 8.0.00 \n", "8.0.00"}};
  for (const auto& [content, expected] : rows) expect(content, E_GSR, expected);
  expect("4 7.0.00 \n", E_CMS, "7.0.00");
  expect(" 04th 7.0.00 \n", E_CMS, "7.0.00");
  expect("E_FORECAST 7.0.00 \n", E_FORECAST, "7.0.00");
  expect("E_QIMS 7.0.00 \n", E_GAS, "old");
  for (const char* content : {"5 7.0.00 \n", "E_SLS 7.0.00 \n"}) expect(content, E_SLS, "old");
  // A line that is longer than the reader's 255 characters counts as two.
  const std::string longLine = std::string(250, 'x') + " 9.9.1 4\n";
  expect(longLine, E_GSR, "9.9.");
  expect(longLine, E_GAS, "4\n");
  m_log.Clear();
  expect("\nE_GSR\n \t\t \nE_GSR\t8.0.00\n", E_GSR, "8.0.00\n");
  EXPECT_EQ(m_log.Count(2, "Warning: line skipped - contains only 1 elements."), 3);
  EXPECT_TRUE(m_log.Has(4, "Minimum Server versions file exists."));
  EXPECT_TRUE(m_log.Has(5, "E_GSR\t8.0.00\n"));
}

TEST_F(VersionGateTest, AFileThatCannotBeReadIsToldApartFromNone) {
  const Gate gate;
  const std::string path = m_directory / "root/min-accepted-servers.txt";
  std::string version = "old";
  EXPECT_EQ(gate.GetMinimumServerVersionAllowed(E_GSR, version), 19);
  EXPECT_TRUE(m_log.Has(4, "Accepted: Couldn't open file " + path + ": No such file or directory"));
  std::filesystem::create_directory(path);  // opens, and fails to be read
  EXPECT_EQ(gate.GetMinimumServerVersionAllowed(E_GSR, version), 0);
  EXPECT_TRUE(m_log.Has(1, "Error occured while reading file " + path + ": Is a directory"));
  EXPECT_EQ(version, "old");
}

TEST_F(VersionGateTest, AServerIsPermittedWithAnEqualMajorVersionAndEnoughMinor) {
  const auto permits = [](std::string client, std::string server) {
    return Gate().IsServerVersionPermitted(client, E_GSR, server);
  };
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"8.0.00", "8.0.05", true},  {"8.0.00", "8.0.00", true},  {"8.0.01", "8.0.00", false},
      {"8.0.00", "9.0.00", false}, {"8.0.00", "7.0.09", false}, {"8.0", "8.0", true},
      {"8.0", "8.0.07", false},    {"8.0.00", "8", true},       {"8", "7.0.00", true},
      {"", "7.0.00", true},        {"8.0.00", "", true}};
  for (const auto& [client, server, permitted] : rows) {
    EXPECT_EQ(permits(client, server), permitted) << client << ' ' << server;
  }
  const std::tuple<const char*, const char*, bool> withFile[] = {
      {"E_GSR 7.0.02\n", "7.0.02", true},  {"E_GSR 7.0.02\n", "7.0.01", false},
      {"E_GSR 7.0.02\n", "8.0.00", false}, {"E_GSR nonsense\n", "1.0.00", true},
      {"1 7.0.00\n", "8.0.00", true},      {"E_GSR 7.0.02\n", "", true}};
  for (const auto& [file, server, permitted] : withFile) {
    Accept(file);
    EXPECT_EQ(permits("8.0.00", server), permitted) << file << ' ' << server;
  }
}

TEST_F(VersionGateTest, ALoginEndsOrGoesOnAsTheTwoVersionsSay) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  const std::string old =
      "This error may be caused by any of the following:\n - Server 'central' has incorrect or old "
      "version.\n - Server 'central' went down during login process.\t";
  // The server's kind stands where the client's name belongs, and one "%s" is left over.
  const std::string byServer =
      "Connection refused by VELTRA-M/VQ Server: 'central'.\nVersion 8.0.00 of VELTRA-M/VQ Server "
      "is not compatible with a 9.0.01 of version %s.";
  const std::string byClient =
      "Version 8.0.00 of VELTRA-M/VQ CLI is not compatible with a VELTRA-M/VQ Server of version "
      "9.0.00.";
  const std::string kWithout = "Version Verification failed with return code: ";
  const std::tuple<const char*, int, std::string, int, std::string> rows[] = {
      {R"({"result": 56, "server": "9.0.01"})", 0, byServer, 1, byServer},
      {R"({"result": 1, "server": "9.0.00"})", 0, byClient, 1, byClient},
      {R"({"missing": true})", 0, old, 1,
       "CORBA::Exception was caught during versions verification (BAD_OP"},
      {R"({"result": 1, "server": "8.0.05"})", 1, "", 4, "server version is allowed by client"},
      {R"({"result": 1, "server": "0"})", 1, "", 2, kWithout + "1"},
      {R"({"result": 1, "server": ""})", 1, "", 2, "Continue with login process..."},
      {R"({"result": 7, "server": "9.0.00"})", 1, "", 2, kWithout + "7"}};
  for (const auto& [rule, code, message, level, line] : rows) {
    server.Patch({{"versions", {nlohmann::json::parse(rule)}}});
    server.ForgetCalls();
    m_log.Clear();
    EXPECT_EQ(Login(), code) << rule;
    EXPECT_EQ(m_message, message) << rule;
    EXPECT_TRUE(m_log.Has(level, line)) << rule << '\n' << m_log.Text();
    EXPECT_EQ(m_log.Has(5, "Server Version: "), message != byServer && message != old) << rule;
    EXPECT_EQ(server.LastCall("CRB_Register").is_null(), code == 0) << rule;
    EXPECT_EQ(m_log.Text().find("). Probably old Server version, verification is ignored\n") !=
                  std::string::npos,
              message == old);
    GL_LogOut(false);
  }
}

}  // namespace
}  // namespace vq::test
