// The site's policy for passwords, and changing one in both ways.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/Session.h>

namespace vq::test {
namespace {

using PasswordTest = SessionFixture;
using nlohmann::json;

TEST_F(PasswordTest, ThePolicyPassesOrSaysWhyNot) {
  Server& server = StartSession();
  const std::string tooShort = "New password is too short.\nPassword minimum length should be ";
  const std::string tooLong = "New password is too long.\nPassword maximum length should be ";
  const std::string rulesText =
      "To select a password that complies with the Password Policy you\nmust choose a word that "
      "contains the following types of characters:\n";
  const std::string upper = "Letters in upper case.\n", lower = "Letters in lower case.\n";
  const std::string digit = "Digit characters.\n", special = "Special characters.";
  const std::string all = rulesText + digit + upper + lower + special;
  const char* const names[] = {"MinPasswordLength", "MaxPasswordLength", "PasswordComplexityOnOff",
                               "PasswordComplexityRules"};
  const json none;
  const struct {
    json parameters[4];
    std::string password, message;  // no message: it passes
  } rows[] = {{{none, none, none, none}, "12345", tooShort + "6."},
              {{none, none, none, none}, "123456", ""},
              {{none, none, none, none}, std::string(32, 'x'), ""},
              {{none, none, none, none}, std::string(33, 'x'), tooLong + "32."},
              {{"3", "4", "0", none}, "ab", tooShort + "3."},
              {{"3", "4", "0", none}, "abc", ""},
              {{"3", "4", "0", none}, "abcd", ""},
              {{"3", "4", "0", none}, "abcde", tooLong + "4."},
              {{"word", "4", "0", none}, "", ""},
              {{"-1", "-1", "0", none}, "", tooLong + "-1."},
              {{"9", "4", "0", none}, "abcdef", tooShort + "9."},  // the minimum is looked at first
              {{none, none, "N", "PWD_UPPER"}, "abcdef", ""},
              {{none, none, "yes", "PWD_UPPER"}, "abcdef", ""},
              {{none, none, "1", ""}, "abcdef", ""},
              {{none, none, "1", "xyz"}, "abcdef", ""},
              {{none, none, "y", "U"}, "abcdef", rulesText + upper},
              {{none, none, "1", "U"}, "abcDef", ""},
              {{none, none, "Y", "O"}, "ABCDEF", rulesText + lower + special},
              // Digits and special characters do not help, and any name in full is all four rules.
              {{none, none, "1", "G"}, "abc123", rulesText + digit + special},
              {{none, none, "1", "PWD_UPPER"}, "aB3$ef", all},
              {{none, none, "1", none}, "aB3$ef", all}};
  for (const auto& [parameters, password, message] : rows) {
    for (int i = 0; i < 4; ++i) server.SetParameter("general", names[i], parameters[i]);
    std::string said = "old";
    EXPECT_EQ(CheckPasswordValidity(password, said), message.empty() ? 1 : 51)
        << password << ' ' << parameters[3];
    EXPECT_EQ(said, message) << password << ' ' << parameters[3];
  }
  for (const char* name : names) {
    EXPECT_TRUE(m_log.Has(
        1, std::string("Can't read parameter <") + name + "> from system parameters table"))
        << name;
  }
  const std::pair<const char*, int> values[] = {{"PWD_DIGIT", 15}, {"_", 15}, {"U", 2},
                                                {"O", 12},         {"G", 9},  {"LW", 15},
                                                {"E", 10},         {"", 0},   {"p", 0}};
  for (const auto& [value, bits] : values) {
    server.SetParameter("general", "PasswordComplexityRules", value);
    EXPECT_EQ(GetPasswordComplexityRules(), bits) << value;
    EXPECT_TRUE(m_log.Has(5, "Complexity rule is set to " + std::to_string(bits)));
  }
}

TEST_F(PasswordTest, AChangeTravelsAsTheSiteWantsItInASessionAndWithARegistration) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  for (const char* encode : {"1", "0"}) {
    SCOPED_TRACE(encode);
    server.SetParameter("general", "PasswordEncode", encode);
    server.Control({{"command", "reset"}});
    ASSERT_EQ(Login(), 1) << m_log.Text();
    const std::string userId = ConnectionSettings::Get()->GetUserID();
    m_log.Clear();
    EXPECT_EQ(SetUserPassword("canary-in-a-mine", false), 1);
    json arguments = server.LastCall("CRB_UpdateUserPassword")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["newPassword"]["length"], *encode == '1' ? 8 : 16);
    EXPECT_EQ(arguments["userId"], userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID(), userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "canary-in-a-mine");
    EXPECT_EQ(m_log.Text().find("canary"), std::string::npos);
    EXPECT_EQ(GL_ReLogin(600), 1) << "with the new password";
    GL_LogOut(false);

