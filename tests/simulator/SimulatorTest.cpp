// The simulator beyond what the tests of the library see of it: what it refuses to read, its
// bookkeeping by a clock that the test moves, its control channel, and answers that the library
// never asks for.

#include <thread>

#include <simulator/Control.h>
#include <simulator/Orb.h>
#include <simulator/Server.h>
#include <tests/fixture/UnitTest.h>
#include <vq_idl/CallbackRepositoryS.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::sim {
namespace {

using nlohmann::json;
using std::chrono::hours;
using std::chrono::seconds;
using ::testing::StartsWith;
using Verdict = Accounts::Verdict;

TEST(Site, NamesThePlaceOfAFault) {
  const char* const rows[][2] = {
      {"", ":1:1: not JSON"},
      {"{\n  \"server\": oops}", ":2:13: not JSON"},
      {"[]", ": /: must be an object"},
      {R"({"servers": {}})", ": /servers: unknown key"},
      {R"({"server": {"version": 8}})", ": /server/version: must be a string"},
      {"{\"server\": {\"version\": \"a\\u0000b\"}}", ": /server/version: must not hold a zero"},
      {R"({"lockout": {"tries": -1}})", ": /lockout/tries: must be a whole number from 0 to 1000"},
      {R"({"parameters": {"gui": {"X": {"fail": 1, "userNotFound": ""}}}})", ": /parameters/gui/X"},
      {R"({"users": {"ann": {"expiry": "soo"}}})",
       ": /users/ann/expiry: 'soo' is not one of never"},
      {R"({"users": {"ann": {"groups": ["x"]}}})", ": /users/ann/groups: no group 'x'"},
      {R"({"users": {"ann": {"privileges": {"CLI_PRIV_TYPE": "ALL"}}}})",
       ": /users/ann/privileges/CLI_PRIV_TYPE: 'ALL' is not one of DEFAULT_ACCESS"},
      {R"({"users": {"ann": {"grants": {"tables": [{"level": "FULL_ACCESS"}]}}}})",
       ": /users/ann/grants/tables/0: needs criteria and level"},
      {R"({"users": {"ann": {"grants": {"tables": [{"actions": []}]}}}})",
       ": /users/ann/grants/tables/0/actions: unknown key"},
      {R"({"faults": [{"operation": "CRB_Regster"}]})",
       ": /faults/0/operation: 'CRB_Regster' is no"},
      {R"({"faults": [{"operation": "*", "action": "raise"}]})", ": /faults/0: needs an exception"},
      {R"({"faults": [{"operation": "*", "action": "raise", "exception": "X"}]})",
       ": /faults/0/exception: 'X' is not one of UNKNOWN"}};
  const auto errorOf = [](const std::string& text) -> std::string {
    try {
      ReadSite(ParseSite(text, "s"), "s");
      return "none";
    } catch (const SiteError& error) {
      return error.what();
    }
  };
  for (const auto& [text, error] : rows) {
    EXPECT_THAT(errorOf(text), StartsWith(std::string("s") + error)) << text;
  }
  EXPECT_THAT(errorOf(std::string(100'000, '[') + std::string(100'000, ']')),
              StartsWith("s: nested too deeply"));
  for (const char* file : {"/", "/no/such"}) EXPECT_THROW(ParseSiteFile(file), SiteError);
}

TEST(Control, ExecutesCommandsWholeOrNotAtAll) {
  World world;
  Control control(world, VQ_SAMPLE_SITE);
  const std::string ok = R"({"ok":true})";
  EXPECT_EQ(control.Execute(R"({"command":"reload"})"), ok);
  EXPECT_EQ(control.Execute(R"({"command":"patch","site":{"server":{"version":"9"},"x":1}})"),
            R"({"ok":false,"error":"patch: /x: unknown key"})");
  EXPECT_EQ(world.GetSite()->serverVersion, "8.0.05");
  ASSERT_NE(world.GetSite()->FindUser("ann"), nullptr);
  EXPECT_EQ(control.Execute(R"({"command":"patch","site":{"users":{"ann":null}}})"), ok);
  EXPECT_EQ(world.GetSite()->FindUser("ann"), nullptr);

  // The same faults set twice count calls anew.
  const std::string faults =
      R"({"command":"faults","faults":[{"operation":"CRB_Register","nth":2,"action":"refuse"},)"
      R"({"operation":"*","kind":"GAS","action":"die"}]})";
  const auto hits = [&](const char* kind = "GSR") {
    return world.faults.Hit("CRB_Register", kind).size();
  };
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(control.Execute(faults), ok);
    EXPECT_EQ(hits(), 0U);
    EXPECT_EQ(hits("GAS"), 2U);
    EXPECT_EQ(hits(), 0U);
  }
  EXPECT_EQ(control.Execute(faults), ok);
  hits();
  for (const char* line : {"", "[]", "{}", R"({"command":7})", R"({"command":"x"})",
                           R"({"command":"advance","ms":-1})", R"({"command":"patch","site":[]})",
                           R"({"command":"faults","faults":"all"})"}) {
    EXPECT_THAT(control.Execute(line), StartsWith(R"({"ok":false,"error":")")) << line;
  }
  EXPECT_EQ(hits(), 1U) << "faults that cannot be used leave those that are there";
}

TEST(Bookkeeping, TakesAChallengeOnceAndInTime) {
  World world;
  const auto acquire = [&] { return world.challenges.Acquire(2, seconds(10)); };
  const auto spend = [&](const Challenge& challenge, const char* password = "secret") {
    return world.challenges.Spend(Respond(challenge, Encode(password)), Encode("secret"));
  };
  const Challenge first = acquire(), second = acquire();
  EXPECT_FALSE(spend(first, "wrong"));
  EXPECT_TRUE(spend(second));
  EXPECT_FALSE(spend(second));
  EXPECT_TRUE(spend(first));
  const Challenge late = acquire();
  world.clock.Advance(seconds(10));
  EXPECT_FALSE(spend(late));
  const Challenge forgotten = acquire();
  acquire(), acquire();
  EXPECT_FALSE(spend(forgotten));
}

TEST(Bookkeeping, LocksAnAccountAfterWrongPasswords) {
  World world;
  world.Load(json::parse(R"({"lockout": {"tries": 2}, "users": {"ann": {"password": "secret"},
                             "shut": {"password": "secret", "locked": true}}})"),
             "test");
  const auto logIn = [&](const char* user, const char* plain = nullptr) {
    const Challenge challenge = world.challenges.Acquire(2, seconds(10));
    return world.accounts.LogIn(*world.GetSite(), user,
                                plain != nullptr ? plain : Respond(challenge, Encode("secret")));
  };
  EXPECT_EQ(logIn("nobody"), Verdict::kUnknownUser);
  EXPECT_EQ(logIn("shut"), Verdict::kLocked);
  EXPECT_EQ(logIn("ann", "x"), Verdict::kWrong);
  EXPECT_EQ(logIn("ann"), Verdict::kRight);  // and counts from 0 again
  EXPECT_EQ(logIn("ann", "x"), Verdict::kWrong);
  EXPECT_EQ(logIn("ann", "secret"), Verdict::kWrong);  // plain, while passwords are encoded
  EXPECT_EQ(logIn("ann"), Verdict::kLocked);
  world.Patch(json::parse(R"({"users": {"shut": {"fullName": "Bob"}}})"));
  EXPECT_EQ(logIn("ann"), Verdict::kLocked);
  world.Patch(json::parse(R"({"users": {"ann": {"fullName": "Ann"}}})"));
  EXPECT_EQ(logIn("ann"), Verdict::kRight);
}

