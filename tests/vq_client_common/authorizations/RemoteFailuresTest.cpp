#include <vq_client_common/authorizations/internal/RemoteFailures.h>

#include <gtest/gtest.h>

#include <tests/fixture/LogCapture.h>
#include <vq_idl/UsersManagerC.h>

namespace {

// What a server that keeps to its interfaces does not raise.
TEST(RemoteFailures, UndeclaredOnesHaveTheirResultAndTheirLineToo) {
  TDiagRegister diagModule("RemoteFailuresTest");
  const TDiagFunc diag(diagModule, "Test");
  const auto expect = [&](const auto& exception, int result, const char* loads,
                          const char* queries) {
    const auto raise = [&exception]() -> int { throw exception; };
    vq::test::LogCapture log(1);
    EXPECT_EQ(vq::authorizations::RunLoad(diag, raise), result);
    EXPECT_EQ(log.Count(1, loads), 1) << log.Text();
    log.Clear();
    EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0);
    EXPECT_EQ(log.Count(1, queries), 1) << log.Text();
  };
  constexpr auto kLine = "Caught a UserNotAuthorized Exception - no";
  expect(USER_NOT_AUTHORIZED("no", ""), 43, kLine, kLine);
  expect(QCSCorbaUsersManager::INVALID_ACTION_NAME(), 1,
         "CRB_GetActionAuthLevel Failed with INVALID_ACTION_NAME exception",
         "Caught CORBA exception, Trying to reconnect...");
  const auto raise = []() -> int { throw DB_CONNECTION_ERROR(); };
  EXPECT_THROW(vq::authorizations::RunLoad(diag, raise), DB_CONNECTION_ERROR);
  EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0);
}

}  // namespace
