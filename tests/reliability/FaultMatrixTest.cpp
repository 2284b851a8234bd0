// Every public function that calls a server, against everything that can go wrong with each of its
// calls: the result is the documented one, in bounded time, and the next call works.

#include "ProxiedFixture.h"

#include <functional>

#include <tests/fixture/Product.h>
#include <vq_client_common/session/CorbaServerPackManager.h>

namespace vq::test {
namespace {

using Fault = FaultProxy::Fault;
using std::chrono::milliseconds;

constexpr milliseconds kShortTimeOut{600};              // of the calls that are answered late
constexpr milliseconds kTimeOut{10000};                 // of all others: enough on a busy machine
constexpr milliseconds kLateLimit = 2 * kShortTimeOut;  // one time-out, and no second one
constexpr milliseconds kLimit{5000};  // nothing that fails at once waits for anything

// What happens to one call.
struct CallFault {
  std::string_view name;
  std::string_view exception;  // what the client's ORB makes of it
  Fault atProxy = Fault::kNone;
  std::string_view atServer{};  // or an action of the simulator's; "raise" raises `raised`
  std::string_view raised{};
  std::string_view ofOperation{};  // the only operation that declares it; empty: all
};

constexpr CallFault kCallFaults[] = {
    {"late", "TIMEOUT", Fault::kLate},
    {"reset", "COMM_FAILURE", Fault::kReset},
    {"half a reply", "COMM_FAILURE", Fault::kHalfReply},
    {"garbage", "COMM_FAILURE", Fault::kChanged},
    {"dead in mid call", "COMM_FAILURE", Fault::kNone, "die"},
    {"out of resources", "NO_RESOURCES", Fault::kNone, "raise", "NO_RESOURCES"},
    {"busy", "TRANSIENT", Fault::kNone, "raise", "TRANSIENT"},
    {"undeclared", "UNKNOWN", Fault::kNone, "raise", "DB_CONNECTION_ERROR"},
    {"refused", "", Fault::kNone, "refuse"},
    {"no parameter", "", Fault::kNone, "raise", "PARAMETER_NOT_FOUND", kParameter},
    {"failing", "", Fault::kNone, "raise", "FAIL", kParameter},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kParameter},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kAnnotation},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kUpdate},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kLoad},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kJobLevel},
    {"no user", "", Fault::kNone, "raise", "USER_NOT_FOUND", kQueries},
    {"not authorized", "", Fault::kNone, "raise", "USER_NOT_AUTHORIZED", kUpdate},
    {"not authorized", "", Fault::kNone, "raise", "USER_NOT_AUTHORIZED", kJobLevel},
};

// Where a declared exception has an outcome of its own.
constexpr struct {
  std::string_view function, operation, raised;
  const char* outcome;
} kOwnOutcomes[] = {
    {"SetUserPassword", kUpdate, "USER_NOT_AUTHORIZED", "43, kept, connected"},
    {"UserAuthorizations_LoadAuthorizations", kLoad, "USER_NOT_FOUND", "0"},
    {"UserAuthorizations_LoadAuthorizations", kJobLevel, "USER_NOT_FOUND", "0"},
    {"UserAuthorizations_LoadAuthorizations", kJobLevel, "USER_NOT_AUTHORIZED", "43"},
};