TEST(Bookkeeping, EndsASessionThatIsNotKeptAlive) {
  World world;
  Sessions& sessions = world.sessions;
  sessions.Open("a", "ann", seconds(10));
  sessions.Open("for ever", "ann", seconds(0));
  world.clock.Advance(seconds(9));
  EXPECT_TRUE(sessions.KeepAlive("a"));
  world.clock.Advance(seconds(9));
  EXPECT_EQ(sessions.UserOf("a"), "ann");
  EXPECT_TRUE(sessions.ResetTimeOut("a", seconds(20)));
  world.clock.Advance(seconds(19));
  EXPECT_EQ(sessions.List().size(), 2U);
  world.clock.Advance(seconds(1));
  EXPECT_FALSE(sessions.KeepAlive("a") || sessions.ResetTimeOut("a", seconds(20)) ||
               sessions.Close("a"));
  sessions.Open("longest", "ann", seconds(0xFFFFFFFFU));
  world.clock.Advance(hours(24 * 366));
  EXPECT_TRUE(sessions.KeepAlive("longest") && sessions.Close("for ever"));
}

// The servants behind real references, in this process.
class Service : public ::testing::Test {
 protected:
  Service() {
    world.Load(ParseSiteFile(VQ_SAMPLE_SITE), "site");
    started->Serve();
    world.log.Open(directory / "log");
    users = QCSCorbaUsersManager::_narrow(server.Services().at("UsersManager"));
    system = VQCorbaSystemConfiguration::_narrow(server.Services().at("SystemConfiguration"));
    repository = CrbCallbackRepository::_narrow(server.Services().at("CallbackRepository"));
  }
  ~Service() override { started->Stop(); }

