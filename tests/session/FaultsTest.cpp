// Every remote operation of a session against everything that can go wrong on its way.

#include <tests/fixture/FaultProxy.h>
#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using Fault = FaultProxy::Fault;
using Operations = std::vector<std::string>;
using std::chrono::milliseconds;

constexpr milliseconds kTimeOut{1000};
// A call ends within 100 ms of the time-out; the rest is for a machine that is busy with other
// tests. Two time-outs in a row do not fit.
constexpr milliseconds kLimit = kTimeOut + milliseconds(100) + milliseconds(750);

constexpr const char* kWentDown =
    "0: This error may be caused by any of the following:\n - Server 'central' has incorrect or "
    "old version.\n - Server 'central' went down during login process.\t";

// The result, or the code and text of what is raised.
template <class Call>
std::string OutcomeOf(Call call) {
  try {
    return std::to_string(call());
  } catch (BaseLoginEx& e) {
    return std::to_string(e.GetReturnCode()) + ": " + e.GetReason();
  }
}

std::string Register() {
  std::string message;
  return OutcomeOf([&] { return LoginHandler::GetGlobal()->Login(message, 600); });
}

std::string ChangePassword(bool expired) {
  const int result = SetUserPassword("new-password", expired);
  const bool stored = ConnectionSettings::Get()->GetPassword(ENC_PLAIN) == "new-password";
  return std::to_string(result) + (stored ? ", stored" : ", not stored");
}

// One remote operation, called so that it is the first thing to go out.
struct Operation {
  const char* name;
  bool versionGate;        // with an installed client
  const char* encode;      // "PasswordEncode" while the session logs in
  const char* encodeThen;  // and when the operation is called
  std::string (*call)();
  std::string success;
  std::string failure;
  int level;
  std::string line;  // in front of the exception's name
};

const Operation kOperations[] = {
    {"CRB_GetSystemParameterValue", false, "1", "0",
     [] {
       ConnectionSettings::Get()->LoadEncodePassword(E_GSR);
       return std::to_string(ConnectionSettings::Get()->IsEncodePassword());
     },
     "0", "1", 2, "CORBA::Exception - "},
    {"CRB_VerifyClientServerVersion", true, "1", "1", Register, "1", kWentDown, 1,
     "CORBA::Exception was caught during versions verification ("},
    {"CRB_AquireChallenge", false, "1", "1", Register, "1", kWentDown, 1,
     "CORBA::SystemException caught: "},
    {"CRB_Register", false, "0", "0", Register, "1", kWentDown, 1,
     "CORBA::SystemException caught: "},
    {"CRB_ClientKeepAlive", false, "1", "1", [] { return OutcomeOf(GL_ClientKeepAlive); }, "1",
     kWentDown, 1, "CORBA::Exception was caught during Client Keep Alive ("},
    {"CRB_ResetTimeout", false, "1", "1",
     [] { return OutcomeOf([] { return LoginHandler::GetGlobal()->RegisterTimeOut(60); }); }, "1",
     kWentDown, 1, "CORBA::SystemException has cought: "},
    {"CRB_Unregister", false, "1", "1", [] { return std::to_string(GL_LogOut(false)); }, "1", "1",
     2, "Caught a CORBA System Exception - "},
    {"CRB_GetSystemParameterValue", false, "1", "1",
     [] {
       std::string value = "old";
       return std::to_string(GetSystemParameter("Language", value, "general", E_GSR)) + value;
     },
     "1english", "0old", 2, "CORBA::Exception - "},
    {"CRB_isAnnotationRequired", false, "1", "1",
     [] { return std::to_string(isAnnotationRequired("job.delete")); }, "1", "0", 1,
     "Failed with CORBA::SystemException [name = "},
    {"CRB_UpdateUserPassword", false, "1", "1", [] { return ChangePassword(false); }, "1, stored",
     "0, not stored", 1, "Failed with CORBA::SystemException [name = "},
    // What is left of asking for the client's version looks like success; nothing is stored.
    {"CRB_RegisterAndUpdatePassword", true, "0", "0", [] { return ChangePassword(true); },
     "1, stored", "1, not stored", 1, "Failed with CORBA::SystemException [name = "},
};

