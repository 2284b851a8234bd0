// The servants behind real references, in this process: what a client is told, what the log keeps,
// and that no call brings the server down.

#include <thread>

#include <gtest/gtest.h>
#include <simulator/Control.h>
#include <simulator/Orb.h>
#include <simulator/Server.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_idl/CallbackRepositoryS.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>
#include <nlohmann/json.hpp>

namespace vq::sim {
namespace {

// What CRB_Register gave back.
struct Registered {
  CORBA::Long result = -1;
  std::string message, userId, dbUser;
  CORBA::ULong loginMessages = 0;
};

class Service : public ::testing::Test {
 protected:
  Service() {
    world.Load(ParseSiteFile(VQ_SAMPLE_SITE), "site");
    started->Serve();
    world.log.Open(directory.Path() + "log");
    users = QCSCorbaUsersManager::_narrow(server.Services().at("UsersManager"));
    system = VQCorbaSystemConfiguration::_narrow(server.Services().at("SystemConfiguration"));
    repository = CrbCallbackRepository::_narrow(server.Services().at("CallbackRepository"));
  }
  ~Service() override { started->Stop(); }

  std::string Response(const std::string& password) {
    CORBA::String_var first;
    CORBA::String_var second;
    EXPECT_EQ(users->CRB_AquireChallenge(first.out(), second.out()), 1);
    return Respond({first.in(), second.in()}, Encode(password));
  }
  Registered Register(const std::string& user, const std::string& shown) {
    QCSCorbaLMInfoSeq_var messages;
    CORBA::String_var message;
    CORBA::String_var userId;
    CORBA::String_var dbUser;
    Registered answer;
    answer.result =
        users->CRB_Register(user.c_str(), shown.c_str(), "host", "account", "vq_cli", "8.0.00",
                            messages.out(), 600, message.out(), userId.out(), dbUser.out());
    answer = {answer.result, message.in(), userId.in(), dbUser.in(), messages->length()};
    return answer;
  }
  Registered LogIn(const std::string& user) { return Register(user, Response(user + "-secret")); }
  void Patch(const char* patch) { world.Patch(nlohmann::json::parse(patch)); }
  std::vector<nlohmann::ordered_json> Log() {
    std::ifstream file(directory.Path() + "log");
    std::vector<nlohmann::ordered_json> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(nlohmann::ordered_json::parse(line));
    }
    return lines;
  }

  const vq::test::TemporaryDirectory directory;
  World world;
  Callbacks callbacks{world};
  const OrbOptions options;
  const std::unique_ptr<vq::orb::ServerOrb> started = vq::orb::StartServerOrb(options);
  const CORBA::ORB_ptr orb = started->Orb();
  Server server{orb, options, world, callbacks, "central", "GSR"};
  QCSCorbaUsersManager_var users;
  VQCorbaSystemConfiguration_var system;
  CrbCallbackRepository_var repository;
};

TEST_F(Service, ARegistrationAnswersByTheUser) {
  const struct {
    const char* user;
    CORBA::Long result;
    const char* message;
    bool session;
  } cases[] = {{"ann", 1, "", true},       {"soon", 50, "", true},
               {"expired", 48, "", false}, {"locked", 49, "", false},
               {"nobody", 0, "", false},   {"seven", 7, "The site is closed today.", false}};
  for (const auto& [user, result, message, session] : cases) {
    const Registered answer = LogIn(user);
    EXPECT_EQ(answer.result, result) << user;
    EXPECT_EQ(answer.message, message) << user;
    EXPECT_EQ(answer.userId.size(), session ? 32U : 0U) << user;
    EXPECT_EQ(answer.dbUser, session ? "vqdbo" : "") << user;
    EXPECT_EQ(answer.loginMessages, session ? 1U : 0U) << user;
    EXPECT_EQ(users->CRB_ClientKeepAlive(answer.userId.c_str()), session ? 1 : 0) << user;
  }
  EXPECT_EQ(users->CRB_Unregister(LogIn("ann").userId.c_str()), 1);
}

TEST_F(Service, AnExpiredPasswordIsChangedInOneStep) {
  QCSCorbaLMInfoSeq_var messages;
  CORBA::String_var message, userId, dbUser;
  EXPECT_EQ(users->CRB_RegisterAndUpdatePassword("expired", Response("expired-secret").c_str(),
                                                 Encode("fresh").c_str(), "host", "account",
                                                 "vq_cli", "8.0.00", messages.out(), 600,
                                                 message.out(), userId.out(), dbUser.out()),
            1);
  EXPECT_EQ(Register("expired", Response("fresh")).result, 1);
  EXPECT_EQ(users->CRB_UpdateUserPassword("expired", Encode("fresher").c_str(), userId.in()), 1);
  EXPECT_EQ(Register("expired", Response("fresher")).result, 1);
  EXPECT_THROW(users->CRB_UpdateUserPassword("ann", "x", userId.in()), USER_NOT_AUTHORIZED);
  EXPECT_THROW(users->CRB_UpdateUserPassword("ann", "x", "no session"), USER_NOT_FOUND);
  EXPECT_EQ(users->CRB_UpdateUserPassword("ann", "x", LogIn("admin").userId.c_str()), 1);
}

TEST_F(Service, ParametersAndVersionsAreToldByTheSite) {
  Patch(R"({"parameters": {"gui": {"F": {"fail": 7}, "U": {"userNotFound": "who"}}},
            "versions": [{"client": "5.", "missing": true}, {"client": "6.", "result": 56,
                          "server": "9"}]})");
  CORBA::String_var text;
  system->CRB_GetSystemParameterValue("general", "PasswordEncode", text.out(), "");
  EXPECT_STREQ(text, "1");
  const auto read = [&](const char* name, const char* userId) {
    system->CRB_GetSystemParameterValue("gui", name, text.out(), userId);
  };
  EXPECT_THROW(read("none", ""), VQCorbaSystemConfiguration::PARAMETER_NOT_FOUND);
  EXPECT_THROW(read("U", ""), USER_NOT_FOUND);
  EXPECT_THROW(read("RegisterTimeout", "no session"), USER_NOT_FOUND);
  try {
    read("F", "");
    ADD_FAILURE();
  } catch (const VQCorbaSystemConfiguration::FAIL& fail) {
    EXPECT_EQ(fail.failReason, 7);
  }
  EXPECT_THROW(system->CRB_isAnnotationRequired("", "Hold"), USER_NOT_FOUND);
  const std::string id = LogIn("ann").userId;
  EXPECT_TRUE(system->CRB_isAnnotationRequired(id.c_str(), "Hold"));
  EXPECT_FALSE(system->CRB_isAnnotationRequired(id.c_str(), "hold"));

