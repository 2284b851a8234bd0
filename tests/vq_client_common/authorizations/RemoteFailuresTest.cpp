#include <vq_client_common/authorizations/internal/RemoteFailures.h>

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <tests/fixture/LogCapture.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("RemoteFailuresTest");

struct Row {
  const char* name;
  std::function<void()> raise;
  int loadResult;
  const char* loadLine;
  const char* queryLine;
};

const Row kRows[] = {
    {"USER_NOT_FOUND", [] { throw USER_NOT_FOUND("who?", "reason"); }, 0,
     "Caught a UserNotFound Exception - who?", "Caught CORBA exception, Trying to reconnect..."},
    {"USER_NOT_AUTHORIZED", [] { throw USER_NOT_AUTHORIZED("not you", "reason"); }, 43,
     "Caught a UserNotAuthorized Exception - not you",
     "Caught a UserNotAuthorized Exception - not you"},
    {"INVALID_ACTION_NAME", [] { throw QCSCorbaUsersManager::INVALID_ACTION_NAME(); }, 1,
     "CRB_GetActionAuthLevel Failed with INVALID_ACTION_NAME exception",
     "Caught CORBA exception, Trying to reconnect..."},
    {"system", [] { throw CORBA::COMM_FAILURE(7, CORBA::COMPLETED_NO); }, 23,
     "CORBA Exception COMM_FAILURE", "Caught CORBA exception, Trying to reconnect...COMM_FAILURE"},
};

TEST(RemoteFailures, EachHasItsResultAndItsLine) {
  const TDiagFunc diag(diagModule, "Test");
  for (const Row& row : kRows) {
    const auto raise = [&row]() -> int {
      row.raise();
      return 1;
    };
    const vq::test::LogCapture loadLog(1);
    EXPECT_EQ(vq::authorizations::RunLoad(diag, raise), row.loadResult) << row.name;
    EXPECT_TRUE(loadLog.Has(1, row.loadLine)) << row.name << ": " << loadLog.Text();
    const vq::test::LogCapture queryLog(1);
    EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0) << row.name;
    EXPECT_TRUE(queryLog.Has(1, row.queryLine)) << row.name << ": " << queryLog.Text();
  }
}

TEST(RemoteFailures, OtherUserExceptionsPassThroughALoadOnly) {
  const TDiagFunc diag(diagModule, "Test");
  const auto raise = []() -> int { throw DB_CONNECTION_ERROR(); };
  EXPECT_THROW(vq::authorizations::RunLoad(diag, raise), DB_CONNECTION_ERROR);
  EXPECT_EQ(vq::authorizations::RunQuery(diag, raise), 0);
}

}  // namespace
