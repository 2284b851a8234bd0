#include <vq_client_common/authorizations/internal/RemoteFailures.h>

#include <gtest/gtest.h>

#include <tests/fixture/LogCapture.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("RemoteFailuresTest");

template <class Exception>
void Expect(const Exception& exception, int result, const char* loadLine, const char* queryLine) {
  const TDiagFunc diag(diagModule, "Test");
  const auto raise = [&exception]() -> int { throw exception; };
  vq::test::LogCapture log(1);
  EXPECT_EQ(vq::authorizations::RunLoad(diag, raise), result);
  EXPECT_EQ(log.Count(1, loadLine), 1) << log.Text();
  log.Clear();
  EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0);
  EXPECT_EQ(log.Count(1, queryLine), 1) << log.Text();
}

// What a server that keeps to its interfaces does not raise.
TEST(RemoteFailures, UndeclaredOnesHaveTheirResultAndTheirLineToo) {
  constexpr auto kLine = "Caught a UserNotAuthorized Exception - no";
  Expect(USER_NOT_AUTHORIZED("no", ""), 43, kLine, kLine);
  Expect(QCSCorbaUsersManager::INVALID_ACTION_NAME(), 1,
         "CRB_GetActionAuthLevel Failed with INVALID_ACTION_NAME exception",
         "Caught CORBA exception, Trying to reconnect...");
}

TEST(RemoteFailures, OtherUserExceptionsPassThroughALoadOnly) {
  const TDiagFunc diag(diagModule, "Test");
  const auto raise = []() -> int { throw DB_CONNECTION_ERROR(); };
  EXPECT_THROW(vq::authorizations::RunLoad(diag, raise), DB_CONNECTION_ERROR);
  EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0);
}

}  // namespace
