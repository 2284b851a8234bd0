// The exceptions of a failed login, with the texts that they compose, and those for client
// programs.

#include <gtest/gtest.h>

#include <memory>

#include <tests/fixture/Environment.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/VQDetailedMessageException.h>

namespace vq::test {
namespace {

constexpr const char* kCauses = "This error may be caused by any of the following:\n";

std::string RefusalOf(const std::string& user) {
  return kCauses + (" - User" + user) +
         " is not defined properly.\n - The specified password is incorrect.\n\nFor more "
         "information, refer to the VELTRA-M/Quorum Manager documentation.";
}

class FailuresTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_environment.Isolate(m_directory.Path());
    ConnectionSettings::Get()->SetServerName("central %s");
    ConnectionSettings::Get()->SetUserName("alice");
  }
  void TearDown() override { exit_vqclient_common(); }

  TemporaryDirectory m_directory;
  Environment m_environment;
  LogCapture m_log;
};

TEST_F(FailuresTest, EachFailureHasItsCodeNumberAndText) {
  const std::string longest(45, 'u');
  const struct {
    BaseLoginEx failure;
    int code, number;
    std::string text;
  } kRows[] = {
      {BaseLoginEx(""), 0, 0, ""},
      {BaseLoginEx("said"), 0, 0, "said"},
      {BadOrbixCfgEx(""), 55, 60008, ""},
      {BadOrbixCfgEx("said"), 55, 60008, "said"},
      {NoServerEx("said"), 54, 60007, "said"},
      {NoServerEx(""), 54, 60007,  // no ORB is up, so nobody can be asked
       kCauses + std::string(" - Server 'central %s' is not running.\t\n - The Server listening "
                             "port is blocked by the firewall.\t\n - The outgoing ports are "
                             "blocked in this computer.\t")},
      {ServerTypeEx("said"), 0, 60009, "said"},
      // The second replacement finds the "%s" that the first brought in.
      {ServerTypeEx(""), 0, 60009,
       kCauses + std::string(" - Server 'central central %s' has incorrect or old version.\n - "
                             "Server '%s' went down during login process.\t")},
      {UserAuthEx("said", "bob"), 0, 60010, "said"},
      {UserAuthEx("", "bob"), 0, 60010, RefusalOf(" 'bob'")},
      {UserAuthEx("", ""), 0, 60010, RefusalOf(" 'alice'")},
      {UserAuthEx("", longest), 0, 60010, RefusalOf(" '" + longest + "'")},
      {UserAuthEx("", longest + "u"), 0, 60010, RefusalOf("")},
      {UserLockedEx(""), 49, 60006, "User account is locked.\t"},
      {UserLockedEx("said"), 49, 60006, "said"},
      {UserPwdExpEx(""), 48, 60011, "Password has expired.\t"},
      {UserPwdExpEx("said"), 48, 60011, "said"},
  };
  for (const auto& row : kRows) {
    BaseLoginEx copy = row.failure;
    m_log.Clear();
    EXPECT_EQ(copy.handle(), row.text);
    EXPECT_TRUE(m_log.Has(1, row.text));
    EXPECT_EQ(copy.GetReturnCode(), row.code) << row.text;
    EXPECT_EQ(copy.GetErrorNumber(), row.number) << row.text;
  }
}

TEST_F(FailuresTest, AnExpiredPasswordIsAFailureOfTheUser) {
  try {
    throw UserPwdExpEx("");
  } catch (UserAuthEx& e) {
    EXPECT_EQ(e.GetReturnCode(), 48);
  }
}

TEST(ClientException, PrintsToTheErrorStreamAndIsRaisedAgain) {
  const SEVERITY severity{3};
  const struct {
    std::shared_ptr<VQBaseException> exception;
    const char *name, *printed, *lastLine;
  } kRows[] = {
      {std::make_shared<VQBaseException>("a.cpp", 7, "why", 1, 2, severity, false),
       "VQBaseException", "why\n", "[File: a.cpp Line: 7]\nwhy"},
      {std::make_shared<VQDetailedMessageException>("a.cpp", 7, "why", 1, 2, severity, false),
       "VQSimpleMessageException", "why\n\n", "Detailed Reason:  "},
      {std::make_shared<VQDetailedMessageException>("a.cpp", 7, "why", 1, 2, severity, false,
                                                    "in full"),
       "VQSimpleMessageException", "why\nin full\n", "Detailed Reason:  in full"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.exception->getName(), row.name);
    EXPECT_EQ(row.exception->getReason(), "why");
    EXPECT_EQ(row.exception->getMajor(), 1);
    EXPECT_EQ(row.exception->getMinor(), 2);
    EXPECT_EQ(row.exception->getSeverity(), severity);
    EXPECT_EQ(row.exception->shouldPrint(), 0);
    LogCapture log;
    testing::internal::CaptureStderr();
    bool raisedAgain = false;
    try {
      try {
        throw 42;
      } catch (int) {
        row.exception->handle();  // prints although shouldPrint says 0
      }
    } catch (int) {
      raisedAgain = true;
    }
    EXPECT_TRUE(raisedAgain);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), row.printed);
    EXPECT_TRUE(log.Has(4, "[File: a.cpp Line: 7]\nwhy"));
    EXPECT_EQ(log.Lines().back().text, row.lastLine);
  }
}

}  // namespace
}  // namespace vq::test