class FaultsTest : public SessionFixture {
 protected:
  void SetUp() override {
    SessionFixture::SetUp();
    const std::string limit = std::to_string(kTimeOut.count());
    m_orbArguments = {"-ORBConnectTimeout", limit, "-ORBCallTimeout", limit};
    m_site = BaseSite();
    m_site["annotationRequired"] = {"job.delete"};
    // The port is settled beforehand: one that the system chose cannot be had again at once.
    StartServerBehindProxy(FreePort());
    m_proxy = std::make_unique<FaultProxy>(m_server->Port());
  }

  void StartServerBehindProxy(int port) {
    m_server.reset();  // before the next one listens in its place
    m_server = std::make_unique<Server>(m_directory, m_naming->Reference(), m_site,
                                        std::vector<std::string>{"GSR"}, "central", port,
                                        Server::kBehindProxy);
  }

  void RestartServer() { StartServerBehindProxy(m_server->Port()); }

  void LogInFor(const Operation& operation) {
    if (operation.versionGate) {
      InstallClient("8.0.05");
    } else {
      std::filesystem::remove(m_directory / "root/installed-products.ini");
    }
    m_server->SetParameter("general", "PasswordEncode", operation.encode);
    ASSERT_EQ(Login(), 1) << operation.name << '\n' << m_log.Text();
    m_server->SetParameter("general", "PasswordEncode", operation.encodeThen);
    m_proxy->TakeOperations();
    m_log.Clear();
  }

  // The call that finds the connection closed; the next one opens another.
  static void NoticeTheLoss() { EXPECT_THROW(GL_ClientKeepAlive(), ServerTypeEx); }

  nlohmann::json m_site;
  std::unique_ptr<Server> m_server;
  std::unique_ptr<FaultProxy> m_proxy;
};

TEST_F(FaultsTest, EveryOperationEndsAsItShouldWhateverHappensToIt) {
  constexpr std::string_view kKilled = "killed in mid call";
  const struct {
    std::string_view name;
    const char* exception;  // null: the call succeeds
    std::function<void()> happen;
  } kFaults[] = {
      {"refused", "TRANSIENT",
       [&] {
         m_proxy->Refuse(true);
         NoticeTheLoss();
       }},
      {"silent", "TIMEOUT", [&] { m_proxy->SpoilNext(Fault::kSilent); }},
      {"reset", "COMM_FAILURE", [&] { m_proxy->SpoilNext(Fault::kReset); }},
      {"half a reply", "COMM_FAILURE", [&] { m_proxy->SpoilNext(Fault::kHalfReply); }},
      {"in slices", nullptr, [&] { m_proxy->SpoilNext(Fault::kSlices); }},
      {"late", nullptr, [&] { m_proxy->SpoilNext(Fault::kLate); }},
      {kKilled, "COMM_FAILURE",
       [&] {
         m_server->SetFaults({{{"operation", "*"}, {"nth", 1}, {"action", "die"}}});
       }},
      {"restarted on the same port", "OBJECT_NOT_EXIST",
       [&] {
         RestartServer();
         NoticeTheLoss();
       }},
      // The request may have arrived before the connection was gone, so it is not sent again.
      {"closed while idle", "COMM_FAILURE", [&] { m_proxy->CloseConnections(); }},
  };
  for (const auto& fault : kFaults) {
    for (const Operation& operation : kOperations) {
      SCOPED_TRACE(operation.name + (" " + std::string(fault.name)));
      LogInFor(operation);
      fault.happen();
      m_log.Clear();
      m_proxy->TakeOperations();
      const auto start = std::chrono::steady_clock::now();
      const std::string outcome = operation.call();
      EXPECT_LT(std::chrono::steady_clock::now() - start, kLimit);
      const bool fails = fault.exception != nullptr;
      EXPECT_EQ(outcome, fails ? operation.failure : operation.success) << m_log.Text();
      if (fails) {
        const bool named = !operation.line.ends_with("cought: ");  // or else only numbered
        EXPECT_EQ(m_log.Count(operation.level, operation.line + (named ? fault.exception : "")), 1)
            << m_log.Text();
      } else {
        EXPECT_EQ(m_log.Count(1, "") + m_log.Count(2, ""), 0) << m_log.Text();
      }
      const Operations asked = m_proxy->TakeOperations();
      EXPECT_TRUE(asked.empty() ? fails : asked.front() == operation.name);
      m_proxy->Refuse(false);
      if (fault.name == kKilled) RestartServer();
      GL_LogOut(false);
      m_server->Control({{"command", "reset"}});
    }
  }
}

