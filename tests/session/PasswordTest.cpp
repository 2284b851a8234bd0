// The site's policy for passwords, and changing one in both ways.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaServerPackManager.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>

namespace vq::test {
namespace {

class PasswordTest : public SessionFixture {};

constexpr const char* kUpper = "Letters in upper case.\n";
constexpr const char* kLower = "Letters in lower case.\n";

std::string RulesText(const std::string& lines) {
  return "To select a password that complies with the Password Policy you\nmust choose a word that "
         "contains the following types of characters:\n" +
         lines;
}

TEST_F(PasswordTest, ThePolicyPassesOrSaysWhyNot) {
  Server& server = StartSession();
  const std::string tooShort = "New password is too short.\nPassword minimum length should be ";
  const std::string tooLong = "New password is too long.\nPassword maximum length should be ";
  const std::string all =
      RulesText(std::string("Digit characters.\n") + kUpper + kLower + "Special characters.");
  const nlohmann::json none;
  const struct {
    nlohmann::json minimum, maximum, on, rules;
    std::string password;
    std::string message;  // empty: it passes
  } kRows[] = {
      {none, none, none, none, "12345", tooShort + "6."},
      {none, none, none, none, "123456", ""},
      {none, none, none, none, std::string(32, 'x'), ""},
      {none, none, none, none, std::string(33, 'x'), tooLong + "32."},
      {"3", "4", "0", none, "ab", tooShort + "3."},
      {"3", "4", "0", none, "abc", ""},
      {"3", "4", "0", none, "abcd", ""},
      {"3", "4", "0", none, "abcde", tooLong + "4."},
      {"word", "4", "0", none, "", ""},
      {"-1", "-1", "0", none, "", tooLong + "-1."},
      {"9", "4", "0", none, "abcdef", tooShort + "9."},  // the minimum is looked at first
      {none, none, "N", "PWD_UPPER", "abcdef", ""},
      {none, none, "yes", "PWD_UPPER", "abcdef", ""},
      {none, none, "1", "", "abcdef", ""},
      {none, none, "1", "xyz", "abcdef", ""},
      {none, none, "1", "U", "abcdef", RulesText(kUpper)},
      {none, none, "y", "U", "abcDef", ""},
      {none, none, "Y", "O", "ABCDEF", RulesText(std::string(kLower) + "Special characters.")},
      // Digits and special characters do not help, and any name in full is all four rules.
      {none, none, "1", "G", "abc123", RulesText("Digit characters.\nSpecial characters.")},
      {none, none, "1", "PWD_UPPER", "aB3$ef", all},
      {none, none, "1", none, "aB3$ef", all},
      {none, none, "1", {{"fail", 5}}, "aB3$ef", all},
  };
  for (const auto& row : kRows) {
    server.SetParameter("general", "MinPasswordLength", row.minimum);
    server.SetParameter("general", "MaxPasswordLength", row.maximum);
    server.SetParameter("general", "PasswordComplexityOnOff", row.on);
    server.SetParameter("general", "PasswordComplexityRules", row.rules);
    std::string message = "old";
    EXPECT_EQ(CheckPasswordValidity(row.password, message), row.message.empty() ? 1 : 51)
        << row.password << ' ' << row.rules;
    EXPECT_EQ(message, row.message) << row.password << ' ' << row.rules;
  }
  for (const char* name : {"MinPasswordLength", "MaxPasswordLength", "PasswordComplexityOnOff",
                           "PasswordComplexityRules"}) {
    EXPECT_TRUE(m_log.Has(
        1, std::string("Can't read parameter <") + name + "> from system parameters table"))
        << name;
  }
  const struct {
    const char* value;
    int rules;
  } kValues[] = {{"PWD_DIGIT", 15}, {"_", 15}, {"U", 2}, {"O", 12}, {"G", 9},
                 {"LW", 15},        {"E", 10}, {"", 0},  {"p", 0}};
  for (const auto& row : kValues) {
    server.SetParameter("general", "PasswordComplexityRules", row.value);
    EXPECT_EQ(GetPasswordComplexityRules(), row.rules) << row.value;
    EXPECT_TRUE(m_log.Has(5, "Complexity rule is set to " + std::to_string(row.rules)));
  }
}

TEST_F(PasswordTest, AChangeInARunningSessionTravelsAsTheSiteWantsIt) {
  Server& server = StartServer();
  for (const char* encode : {"1", "0"}) {
    server.SetParameter("general", "PasswordEncode", encode);
    ASSERT_EQ(Login(), 1) << m_log.Text();
    const std::string userId = ConnectionSettings::Get()->GetUserID();
    m_log.Clear();
    EXPECT_EQ(SetUserPassword("canary-in-a-mine", false), 1);
    const nlohmann::json arguments = server.LastCall("CRB_UpdateUserPassword")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["newPassword"]["length"], *encode == '1' ? 8 : 16);
    EXPECT_EQ(arguments["userId"], userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID(), userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "canary-in-a-mine");
    EXPECT_EQ(m_log.Text().find("canary"), std::string::npos);
    EXPECT_EQ(GL_ReLogin(600), 1) << "with the new password";
    EXPECT_EQ(SetUserPassword("secret", false), 1);
    GL_LogOut(false);
  }
}

TEST_F(PasswordTest, AnExpiredPasswordIsChangedWithTheRegistration) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  for (const char* encode : {"1", "0"}) {
    server.SetParameter("general", "PasswordEncode", encode);
    server.Control({{"command", "reset"}});
    ASSERT_EQ(Login("expired"), 48) << m_log.Text();
    server.ForgetCalls();
    EXPECT_EQ(SetUserPassword("new-password", true), 1) << m_log.Text();
    const nlohmann::json call = server.LastCall("CRB_RegisterAndUpdatePassword");
    EXPECT_EQ(call["passwordForm"], *encode == '1' ? "response" : "plain");
    EXPECT_EQ(call["arguments"]["newPassword"]["length"], *encode == '1' ? 8 : 12);
    EXPECT_EQ(call["arguments"]["timeOut"], 600);
    EXPECT_EQ(call["arguments"]["clientName"], "vq_cli");
    EXPECT_EQ(call["arguments"]["clientVersion"], "8.0.00::P1");
    EXPECT_TRUE(server.LastCall("CRB_VerifyClientServerVersion").is_null());
    EXPECT_TRUE(LoginHandler::GetGlobal()->IsConnected());
    EXPECT_EQ(GL_PostLogin(m_message), 1);
    EXPECT_EQ(GL_ReLogin(600), 1) << "with the new password";
    GL_LogOut(false);
  }
}