  EXPECT_EQ(users->CRB_VerifyClientServerVersion("8.0.00", text.out()), 1);
  EXPECT_STREQ(text, "8.0.05");
  EXPECT_EQ(users->CRB_VerifyClientServerVersion("6.1", text.out()), 56);
  EXPECT_STREQ(text, "9");
  EXPECT_THROW(users->CRB_VerifyClientServerVersion("5.1", text.out()), CORBA::BAD_OPERATION);
}

TEST_F(Service, TheSnapshotAndTheObjectSayWhatTheSiteGrants) {
  Patch(R"({"users": {"ann": {"grants": {"quantRes": [
      {"criteria": "(A = '1') OR B = '2'", "level": "BROWSE_ACCESS"},
      {"criteria": "no selection", "level": "FULL_ACCESS"},
      {"criteria": "C = '3'", "level": "ACCESS_NONE"}, {"criteria": "*", "level": "FULL_ACCESS"}
      ]}}}})");
  const std::string id = LogIn("ann").userId;
  QCSCorbaAuthorization_var object;
  QCSCorbaAuthorizationStruct_var snapshot;
  users->CRB_GetMyAuthorizationsFromMemory(id.c_str(), object.out(), snapshot.out());
  ASSERT_EQ(snapshot->Privileges.length(), static_cast<CORBA::ULong>(MAX_PRIV_TYPE));
  EXPECT_EQ(snapshot->Privileges[CLI_PRIV_TYPE], BROWSE_ACCESS);
  EXPECT_EQ(snapshot->Privileges[ALERT_PRIV_TYPE], UPDATE_ACCESS);
  ASSERT_EQ(snapshot->m_CalendarsUserAccess.length(), 1U);
  EXPECT_STREQ(snapshot->m_CalendarsUserAccess[0].m_sCriteria, "CALENDAR = 'WORKDAYS'");
  EXPECT_EQ(snapshot->m_CalendarsUserAccess[0].m_eLevel, UPDATE_ACCESS);
  EXPECT_EQ(snapshot->m_TablesGroupAccess.length(), 1U);
  ASSERT_EQ(snapshot->ServiceGroupAccess.length(), 1U);
  EXPECT_EQ(snapshot->ServiceGroupAccess[0].Actions[1], 2);
  EXPECT_TRUE(CORBA::is_nil(snapshot->m_BrowseAccessJobs));

  EXPECT_TRUE(object->CRB_IsJobLevelAuthExist(id.c_str()));
  stringSeq names;
  names.length(1);
  names[0] = "DC1";
  QCSCorbaUserDefinitionQueries_var definitions;
  QCSCorbaUserActiveQueriesSeq_var actives;
  EXPECT_EQ(object->CRB_GetUserAuthQueriesEx("", names, true, false, definitions.out(),
                                             actives.out(), id.c_str()),
            1);
  EXPECT_STREQ(definitions->m_DefTableQuery, "TABLE LIKE 'PAY*'");
  EXPECT_STREQ(definitions->m_DefGlobalCondsQuery, "");
  ASSERT_EQ(actives->length(), 1U);
  EXPECT_STREQ(actives[0U].m_VltName, "DC1");
  EXPECT_STREQ(actives[0U].m_ActiveJobQuery, "OWNER = 'batch'");
  EXPECT_STREQ(actives[0U].m_ActiveQuantResQuery, "(A = '1') OR B = '2' OR *");

  // Another user's session may not ask, one that is over neither.
  EXPECT_THROW(object->CRB_IsJobLevelAuthExist(LogIn("soon").userId.c_str()), USER_NOT_AUTHORIZED);
  users->CRB_Unregister(id.c_str());
  EXPECT_THROW(object->CRB_IsJobLevelAuthExist(id.c_str()), USER_NOT_FOUND);
  EXPECT_THROW(object->CRB_InitJobActions(id.c_str()), CORBA::NO_IMPLEMENT);
}

