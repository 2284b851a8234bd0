// The exceptions of a failed login, with the texts that they compose, and those for client
// programs.

#include <memory>

#include <tests/fixture/UnitTest.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/VQBaseException.h>

namespace vq::test {
namespace {

TEST(LoginExceptions, HaveCodeNumberAndText) {
  const TemporaryDirectory directory;
  Environment environment;
  environment.Isolate(directory.Path());
  ConnectionSettings::Get()->SetServerName("central %s");
  ConnectionSettings::Get()->SetUserName("alice");
  const std::string causes = "This error may be caused by any of the following:\n - ";
  const auto refusal = [&](const std::string& user) {
    return causes + "User" + user +
           " is not defined properly.\n - The specified password is incorrect.\n\nFor more "
           "information, refer to the VELTRA-M/Quorum Manager documentation.";
  };
  const std::string longest(45, 'u');
  const std::tuple<BaseLoginEx, int, int, std::string> rows[] = {
      {BaseLoginEx("said"), 0, 0, "said"},
      {BadOrbixCfgEx(""), 55, 60008, ""},
      {NoServerEx("said"), 54, 60007, "said"},
      {NoServerEx(""), 54, 60007,  // no ORB is up, so there is no look-up
       causes + "Server 'central %s' is not running.\t\n - The Server listening port is blocked by "
                "the firewall.\t\n - The outgoing ports are blocked in this computer.\t"},
      {ServerTypeEx("said"), 0, 60009, "said"},
      // The second replacement finds the "%s" that the first brought in.
      {ServerTypeEx(""), 0, 60009,
       causes + "Server 'central central %s' has incorrect or old version.\n - Server '%s' went "
                "down during login process.\t"},
      {UserAuthEx("said", "bob"), 0, 60010, "said"},
      {UserAuthEx("", "bob"), 0, 60010, refusal(" 'bob'")},
      {UserAuthEx("", ""), 0, 60010, refusal(" 'alice'")},
      {UserAuthEx("", longest), 0, 60010, refusal(" '" + longest + "'")},
      {UserAuthEx("", longest + "u"), 0, 60010, refusal("")},
      {UserLockedEx(""), 49, 60006, "User account is locked.\t"},
      {UserLockedEx("said"), 49, 60006, "said"},
      {UserPwdExpEx(""), 48, 60011, "Password has expired.\t"}};
  for (const auto& [failure, code, number, text] : rows) {
    BaseLoginEx copy = failure;
    EXPECT_EQ(copy.handle(), text);
    EXPECT_EQ(copy.GetReturnCode(), code) << text;
    EXPECT_EQ(copy.GetErrorNumber(), number) << text;
  }
  EXPECT_THROW(throw UserPwdExpEx(""), UserAuthEx);
  exit_vqclient_common();
}

TEST(ClientExceptions, PrintAndAreRaisedAgain) {
  using Detailed = VQDetailedMessageException;
  const SEVERITY severity{3};
  const std::tuple<std::shared_ptr<VQBaseException>, const char*, const char*, const char*> rows[] =
      {{std::make_shared<VQBaseException>("a.cpp", 7, "why", 1, 2, severity, false),
        "VQBaseException", "why\n", "[File: a.cpp Line: 7]\nwhy"},
       {std::make_shared<Detailed>("a.cpp", 7, "why", 1, 2, severity, false),
        "VQSimpleMessageException", "why\n\n", "Detailed Reason:  "},
       {std::make_shared<Detailed>("a.cpp", 7, "why", 1, 2, severity, false, "in full"),
        "VQSimpleMessageException", "why\nin full\n", "Detailed Reason:  in full"}};
  for (const auto& [exception, name, printed, lastLine] : rows) {
    EXPECT_EQ(exception->getName() + exception->getReason(), name + std::string("why"));
    EXPECT_EQ(exception->getMajor(), 1);
    EXPECT_EQ(exception->getMinor(), 2);
    EXPECT_EQ(exception->getSeverity(), severity);
    EXPECT_EQ(exception->shouldPrint(), 0);  // it prints nevertheless
    const LogCapture log;
    testing::internal::CaptureStderr();
    try {
      throw 42;
    } catch (int) {
      EXPECT_THROW(exception->handle(), int);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), printed);
    EXPECT_TRUE(log.Contains(std::string(": ") + lastLine + "\n")) << log.Text();
  }
}

}  // namespace
}  // namespace vq::test