// How the log names a failure of an operation, in front of the exception's name; one of them.
constexpr struct {
  std::string_view operation;
  int level;
  const char* beginning;
} kLines[] = {
    {kParameter, 2, "CORBA::Exception - "},
    {kProbe, 1, "CORBA::Exception was caught. "},
    {kProbe, 1, "Failed with CORBA exception: "},
    {kVersion, 1, "CORBA::Exception was caught during versions verification ("},
    {kChallenge, 1, "CORBA::SystemException caught: "},
    {kChallenge, 1, "Failed with CORBA::SystemException [name = "},
    {kRegister, 1, "CORBA::SystemException caught: "},
    {kAlive, 1, "CORBA::Exception was caught during Client Keep Alive ("},
    {kUnregister, 2, "CORBA::Exception caught: "},
    {kLoad, 1, "CORBA Exception "},
    {kJobLevel, 1, "CORBA Exception "},
    {kAnnotation, 1, "Failed with CORBA::SystemException [name = "},
    {kUpdate, 1, "Failed with CORBA::SystemException [name = "},
    {kUpdateToo, 1, "Failed with CORBA::SystemException [name = "},
    {kQueries, 1, "Caught CORBA exception, Trying to reconnect..."},
    {"CRB_RegisterCallback", 1, "Failed with CORBA exception: "},
    {"CRB_TryCallback", 1, "Failed with CORBA exception: "},
    {"CRB_UnregisterCallbackById", 2, "The test callback "},
};

FaultProxy::Changed Garbage(const std::string& reply) {
  return {std::string(reply.size(), '\xA5')};
}

class FaultMatrixTest : public ProxiedFixture,
                        public ::testing::WithParamInterface<RemoteFunction> {
 protected:
  // Whether the function ends so, and in time, and has logged what `isSaid` looks for. A machine
  // that is busy may be late itself, or so late that a reply comes in time, so what depends on a
  // short time-out is `prepare`d and tried again.
  template <class Arm>
  void Expect(
      const std::string& expected, bool isLate, Arm prepare,
      const std::function<bool()>& isSaid = [] { return true; }) {
    RecordProperty("cases", ++m_cases);
    std::string outcome;
    std::chrono::steady_clock::duration taken{};
    for (int attempt = 0; attempt < (isLate ? 3 : 1); ++attempt) {
      prepare();
      const auto start = std::chrono::steady_clock::now();
      outcome = OutcomeOf(GetParam(), m_server->Port());
      taken = std::chrono::steady_clock::now() - start;
      if (outcome == expected && taken < (isLate ? kLateLimit : kLimit) && isSaid()) return;
    }
    EXPECT_EQ(outcome, expected) << m_log.Text();
    EXPECT_LT(taken, isLate ? kLateLimit : kLimit);
    EXPECT_TRUE(isSaid()) << m_log.Text();
  }

  bool IsLogged(std::string_view operation, std::string_view exception) const {
    const auto isNamed = [&](const LogCapture::Line& line) {
      return line.text.find(exception) != std::string::npos &&
             std::any_of(std::begin(kLines), std::end(kLines), [&](const auto& known) {
               return known.operation == operation && known.level == line.level &&
                      line.text.starts_with(known.beginning);
             });
    };
    const std::vector<LogCapture::Line> lines = m_log.Lines();
    return std::any_of(lines.begin(), lines.end(), isNamed);
  }

  // What went wrong is over: the function works again, in the same session where that lives on.
  void ExpectRecovery(bool sessionLives, bool isLate) {
    bool prepares = !sessionLives || GetParam().state < kLoggedIn || GetParam().EndsTheSession();
    Expect(GetParam().success, isLate, [&] {
      if (prepares) Prepare(GetParam());
      prepares = true;
    });
  }

  int m_cases = 0;
};