TEST_F(PasswordTest, AFailedChangeKeepsThePassword) {
  InstallClient("8.0.00");
  Server& server = StartServer();
  const char* const kUpdate = "CRB_UpdateUserPassword";
  const char* const kCombined = "CRB_RegisterAndUpdatePassword";
  const char* const kChallenge = "CRB_AquireChallenge";
  const struct {
    bool expired;
    nlohmann::json faults;
    int result;
    const char* line;
  } kRows[] = {
      {false, Return(kUpdate, 7), 7, ""},
      {false, Raise(kUpdate, "USER_NOT_FOUND"), 0, "Failed with USER_NOT_FOUND exception."},
      {false, Raise(kUpdate, "USER_NOT_AUTHORIZED"), 43, "Failed with USER_NOT_AUTHORIZED excep"},
      {true, Return(kCombined, 0), 0, ""},
      {true, Return(kCombined, 48), 48, ""},
      {true, Return(kChallenge, 0), 0, "Couldn't get Challenge"},
      {true, Raise(kChallenge, "NO_RESOURCES"), 0, "Failed with CORBA::SystemException [name = "},
  };
  for (const auto& row : kRows) {
    ASSERT_EQ(Login(row.expired ? "expired" : "alice"), row.expired ? 48 : 1) << m_log.Text();
    server.SetFaults(row.faults);
    m_log.Clear();
    EXPECT_EQ(SetUserPassword("new-password", row.expired), row.result) << row.faults;
    EXPECT_EQ(m_log.Count(1, row.line), *row.line != '\0' ? 1 : 0) << m_log.Text();
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "secret") << row.faults;
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), !row.expired) << row.faults;
    server.SetFaults(nlohmann::json::array());
    GL_LogOut(false);
  }
  // Without a reference there is nobody to tell.
  ASSERT_EQ(Login(), 1);
  CorbaServerPackManager::Get()->Reset();
  server.Kill();
  EXPECT_EQ(SetUserPassword("new-password", false), 0);
  EXPECT_EQ(SetUserPassword("new-password", true), 0);
}

}  // namespace
}  // namespace vq::test