// An object to be called back, in a POA of its own.
struct Pinged : POA_TestCallback {
  Pinged(CORBA::ORB_ptr orb, const OrbOptions& options) : poa(CreatePoa(orb, "client", options)) {
    oid = poa->activate_object(this);
    object = poa->id_to_reference(oid.in());
  }
  ~Pinged() override { poa->destroy(true, true); }
  void CRB_Ping() override { ++pings; }

  PortableServer::POA_var poa;
  PortableServer::ObjectId_var oid;
  CORBA::Object_var object;
  std::atomic<int> pings{0};
};

TEST_F(Service, ACallbackIsReallyCalled) {
  const std::string id = LogIn("ann").userId;
  Pinged servant(orb, options);
  EXPECT_EQ(repository->CRB_RegisterCallback("no session", servant.object, true), 0);
  EXPECT_EQ(repository->CRB_RegisterCallback(id.c_str(), CORBA::Object::_nil(), true), 0);
  const CORBA::Long callback = repository->CRB_RegisterCallback(id.c_str(), servant.object, true);
  ASSERT_GT(callback, 0);

  CORBA::String_var message;
  EXPECT_TRUE(users->CRB_TryCallback(callback, 0, message.out()));
  EXPECT_EQ(servant.pings, 1);
  const struct {
    const char* patch;
    CORBA::Long callback;
    const char* message;
  } cases[] = {
      {R"({})", callback + 1, "No callback is registered under the id "},
      {R"({"callback": {"refuse": true, "message": "Not today."}})", callback, "Not today."},
      {R"({"callback": {"refuse": false, "delayMs": 60000}})", callback,
       "The callback was not ans"}};
  for (const auto& [patch, number, text] : cases) {
    Patch(patch);
    EXPECT_FALSE(users->CRB_TryCallback(number, 20, message.out())) << patch;
    EXPECT_EQ(std::string(message.in()).rfind(text, 0), 0U) << message.in();
  }
  Patch(R"({"callback": null})");
  // An object that is no callback, and one that is gone.
  const CORBA::Long wrong = repository->CRB_RegisterCallback(id.c_str(), users, true);
  EXPECT_FALSE(users->CRB_TryCallback(wrong, 1000, message.out()));
  servant.poa->deactivate_object(servant.oid);
  EXPECT_FALSE(users->CRB_TryCallback(callback, 1000, message.out()));
  EXPECT_EQ(servant.pings, 1);
  EXPECT_TRUE(repository->CRB_UnregisterCallbackById(callback));
  EXPECT_FALSE(repository->CRB_UnregisterCallbackById(callback));
  EXPECT_TRUE(repository->CRB_UnregisterCallbacksByUserToken(id.c_str()));
}