TEST_P(FaultMatrixTest, EachCallFailsInEachWay) {
  const std::span<const RemoteCall> calls = GetParam().Calls();
  Expect(GetParam().success, false, [&] { Prepare(GetParam()); });
  std::vector<std::string> operations;
  for (const RemoteCall& call : calls) operations.emplace_back(call.operation);
  ASSERT_EQ(m_proxy->TakeOperations(), operations) << "these calls and no others";

  for (const CallFault& fault : kCallFaults) {
    const bool isForced = !fault.atServer.empty();
    const bool isLate = fault.atProxy == Fault::kLate;
    if (!calls.empty() && (isLate || &fault == kCallFaults + 1))
      SetTimeOut(isLate ? kShortTimeOut : kTimeOut);
    for (std::size_t at = 0; at < calls.size(); ++at) {
      const std::string operation = calls[at].operation;
      if (isForced && operation == kProbe) continue;  // the ORB answers it
      if (!fault.ofOperation.empty() && fault.ofOperation != operation) continue;
      SCOPED_TRACE(operation + " [" + std::to_string(at) + "] " + std::string(fault.name));
      // A server that is dead fails the calls that follow, too.
      const bool dies = fault.atServer == "die";
      std::size_t decides = at;
      while (dies && decides + 1 < calls.size() &&
             calls[decides].failed == std::string_view(GetParam().success)) {
        ++decides;
      }
      std::string expected = fault.atServer == "refuse" ? calls[at].refused : calls[decides].failed;
      for (const auto& own : kOwnOutcomes) {
        if (own.function == GetParam().name && own.operation == operation &&
            own.raised == fault.raised) {
          expected = own.outcome;
        }
      }
      const auto arm = [&] {
        Prepare(GetParam());
        const int skip = static_cast<int>(at);
        if (fault.atProxy == Fault::kChanged) {
          m_proxy->ChangeNext(Garbage, skip);
        } else if (!isForced) {
          m_proxy->SpoilNext(fault.atProxy, skip, kShortTimeOut + milliseconds(50));
        } else {
          const auto nth = 1 + std::count(operations.begin(), operations.begin() + skip, operation);
          nlohmann::json forced = {
              {"operation", operation}, {"nth", nth}, {"action", fault.atServer}};
          if (!fault.raised.empty()) forced["exception"] = fault.raised;
          m_server->SetFaults(nlohmann::json::array({forced}));
        }
      };
      Expect(expected, isLate, arm, [&] {
        // Setting the time-out logs a number only.
        return fault.exception.empty() || operation == kReset ||
               IsLogged(operation, fault.exception);
      });
      if (dies) Restart();
      ExpectRecovery(!dies, isLate);
    }
  }
}

TEST_P(FaultMatrixTest, TheServerOrTheNamingServiceIsGone) {
  const bool asks = !GetParam().Calls().empty();
  const bool loggedOut = GetParam().state == kLoggedOut;
  const bool hasOwnOrb =
      ThisProduct().manyOrbs &&
      GetParam().name == std::string_view("TroubleshootConnection_ORBInitAndTestCallback");
  // What is said of a connection that turns out to be closed.
  const char* const lost = asks && !hasOwnOrb ? GetParam().Calls()[0].failed : GetParam().success;
  const auto expect = [&](const char* what, const char* expected, bool sessionLives, auto happen,
                          auto restore) {
    SCOPED_TRACE(what);
    Expect(expected, false, [&] {
      Prepare(GetParam());
      happen();
      Forget();
    });
    restore();
    ExpectRecovery(sessionLives, false);
  };
  const auto none = [] {};
  const auto noticeTheLoss = [&] {
    if (loggedOut) return;
    EXPECT_ANY_THROW(GL_ClientKeepAlive());
  };
  expect(
      "the server is gone", GetParam().down, true,
      [&] {
        m_proxy->Refuse(true);
        noticeTheLoss();
      },
      [&] { m_proxy->Refuse(false); });
  expect(
      "the server was restarted", loggedOut ? lost : GetParam().down, false,
      [&] {
        Restart();
        noticeTheLoss();
      },
      none);
  // The request may have arrived before the connection was gone, so it is not sent again.
  expect(
      "the connection was closed while it was idle", lost, true,
      [&] { m_proxy->CloseConnections(); }, none);
  expect(
      "the naming service is gone", GetParam().unbound, true,
      [&] {
        CorbaServerPackManager::Get()->Reset();
        m_namingProxy->Refuse(true);
      },
      [&] { m_namingProxy->Refuse(false); });
}

INSTANTIATE_TEST_SUITE_P(Functions, FaultMatrixTest,
                         ::testing::ValuesIn(RemoteFunctions().begin(), RemoteFunctions().end()),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace vq::test
