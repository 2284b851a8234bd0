// The site's password policy, and both ways to change a password.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>

namespace vq::test {
namespace {

using PasswordTest = SessionFixture;
using nlohmann::json;

TEST_F(PasswordTest, PolicyPassesOrGivesTheReason) {
  Server& server = StartSession();
  const std::string tooShort = "New password is too short.\nPassword minimum length should be ";
  const std::string tooLong = "New password is too long.\nPassword maximum length should be ";
  const std::string rules =
      "To select a password that complies with the Password Policy you\nmust choose a word that "
      "contains the following types of characters:\n";
  const std::string upper = "Letters in upper case.\n", lower = "Letters in lower case.\n";
  const std::string digit = "Digit characters.\n", special = "Special characters.";
  const std::string all = rules + digit + upper + lower + special;
  const char* const names[] = {"MinPasswordLength", "MaxPasswordLength", "PasswordComplexityOnOff",
                               "PasswordComplexityRules"};
  const json no;
  const struct {
    json parameters[4];
    std::string password, message;  // no message: it passes
  } rows[] = {{{no, no, no, no}, "12345", tooShort + "6."},
              {{no, no, no, no}, "123456", ""},
              {{no, no, no, no}, std::string(33, 'x'), tooLong + "32."},
              {{"3", "4", "0", no}, "ab", tooShort + "3."},
              {{"3", "4", "0", no}, "abc", ""},
              {{"3", "4", "0", no}, "abcd", ""},
              {{"3", "4", "0", no}, "abcde", tooLong + "4."},
              {{"word", "4", "0", no}, "", ""},
              {{"-1", "-1", "0", no}, "", tooLong + "-1."},
              {{"9", "4", "0", no}, "abcdef", tooShort + "9."},  // the minimum is checked first
              {{no, no, "N", "PWD_UPPER"}, "abcdef", ""},
              {{no, no, "1", ""}, "abcdef", ""},
              {{no, no, "y", "U"}, "abcdef", rules + upper},
              {{no, no, "1", "U"}, "abcDef", ""},
              {{no, no, "Y", "O"}, "ABCDEF", rules + lower + special},
              // Digits and special characters do not count, and one full name is all four rules.
              {{no, no, "1", "G"}, "abc123", rules + digit + special},
              {{no, no, "1", "PWD_UPPER"}, "aB3$ef", all}};
  for (const auto& [parameters, password, message] : rows) {
    for (int i = 0; i < 4; ++i) server.SetParameter("general", names[i], parameters[i]);
    std::string said = "old";
    EXPECT_EQ(CheckPasswordValidity(password, said), message.empty() ? 1 : 51);
    EXPECT_EQ(said, message) << password << ' ' << parameters[3];
  }
  const auto bits = [&](const std::string& value) {
    server.SetParameter("general", "PasswordComplexityRules", value);
    return std::to_string(GetPasswordComplexityRules());
  };
  ExpectRows(bits, {"PWD_DIGIT -> 15", "_ -> 15", "U -> 2", "O -> 12", "G -> 9", "LW -> 15",
                    "E -> 10", " -> 0", "p -> 0"});
}

TEST_F(PasswordTest, ChangesInASessionAndWithARegistration) {
  InstallClient("8.0.00", "P1");
  Server& server = StartServer();
  for (const bool encode : {true, false}) {
    SCOPED_TRACE(encode);
    server.SetParameter("general", "PasswordEncode", encode ? "1" : "0");
    server.Control({{"command", "reset"}});
    ASSERT_EQ(Login(), 1) << m_log.Text();
    const std::string userId = ConnectionSettings::Get()->GetUserID();
    m_log.Clear();
    server.SetFaults(Return("CRB_UpdateUserPassword", 7));
    EXPECT_EQ(SetUserPassword("refused", false), 7);
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "secret");
    server.SetFaults(json::array());
    EXPECT_EQ(SetUserPassword("canary-in-a-mine", false), 1);
    json arguments = server.LastCall("CRB_UpdateUserPassword")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["newPassword"]["length"], encode ? 8 : 16);
    EXPECT_EQ(arguments["userId"], userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID(), userId);
    EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "canary-in-a-mine");
    EXPECT_FALSE(m_log.Contains("canary"));
    EXPECT_EQ(GL_ReLogin(600), 1) << "with the new password";
    GL_LogOut(false);

    ASSERT_EQ(Login("expired"), 48) << m_log.Text();
    server.ForgetCalls();
    server.SetFaults(Return("CRB_RegisterAndUpdatePassword", 48));
    EXPECT_EQ(SetUserPassword("refused", true), 48);
    EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
    server.SetFaults(json::array());
    EXPECT_EQ(SetUserPassword("new-password", true), 1) << m_log.Text();
    const json call = server.LastCall("CRB_RegisterAndUpdatePassword");
    EXPECT_EQ(call["passwordForm"], encode ? "response" : "plain");
    arguments = call["arguments"];
    EXPECT_EQ(arguments["newPassword"]["length"], encode ? 8 : 12);
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

TEST_F(PasswordTest, NoticesAFailedChangeDespiteALeftOverUserId) {
  InstallClient("8.0.00");
  json site = BaseSite();
  site["users"]["expired"]["replyUserId"] = "left-over";
  Server& server = StartServer({.site = site});
  SessionOptions options = Options("expired");
  options.postLogin = false;  // which fails without a session
  options.newPassword = [](const std::string& why) {
    return SecretString(why == "Password has expired." ? "new-password" : "");
  };
  LoginError error;
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
    EXPECT_EQ(Session::Open(options, error).has_value(), !fails) << error.Cause();
    EXPECT_EQ(WasPasswordChanged(), !fails);
  }
}

}  // namespace
}  // namespace vq::test
