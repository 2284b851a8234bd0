// Every public function that calls a server, with each of its calls failed, refused or answered by
// an exception: the result is the documented one, and the next call works. What makes a call fail,
// and when it ends then, is tried in tests/attacks.

#include <tests/reliability/ProxiedFixture.h>

#include <vq_client_common/session/internal/CorbaServerPackManager.h>

namespace vq::test {
namespace {

constexpr std::chrono::seconds kLimit{5};  // nothing that fails at once waits for anything

// What happens to one call.
struct CallFault {
  std::string_view exception;   // what the client's ORB makes of it; empty: nothing
  std::string_view atServer{};  // an action of the simulator's; "raise" raises `raised`
  std::string_view raised{};
  std::string_view ofOperation{};  // the only operation that declares it; empty: all
};

constexpr CallFault kCallFaults[] = {
    {"COMM_FAILURE"},
    {"UNKNOWN", "raise", "DB_CONNECTION_ERROR"},
    {"", "refuse"},
    {"", "raise", "PARAMETER_NOT_FOUND", kParameter},
    {"", "raise", "FAIL", kParameter},
    {"", "raise", "USER_NOT_FOUND", kParameter},
    {"", "raise", "USER_NOT_FOUND", kAnnotation},
    {"", "raise", "USER_NOT_FOUND", kUpdate},
    {"", "raise", "USER_NOT_FOUND", kLoad},
    {"", "raise", "USER_NOT_FOUND", kJobLevel},
    {"", "raise", "USER_NOT_FOUND", kQueries},
    {"", "raise", "USER_NOT_AUTHORIZED", kUpdate},
    {"", "raise", "USER_NOT_AUTHORIZED", kJobLevel},
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

class FaultMatrixTest : public ProxiedFixture,
                        public ::testing::WithParamInterface<RemoteFunction> {
 protected:
  // Whether the function ends so, and in time.
  void Expect(const std::string& expected) {
    RecordProperty("cases", ++m_cases);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(OutcomeOf(GetParam()), expected) << m_log.Text();
    EXPECT_LT(std::chrono::steady_clock::now() - start, kLimit);
  }

  bool IsLogged(std::string_view exception) const {
    const std::vector<LogCapture::Line> lines = m_log.Lines();
    return std::any_of(lines.begin(), lines.end(), [&](const LogCapture::Line& line) {
      return line.level <= 2 && line.text.find(exception) != std::string::npos;
    });
  }

  // What went wrong is over: the function works again, in the same session where that lives on.
  void ExpectRecovery(bool sessionLives) {
    const bool prepares =
        !sessionLives || GetParam().state < kLoggedIn || GetParam().EndsTheSession();
    if (prepares) Prepare(GetParam());
    Expect(GetParam().success);
  }

  int m_cases = 0;
};

TEST_P(FaultMatrixTest, FailsAtEachCall) {
  const std::span<const RemoteCall> calls = GetParam().Calls();
  Prepare(GetParam());
  Expect(GetParam().success);
  std::vector<std::string> operations;
  for (const RemoteCall& call : calls) operations.emplace_back(call.operation);
  ASSERT_EQ(m_proxy->TakeOperations(), operations) << "these calls and no others";

  for (const CallFault& fault : kCallFaults) {
    for (std::size_t at = 0; at < calls.size(); ++at) {
      const std::string operation = calls[at].operation;
      if (!fault.atServer.empty() && operation == kProbe) continue;  // the ORB answers it
      if (!fault.ofOperation.empty() && fault.ofOperation != operation) continue;
      SCOPED_TRACE(operation + " [" + std::to_string(at) + "] " + std::string(fault.atServer) +
                   " " + std::string(fault.raised));
      std::string expected = fault.atServer == "refuse" ? calls[at].refused : calls[at].failed;
      for (const auto& own : kOwnOutcomes) {
        if (own.function == GetParam().name && own.operation == operation &&
            own.raised == fault.raised) {
          expected = own.outcome;
        }
      }
      Prepare(GetParam());
      const int skip = static_cast<int>(at);
      if (fault.atServer.empty()) {
        m_proxy->ChangeNext(FaultProxy::Lose, skip);
      } else {
        const auto nth = 1 + std::count(operations.begin(), operations.begin() + skip, operation);
        nlohmann::json forced = {
            {"operation", operation}, {"nth", nth}, {"action", fault.atServer}};
        if (!fault.raised.empty()) forced["exception"] = fault.raised;
        m_server->SetFaults(nlohmann::json::array({forced}));
      }
      Expect(expected);
      // Setting the time-out logs a number only.
      EXPECT_TRUE(fault.exception.empty() || operation == kReset || IsLogged(fault.exception));
      ExpectRecovery(true);
    }
  }
}

TEST_P(FaultMatrixTest, ServerOrNamingServiceIsGone) {
  const RemoteFunction& function = GetParam();
  const bool loggedOut = function.state == kLoggedOut;
  const auto noticeTheLoss = [&] {
    if (loggedOut) return;
    EXPECT_ANY_THROW(GL_ClientKeepAlive());
  };
  Prepare(function);
  m_proxy->Refuse(true);
  noticeTheLoss();
  Forget();
  Expect(function.down);
  m_proxy->Refuse(false);
  ExpectRecovery(true);

  Prepare(function);
  Restart();
  noticeTheLoss();
  Forget();
  Expect(loggedOut ? function.success : function.down);
  ExpectRecovery(false);

  Prepare(function);
  CorbaServerPackManager::Get()->Reset();
  m_namingProxy->Refuse(true);
  Forget();
  Expect(function.unbound);
  m_namingProxy->Refuse(false);
  ExpectRecovery(true);
}

INSTANTIATE_TEST_SUITE_P(Functions, FaultMatrixTest,
                         ::testing::ValuesIn(RemoteFunctions().begin(), RemoteFunctions().end()),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace vq::test