// Calls of every kind at once, also those of one object to be called back, while the site changes.
TEST_F(Service, HoldsAgainstManyClientsAtOnce) {
  const std::string id = LogIn("admin").userId;
  Pinged servant(orb, options);
  const CORBA::Long callback = repository->CRB_RegisterCallback(id.c_str(), servant.object, true);
  constexpr int kClients = 4;
  constexpr int kRounds = 25;
  std::vector<std::thread> clients;
  for (int client = 0; client < kClients; ++client) {
    clients.emplace_back([&, client] {
      for (int round = 0; round < kRounds; ++round) {
        Register("ann", std::string(64, 'a'));
        EXPECT_NE(LogIn("admin").userId, "");
        CORBA::String_var text;
        EXPECT_TRUE(users->CRB_TryCallback(callback, 30'000, text.out())) << text.in();
        EXPECT_TRUE(repository->CRB_UnregisterCallbackById(
            repository->CRB_RegisterCallback(id.c_str(), servant.object, true)));
        QCSCorbaAuthorization_var authorization;
        QCSCorbaAuthorizationStruct_var snapshot;
        users->CRB_GetMyAuthorizationsFromMemory(id.c_str(), authorization.out(), snapshot.out());
        EXPECT_FALSE(authorization->CRB_IsAccountLocked(id.c_str()));
        world.Patch({{"messages", {{"refused", std::to_string(client * kRounds + round)}}}});
      }
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(servant.pings, kClients * kRounds);
  EXPECT_EQ(world.sessions.List().size(), 1U + kClients * kRounds);
}

TEST_F(Service, AFaultTakesThePlaceOfTheAnswer) {
  const std::string id = LogIn("ann").userId;
  const auto set = [&](const std::string& faults) {
    Patch(R"({"faults": null})");
    Patch((R"({"faults": [)" + faults + "]}").c_str());
  };
  set(R"({"operation": "CRB_ClientKeepAlive", "action": "return", "result": 9})");
  EXPECT_EQ(users->CRB_ClientKeepAlive(id.c_str()), 9);
  set(R"({"operation": "*", "action": "refuse", "message": "no", "nth": 1})");
  const Registered refused = Register("ann", "");
  EXPECT_EQ(refused.result, 0);
  EXPECT_EQ(refused.message, "no");
  set(R"({"operation": "*", "action": "raise", "exception": "TRANSIENT", "minor": 5,
          "completed": "MAYBE"})");
  try {
    users->CRB_Unregister(id.c_str());
    ADD_FAILURE();
  } catch (const CORBA::TRANSIENT& exception) {
    EXPECT_EQ(exception.minor(), 5U);
    EXPECT_EQ(exception.completed(), CORBA::COMPLETED_MAYBE);
  }
  EXPECT_EQ(world.sessions.List().size(), 1U);  // raised before the work
  set(R"({"operation": "*", "when": "after", "action": "raise", "exception": "USER_NOT_FOUND",
          "message": "m", "reason": "r"})");
  CORBA::String_var text;
  try {
    system->CRB_GetSystemParameterValue("general", "I18N", text.out(), "");
    ADD_FAILURE();
  } catch (const USER_NOT_FOUND& exception) {
    EXPECT_STREQ(exception.Message, "m");
    EXPECT_STREQ(exception.Reason, "r");
  }
  set(R"({"operation": "CRB_GetSystemParameterValue", "action": "return", "result": 1})");
  EXPECT_THROW(system->CRB_GetSystemParameterValue("general", "I18N", text.out(), ""),
               CORBA::NO_PERMISSION);
}

TEST_F(Service, TheLogHoldsCallsAndAnswersAndNoSecret) {
  const std::string response = Response("ann-secret");
  Register("ann", response);
  Register("ann", "ann-secret");
  EXPECT_EQ(users->CRB_ClientKeepAlive(("\xFF\n\"" + std::string(1U << 20U, 'x')).c_str()), 0);
  const auto lines = Log();
  ASSERT_EQ(lines.size(), 8U);
  EXPECT_EQ(lines[2]["operation"], "CRB_Register");
  EXPECT_EQ(lines[2]["passwordForm"], "response");
  EXPECT_EQ(lines[2]["arguments"].dump(),
            R"({"userName":"ann","password":{"length":64},"hostName":"host",)"
            R"("systemUserName":"account","clientName":"vq_cli","clientVersion":"8.0.00",)"
            R"("timeOut":600})");
  EXPECT_EQ(lines[3]["call"], lines[2]["line"]);
  EXPECT_EQ(lines[3]["result"], 1);
  EXPECT_EQ(lines[3]["verdict"], "right");
  EXPECT_EQ(lines[4]["passwordForm"], "plain");
  EXPECT_EQ(lines[5]["verdict"], "wrong");
  for (const auto& line : lines) {
    EXPECT_EQ(line.dump().find("ann-secret"), std::string::npos);
    EXPECT_EQ(line.dump().find(response), std::string::npos);
    EXPECT_EQ(line.dump().find(Encode("ann-secret")), std::string::npos);
  }
  EXPECT_LT(lines[6].dump().size(), kLongestLogged + 1000);
  EXPECT_EQ(world.log.Counts().at("CRB_Register"), 2U);
}

}  // namespace
}  // namespace vq::sim
