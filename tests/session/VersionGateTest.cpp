// The check of client and server versions, from parsing a version to a login that is refused.

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
  // The parts as texts and as numbers; the former values if the version is refused.
  const auto parts = [](const std::string& version) {
    std::string major = "old", minor = "old";
    double majorNumber = -1, minorNumber = -1;
    const bool valid = LoginHandler::ParseVersion(version, major, minor);
    EXPECT_EQ(LoginHandler::ParseVersion(version, majorNumber, minorNumber), valid) << version;
    EXPECT_EQ(valid, major != "old") << version;
    return (std::ostringstream() << major << ' ' << minor << ' ' << majorNumber << ' '
                                 << minorNumber)
        .str();
  };
  ExpectRows(parts, {"8.0.05 -> 8.0 05 8 5", "9.1.18.250 -> 9.1 18.250 9.1 18.25",
                     "8.0 -> 8.0 8.0 8 8", "8 -> old old -1 -1", " -> old old -1 -1",
                     ".. -> .  0 0", "8.0.07beta -> 8.0 07beta 8 7"});
}

TEST_F(VersionGateTest, ReadsTheClientVersionWithPatches) {
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

TEST_F(VersionGateTest, ReadsTheFileOfAcceptedServers) {
  const Gate gate;
  std::string version;
  const auto minimum = [&](std::string content) {  // the server's kind and the file
    const auto kind = static_cast<SERVER_ID>(std::stoi(Take(content, '|')));
    Accept(content);
    version = "old";
    EXPECT_EQ(gate.GetMinimumServerVersionAllowed(kind, version), 1) << content;
    return version;
  };
  // A line that is longer than the reader's 255 characters counts as two.
  const std::string longLine = std::string(250, 'x') + " 9.9.1 4\n";
  ExpectRows(minimum, {"0| -> old", "0|0 7.0.00 \n -> 7.0.00", "0|E_GSR 8.0.00 -> 8.0.00",
                       "0|# 6.0.00 \n -> 6.0.00", "0|E_GAS 7.0.00 \n -> 7.0.00",
                       "0|E_GSR 7.0.00\n\nE_GSR\n \t\t \n\t E_GSR\t \t8.0.00\n -> 8.0.00\n",
                       "4| 04th 7.0.00 comment\n -> 7.0.00", "4|E_CMS 7.0.00 \n -> 7.0.00",
                       "1|E_QIMS 7.0.00 \n -> old", "5|5 7.0.00 \nE_SLS 7.0.00 \n -> old",
                       "0|" + longLine + " -> 9.9.", "1|" + longLine + " -> 4\n"});

  const std::string path = m_directory / "root/min-accepted-servers.txt";
  std::filesystem::remove(path);
  version = "old";
  EXPECT_EQ(gate.GetMinimumServerVersionAllowed(E_GSR, version), 19);
  std::filesystem::create_directory(path);  // opens, and fails to be read
  EXPECT_EQ(gate.GetMinimumServerVersionAllowed(E_GSR, version), 0);
  EXPECT_EQ(version, "old");
}

TEST_F(VersionGateTest, PermitsAnEqualMajorAndEnoughMinor) {
  const auto permits = [](std::string client, std::string server) {
    return Gate().IsServerVersionPermitted(client, E_GSR, server);
  };
  const auto judged = [&](std::string server) {
    const std::string client = Take(server);
    return permits(client, server) ? "yes" : "no";
  };
  ExpectRows(judged, {"8.0.00 8.0.05 -> yes", "8.0.00 8.0.00 -> yes", "8.0.01 8.0.00 -> no",
                      "8.0.00 9.0.00 -> no", "8.0.00 7.0.09 -> no", "8.0 8.0.07 -> no",
                      "8.0.00 8 -> yes", "8 7.0.00 -> yes", "8.0.00  -> yes"});
  Accept("E_GSR 7.0.02\n");
  EXPECT_TRUE(permits("8.0.00", "7.0.02") && permits("8.0.00", ""));
  EXPECT_FALSE(permits("8.0.00", "7.0.01") || permits("8.0.00", "8.0.00"));
  Accept("E_GSR nonsense\n");
  EXPECT_TRUE(permits("8.0.00", "1.0.00"));
}

TEST_F(VersionGateTest, RefusesOrAdmitsALogin) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  const std::string old =
      "This error may be caused by any of the following:\n - Server 'central' has incorrect or old "
      "version.\n - Server 'central' went down during login process.\t";
  // The server kind is in place of the client's name, and one "%s" is left.
  const std::string byServer =
      "Connection refused by VELTRA-M/VQ Server: 'central'.\nVersion 8.0.00 of VELTRA-M/VQ Server "
      "is not compatible with a 9.0.01 of version %s.";
  const std::string byClient =
      "Version 8.0.00 of VELTRA-M/VQ CLI is not compatible with a VELTRA-M/VQ Server of version "
      "9.0.00.";
  const std::tuple<const char*, int, std::string> rows[] = {
      {R"({"result": 56, "server": "9.0.01"})", 0, byServer},
      {R"({"result": 1, "server": "9.0.00"})", 0, byClient},
      {R"({"missing": true})", 0, old},
      {R"({"result": 1, "server": "8.0.05"})", 1, ""},
      {R"({"result": 1, "server": "0"})", 1, ""},
      {R"({"result": 1, "server": ""})", 1, ""},
      {R"({"result": 7, "server": "9.0.00"})", 1, ""}};
  for (const auto& [rule, code, message] : rows) {
    server.Patch({{"versions", {nlohmann::json::parse(rule)}}});
    server.ForgetCalls();
    EXPECT_EQ(Login(), code) << rule;
    EXPECT_EQ(m_message, message) << rule;
    EXPECT_EQ(server.LastCall("CRB_Register").is_null(), code == 0) << rule;
    GL_LogOut(false);
  }
}

}  // namespace
}  // namespace vq::test