TEST_F(FaultsTest, OneLoginCallsOverTheWireWhatItHasToAndNothingElse) {
  InstallClient("8.0.05");
  FaultProxy naming(m_naming->Port());
  m_orbArguments.insert(m_orbArguments.end(),
                        {"-ORBInitRef", "NameService=corbaloc:iiop:127.0.0.2:" +
                                            std::to_string(m_naming->Port()) + "/NameService"});
  const Operations login{"CRB_GetSystemParameterValue", "CRB_GetSystemParameterValue",
                         "CRB_VerifyClientServerVersion", "CRB_AquireChallenge", "CRB_Register"};
  ASSERT_EQ(Login(), 1) << m_log.Text();
  Operations first = login;
  first.insert(first.begin(), "_non_existent");      // "SystemConfiguration" is probed once
  first.insert(first.begin() + 3, "_non_existent");  // and so is "UsersManager"
  EXPECT_EQ(m_proxy->TakeOperations(), first);
  // The naming service is reached for once when the ORB starts, and asked once for each of the two.
  EXPECT_EQ(naming.TakeOperations(), (Operations{"_non_existent", "resolve", "resolve"}));

  ASSERT_EQ(Login(), 1);
  EXPECT_EQ(m_proxy->TakeOperations(), login);
  EXPECT_EQ(naming.TakeOperations(), Operations{});
}

TEST_F(FaultsTest, ASessionOfManyHoursReportsEachLossOnceAndLogsInAgain) {
  ASSERT_EQ(Login(), 1) << m_log.Text();
  for (int hour = 0; hour < 24; ++hour) {
    const bool restarted = hour % 8 == 7;
    if (restarted) RestartServer();
    for (int minute = 0; minute < 60; minute += 5) {
      m_server->Advance(std::chrono::minutes(5));
      m_log.Clear();
      const bool closed = minute == 30;
      if (closed) m_proxy->CloseConnections();
      if (closed || (restarted && minute == 0)) {
        EXPECT_THROW(GL_ClientKeepAlive(), ServerTypeEx);
        EXPECT_EQ(m_log.Count(1, ""), 1) << m_log.Text();
      }
      if (restarted && minute == 0) {
        GL_LogOut(false);
        EXPECT_EQ(Login(), 1) << m_log.Text();
      }
      m_log.Clear();
      EXPECT_EQ(GL_ClientKeepAlive(), 1) << hour << ':' << minute << '\n' << m_log.Text();
      EXPECT_EQ(m_log.Count(1, "") + m_log.Count(2, ""), 0) << m_log.Text();
    }
  }
  // A session that was forgotten is no failure of the server's, and registering again is enough.
  m_server->Advance(std::chrono::minutes(11));
  EXPECT_EQ(GL_ClientKeepAlive(), 0);
  EXPECT_EQ(GL_ReLogin(600), 1);
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

}  // namespace
}  // namespace vq::test
