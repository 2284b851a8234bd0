// How client and server judge each other's version, from the reading of versions to a login that is
// refused.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace vq::test {
namespace {

class Gate : public LoginHandler {
 public:
  using LoginHandler::GetMinimumServerVersionAllowed;
  using LoginHandler::IsServerVersionPermitted;
};

class VersionGateTest : public SessionFixture {
 protected:
  void Accept(const std::string& content) {
    m_directory.Write("root/min-accepted-servers.txt", content);
  }
};

TEST(ParseVersion, SplitsAtTheSecondPoint) {
  LogCapture log;
  const struct {
    const char* version;
    int result;
    const char *major, *minor;
    double majorNumber, minorNumber;
  } kRows[] = {
      {"8.0.05", 1, "8.0", "05", 8.0, 5},
      {"9.1.18.250", 1, "9.1", "18.250", 9.1, 18.25},
      {"8.0", 1, "8.0", "8.0", 8.0, 8.0},
      {"8", 0, "old", "old", -1, -1},
      {"", 0, "old", "old", -1, -1},
      {"..", 1, ".", "", 0, 0},
      {"8.0.07beta", 1, "8.0", "07beta", 8.0, 7},
  };
  for (const auto& row : kRows) {
    std::string major = "old";
    std::string minor = "old";
    double majorNumber = -1;
    double minorNumber = -1;
    EXPECT_EQ(LoginHandler::ParseVersion(row.version, major, minor), row.result) << row.version;
    EXPECT_EQ(major, row.major) << row.version;
    EXPECT_EQ(minor, row.minor) << row.version;
    log.Clear();
    EXPECT_EQ(LoginHandler::ParseVersion(row.version, majorNumber, minorNumber), row.result);
    EXPECT_EQ(majorNumber, row.majorNumber) << row.version;
    EXPECT_EQ(minorNumber, row.minorNumber) << row.version;
    EXPECT_EQ(log.Has(1, std::string("Invalid value found for version: ") + row.version),
              row.result == 0);
  }
}

TEST_F(VersionGateTest, TheClientVersionComesWithItsPatches) {
  ConnectionSettings* const settings = ConnectionSettings::Get();
  const struct {
    const char* patches;
    CLIENT_ID client;
    int result;
    const char *plain, *withPatches;
  } kRows[] = {
      {"", CLIENT_CLI, 1, "8.0.00", "8.0.00"},
      {"P1", CLIENT_GUI, 1, "8.0.00", "8.0.00::P1"},
      {"P1, P2,P3", CLIENT_RCI, 1, "8.0.00", "8.0.00::P1,P2,P3"},
      {"P1", CLIENT_QIMC, 20, "old", "old"},
      {"P1", CLIENT_UNKNOWN, 20, "old", "old"},
  };
  const auto expect = [&](CLIENT_ID client, int result, const char* plainText, const char* full) {
    std::string plain = "old";
    std::string withPatches = "old";
    settings->SetClientID(client);
    EXPECT_EQ(LoginHandler::GetGlobal()->GetClientVersion(plain, withPatches), result);
    EXPECT_EQ(plain, plainText);
    EXPECT_EQ(withPatches, full);
  };
  expect(CLIENT_CLI, 0, "0", "0");  // nothing is installed
  for (const auto& row : kRows) {
    InstallClient("8.0.00", row.patches);
    expect(row.client, row.result, row.plain, row.withPatches);
  }
}

TEST_F(VersionGateTest, TheFileOfAcceptedServersIsReadByTheseRules) {
  const Gate gate;
  // The line that is longer than the reader's 255 characters counts as two.
  const std::string longLine = std::string(250, 'x') + " 9.9.1 4\n";
  const struct {
    std::string content;
    SERVER_ID server;
    const char* version;
  } kRows[] = {
      {"", E_GSR, "old"},
      {"E_GSR 8.0.00 comment\n", E_GSR, "8.0.00"},
      {"\t E_GSR\t \t8.0.00\n", E_GSR, "8.0.00\n"},
      {"E_GSR 8.0.00", E_GSR, "8.0.00"},
      {"E_GSR 7.0.00\nE_GSR 8.0.00 \n", E_GSR, "8.0.00"},
      {"0 7.0.00 \n", E_GSR, "7.0.00"},
      {"4 7.0.00 \n", E_CMS, "7.0.00"},
      {" 04th 7.0.00 \n", E_CMS, "7.0.00"},
      {"E_FORECAST 7.0.00 \n", E_FORECAST, "7.0.00"},
      {"E_QIMS 7.0.00 \n", E_GAS, "old"},
      {"E_GAS 7.0.00 \n", E_GSR, "7.0.00"},  // a word counts as 0
      {"# 6.0.00 \n", E_GSR, "6.0.00"},
      {"5 7.0.00 \n", E_SLS, "old"},
      {"E_SLS 7.0.00 \n", E_SLS, "old"},
      {longLine, E_GSR, "9.9."},
      {longLine, E_GAS, "4\n"},
  };
  for (const auto& row : kRows) {
    Accept(row.content);
    std::string version = "old";
    EXPECT_EQ(gate.GetMinimumServerVersionAllowed(row.server, version), 1) << row.content;
    EXPECT_EQ(version, row.version) << row.content;
  }
  m_log.Clear();
  Accept("\nE_GSR\n \t\t \nE_GSR\t8.0.00\n");
  std::string version;
  EXPECT_EQ(gate.GetMinimumServerVersionAllowed(E_GSR, version), 1);
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
  const Gate gate;
  const struct {
    const char* file;  // null: none
    const char *client, *server;
    bool permitted;
  } kRows[] = {
      {nullptr, "8.0.00", "8.0.05", true},
      {nullptr, "8.0.00", "8.0.00", true},
      {nullptr, "8.0.01", "8.0.00", false},
      {nullptr, "8.0.00", "9.0.00", false},  // a newer one, too
      {nullptr, "8.0.00", "7.0.09", false},
      {nullptr, "8.0", "8.0", true},
      {nullptr, "8.0", "8.0.07", false},  // the minor of "8.0" is 8.0
      {nullptr, "8.0.00", "8", true},
      {nullptr, "8", "7.0.00", true},
      {nullptr, "", "7.0.00", true},
      {nullptr, "8.0.00", "", true},
      {"E_GSR 7.0.02\n", "8.0.00", "7.0.02", true},
      {"E_GSR 7.0.02\n", "8.0.00", "7.0.01", false},
      {"E_GSR 7.0.02\n", "8.0.00", "8.0.00", false},
      {"E_GSR nonsense\n", "8.0.00", "1.0.00", true},
      {"1 7.0.00\n", "8.0.00", "8.0.00", true},
  };
  for (const auto& row : kRows) {
    if (row.file != nullptr) Accept(row.file);
    std::string client = row.client;
    std::string server = row.server;
    EXPECT_EQ(gate.IsServerVersionPermitted(client, E_GSR, server), row.permitted)
        << (row.file != nullptr ? row.file : "no file") << ' ' << client << ' ' << server;
  }
}

TEST_F(VersionGateTest, ALoginEndsOrGoesOnAsTheTwoVersionsSay) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  const std::string old =
      "This error may be caused by any of the following:\n - Server 'central' has incorrect or old "
      "version.\n - Server 'central' went down during login process.\t";
  const auto rule = [](int result, const char* version) {
    return nlohmann::json{{"result", result}, {"server", version}};
  };
  // The server's kind stands where the client's name belongs, and one "%s" is left over.
  const std::string byServer =
      "Connection refused by VELTRA-M/VQ Server: 'central'.\nVersion 8.0.00 of VELTRA-M/VQ Server "
      "is "
      "not compatible with a 9.0.01 of version %s.";
  const std::string byClient =
      "Version 8.0.00 of VELTRA-M/VQ CLI is not compatible with a VELTRA-M/VQ Server of version "
      "9.0.00.";
  const char* const kFailed = "CORBA::Exception was caught during versions verification (BAD_OP";
  const char* const kWithout = "Version Verification failed with return code: ";
  const struct {
    nlohmann::json rule;
    int code;
    std::string message;
    int level;
    std::string line;
  } kRows[] = {
      {rule(56, "9.0.01"), 0, byServer, 1, byServer},
      {rule(1, "9.0.00"), 0, byClient, 1, byClient},
      {{{"missing", true}}, 0, old, 1, kFailed},
      {rule(1, "8.0.05"), 1, "", 4, "server version is allowed by client"},
      {rule(1, "0"), 1, "", 2, kWithout + std::string("1")},
      {rule(1, ""), 1, "", 2, "Continue with login process..."},
      {rule(7, "9.0.00"), 1, "", 2, kWithout + std::string("7")},
  };
  for (const auto& row : kRows) {
    server.Patch({{"versions", {row.rule}}});
    server.ForgetCalls();
    m_log.Clear();
    EXPECT_EQ(Login(), row.code) << row.rule;
    EXPECT_EQ(m_message, row.message) << row.rule;
    EXPECT_TRUE(m_log.Has(row.level, row.line)) << row.rule << '\n' << m_log.Text();
    EXPECT_EQ(server.LastCall("CRB_Register").is_null(), row.code == 0) << row.rule;
    EXPECT_EQ(m_log.Text().find("). Probably old Server version, verification is ignored\n") !=
                  std::string::npos,
              row.message == old);
    GL_LogOut(false);
  }
}

}  // namespace
}  // namespace vq::test