    ASSERT_EQ(Login("expired"), 48) << m_log.Text();
    server.ForgetCalls();
    EXPECT_EQ(SetUserPassword("new-password", true), 1) << m_log.Text();
    const json call = server.LastCall("CRB_RegisterAndUpdatePassword");
    EXPECT_EQ(call["passwordForm"], *encode == '1' ? "response" : "plain");
    arguments = call["arguments"];
    EXPECT_EQ(arguments["newPassword"]["length"], *encode == '1' ? 8 : 12);
    EXPECT_EQ(arguments["timeOut"], 600);
    EXPECT_EQ(arguments["clientName"], "vq_cli");
    EXPECT_EQ(arguments["clientVersion"], "8.0.00::P1");
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
  // Whether it has expired, what goes wrong, the result, and the line of it.
  const std::tuple<bool, json, int, const char*> rows[] = {
      {false, Return(kUpdate, 7), 7, ""},
      {false, Raise(kUpdate, "USER_NOT_FOUND"), 0, "Failed with USER_NOT_FOUND exception."},
      {false, Raise(kUpdate, "USER_NOT_AUTHORIZED"), 43, "Failed with USER_NOT_AUTHORIZED excep"},

      {true, Return("CRB_RegisterAndUpdatePassword", 48), 48, ""},
      {true, Return("CRB_AquireChallenge", 0), 0, "Couldn't get Challenge"}};
  for (const auto& [expired, faults, result, line] : rows) {
    ASSERT_EQ(Login(expired ? "expired" : "alice"), expired ? 48 : 1) << m_log.Text();
    server.SetFaults(faults);
    m_log.Clear();
    EXPECT_EQ(SetUserPassword("new-password", expired), result) << faults;
    EXPECT_EQ(m_log.Count(1, line), *line != '\0' ? 1 : 0) << m_log.Text();
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "secret") << faults;
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), !expired) << faults;
    server.SetFaults(json::array());
    GL_LogOut(false);
  }
}

TEST_F(PasswordTest, ARefusedSessionsUserIdHidesNoFailedChange) {
  InstallClient("8.0.00");
  json site = BaseSite();
  site["users"]["expired"]["replyUserId"] = "left-over";
  Server& server = StartServer(site);
  vq::SessionOptions options;
  options.server = "central", options.user = "expired";
  options.password = vq::SecretString("secret");
  options.namingService = m_naming->Reference();
  options.newPassword = [](const std::string& why) {
    return vq::SecretString(why == "Password has expired." ? "new-password" : "");
  };
  vq::LoginError error;
  for (const bool fails : {true, false}) {
    const json drop = {{{"operation", "CRB_RegisterAndUpdatePassword"}, {"action", "drop"}}};
    server.SetFaults(fails ? drop : json::array());
    server.Control({{"command", "reset"}});  // a call that was dropped may have done its work
    ASSERT_EQ(Login("expired"), 48);
    ASSERT_TRUE(LoginHandler::GetGlobal()->IsConnected()) << "a user ID came with the refusal";
    EXPECT_EQ(SetUserPassword("new-password", true), 1);
    EXPECT_EQ(WasPasswordChanged(), !fails);
    GL_LogOut(true);
    server.Control({{"command", "reset"}});
    EXPECT_EQ(vq::Session::Open(options, error).has_value(), !fails) << error.Cause();
    EXPECT_EQ(WasPasswordChanged(), !fails);
  }
}

}  // namespace
}  // namespace vq::test