  std::string Response(const std::string& password) {
    CORBA::String_var first, second;
    EXPECT_EQ(users->CRB_AquireChallenge(first.out(), second.out()), 1);
    return Respond({first.in(), second.in()}, Encode(password));
  }
  std::string Register(const std::string& user, const std::string& shown) {  // the user ID
    QCSCorbaLMInfoSeq_var messages;
    CORBA::String_var message, userId, dbUser;
    users->CRB_Register(user.c_str(), shown.c_str(), "host", "account", "vq_cli", "8.0.00",
                        messages.out(), 600, message.out(), userId.out(), dbUser.out());
    return userId.in();
  }
  std::string LogIn(const std::string& user) { return Register(user, Response(user + "-secret")); }
  void Patch(const char* patch) { world.Patch(json::parse(patch)); }

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

TEST_F(Service, RefusesWhoHasNoSessionOrNoRight) {
  const std::string ann = LogIn("ann"), gone = LogIn("ann");
  EXPECT_EQ(users->CRB_Unregister(gone.c_str()), 1);
  QCSCorbaAuthorization_var object;
  QCSCorbaAuthorizationStruct_var snapshot;
  CORBA::String_var text;
  stringSeq names, ids;
  stringSeq_var values;
  boolSeq_var found;
  ids.length(1);
  const auto read = [&](const char* id) {
    system->CRB_GetSystemParameterValue("general", "PasswordEncode", text.out(), id);
  };
  const auto readAll = [&](const char* id) {
    system->CRB_GetSystemParametersValues(names, names, values.out(), found.out(), id);
  };
  for (const char* const id : {gone.c_str(), "no session", ""}) {
    ids[0] = id;
    EXPECT_EQ(users->CRB_Unregister(id) + users->CRB_ClientKeepAlive(id) +
                  users->CRB_ClientsKeepAlive(ids) + users->CRB_ResetTimeout(id, 60) +
                  repository->CRB_RegisterCallback(id, users, true) +
                  repository->CRB_UnregisterCallbacksByUserToken(id),
              0);
    EXPECT_THROW(users->CRB_UpdateUserPassword("ann", "x", id), USER_NOT_FOUND);
    EXPECT_THROW(object = users->CRB_AllocUserAuth(id), USER_NOT_FOUND);
    EXPECT_THROW(users->CRB_CheckCertificateExpiration(id, text.out()), USER_NOT_FOUND);
    EXPECT_THROW(users->CRB_GetMyAuthorizationsFromMemory(id, object.out(), snapshot.out()),
                 USER_NOT_FOUND);
    EXPECT_THROW(system->CRB_isAnnotationRequired(id, "Hold"), USER_NOT_FOUND);
    EXPECT_THROW(system->CRB_AddOnInfo("x", id), USER_NOT_FOUND);
  }
  read(""), readAll("");  // before a login there is no user ID, and parameters are told as well
  EXPECT_THROW(read("no session"), USER_NOT_FOUND);
  EXPECT_THROW(readAll("no session"), USER_NOT_FOUND);
  object = users->CRB_AllocUserAuth(ann.c_str());
  EXPECT_THROW(object->CRB_IsJobLevelAuthExist(gone.c_str()), USER_NOT_FOUND);
  EXPECT_THROW(object->CRB_IsJobLevelAuthExist(LogIn("soon").c_str()), USER_NOT_AUTHORIZED);
  EXPECT_THROW(object->CRB_InitJobActions(ann.c_str()), CORBA::NO_IMPLEMENT);
  EXPECT_THROW(users->CRB_UpdateUserPassword("admin", "x", ann.c_str()), USER_NOT_AUTHORIZED);
  EXPECT_EQ(users->CRB_UpdateUserPassword("ann", "x", LogIn("admin").c_str()), 1);
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

// What a site refuses and delays is tried with the library's trials.
TEST_F(Service, CallsBackOrSaysWhyNot) {
  const std::string id = LogIn("ann");
  Pinged servant(orb, options);
  const auto add = [&](CORBA::Object_ptr object) {
    return repository->CRB_RegisterCallback(id.c_str(), object, true);
  };
  const auto tryCallback = [&](CORBA::Long number) {
    CORBA::String_var message;
    const bool called = users->CRB_TryCallback(number, 0, message.out());
    return called ? "called" : std::string(message.in());
  };
  EXPECT_EQ(add(CORBA::Object::_nil()), 0);
  const CORBA::Long callback = add(servant.object), wrong = add(users);
  EXPECT_EQ(tryCallback(callback), "called");
  EXPECT_THAT(tryCallback(wrong + 1), StartsWith("No callback is registered under the id "));
  EXPECT_THAT(tryCallback(wrong), StartsWith("The callback failed: "));
  servant.poa->deactivate_object(servant.oid);
  EXPECT_THAT(tryCallback(callback), StartsWith("The callback failed: "));
  EXPECT_EQ(servant.pings, 1);
  EXPECT_TRUE(repository->CRB_UnregisterCallbackById(callback));
  EXPECT_FALSE(repository->CRB_UnregisterCallbackById(callback));
  EXPECT_TRUE(repository->CRB_UnregisterCallbacksByUserToken(id.c_str()));
  const CORBA::Long last = add(users);
  users->CRB_Unregister(id.c_str());
  EXPECT_FALSE(repository->CRB_UnregisterCallbackById(last)) << "it ended with its session";
}

// Calls of every kind at once, also those of one object to be called back, while the site changes.
TEST_F(Service, HoldsAgainstManyClientsAtOnce) {
  const std::string id = LogIn("admin");
  Pinged servant(orb, options);
  const CORBA::Long callback = repository->CRB_RegisterCallback(id.c_str(), servant.object, true);
  constexpr int kClients = 4;
  constexpr int kRounds = 25;
  std::vector<std::jthread> clients;
  for (int client = 0; client < kClients; ++client) {
    clients.emplace_back([&, client] {
      for (int round = 0; round < kRounds; ++round) {
        Register("ann", std::string(64, 'a'));
        EXPECT_NE(LogIn("admin"), "");
        CORBA::String_var text;
        EXPECT_TRUE(users->CRB_TryCallback(callback, 30'000, text.out())) << text.in();
        EXPECT_TRUE(repository->CRB_UnregisterCallbackById(
            repository->CRB_RegisterCallback(id.c_str(), servant.object, true)));
        const QCSCorbaAuthorization_var authorization = users->CRB_AllocUserAuth(id.c_str());
        EXPECT_FALSE(authorization->CRB_IsAccountLocked(id.c_str()));
        world.Patch({{"messages", {{"refused", std::to_string(client * kRounds + round)}}}});
      }
    });
  }
  clients.clear();
  EXPECT_EQ(servant.pings, kClients * kRounds);
  EXPECT_EQ(world.sessions.List().size(), 1U + kClients * kRounds);
}

// That it has no secret is tried with a client (tests/reliability/check_canary.py).
TEST_F(Service, LogsCallsAndAnswers) {
  Register("ann", "ann-secret");
  EXPECT_EQ(users->CRB_ClientKeepAlive(("\xFF\n\"" + std::string(1U << 20U, 'x')).c_str()), 0);
  std::vector<json> lines;
  std::ifstream file(directory / "log");
  for (std::string line; std::getline(file, line);) lines.push_back(json::parse(line));
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0]["passwordForm"], "plain");
  EXPECT_EQ(lines[0]["arguments"]["password"], json({{"length", 10}}));
  EXPECT_EQ(lines[1]["call"], lines[0]["line"]);
  EXPECT_EQ(lines[1]["verdict"], "wrong");
  EXPECT_LT(lines[2].dump().size(), kLongestLogged + 1000);
}

}  // namespace
}  // namespace vq::sim
