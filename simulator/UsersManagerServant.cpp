#include <simulator/UsersManagerServant.h>

#include <utility>

#include <simulator/Snapshot.h>
#include <simulator/Wire.h>

namespace vq::sim {
namespace {

constexpr CORBA::Long kRefused = 0;
constexpr CORBA::Long kRegistered = 1;
constexpr CORBA::Long kExpired = 48;
constexpr CORBA::Long kLocked = 49;
constexpr CORBA::Long kAboutToExpire = 50;

const std::string& FirstNotEmpty(const std::string& first, const std::string& second) {
  return first.empty() ? second : first;
}

// The level that lets a user change other users' passwords.
bool MayAdministrate(const Site& site, const User& user) {
  return site.PrivilegeLevel(user, AUTHORIZATION_PRIV_TYPE) >= FULL_ACCESS;
}

QCSCorbaLMInfoSeq* ToWire(const std::vector<LoginMessage>& messages) {
  auto* wire = new QCSCorbaLMInfoSeq;
  wire->length(static_cast<CORBA::ULong>(messages.size()));
  for (CORBA::ULong i = 0; i < wire->length(); ++i) {
    (*wire)[i].severity = messages[i].severity.c_str();
    (*wire)[i].message = messages[i].message.c_str();
  }
  return wire;
}

// The arguments that describe the client.
void AddClient(Call& call, const char* hostName, const char* systemUserName, const char* clientName,
               const char* clientVersion, CORBA::ULong timeOut) {
  call.Add({{"hostName", hostName},
            {"systemUserName", systemUserName},
            {"clientName", clientName},
            {"clientVersion", clientVersion},
            {"timeOut", timeOut}});
}

}  // namespace

UsersManagerServant::UsersManagerServant(World& world, std::string kind, Callbacks& callbacks,
                                         AuthorizationOf authorizationOf)
    : Servant(world, std::move(kind), "UsersManager"),
      m_callbacks(callbacks),
      m_authorizationOf(std::move(authorizationOf)) {}

CORBA::Long UsersManagerServant::OpenSession(const Site& site, const std::string& name,
                                             CORBA::ULong timeOut, Reply& reply) {
  const User& user = *site.FindUser(name);
  std::string id = site.userIdText.empty() ? RandomHex(site.userIdLength) : site.userIdText;
  if (!m_world.sessions.Open(id, name, std::chrono::seconds(timeOut))) {
    reply.message = "The server takes no more sessions.";
    return kRefused;
  }
  reply.userId = std::move(id);
  reply.dbUserName = FirstNotEmpty(user.dbUser, site.dbUser);
  reply.loginMessages = site.loginMessages;
  return kRegistered;
}

CORBA::Long UsersManagerServant::Register(Call& call, const char* userName, const char* password,
                                          const char* newPassword, CORBA::ULong timeOut,
                                          Reply& reply) {
  const auto site = m_world.GetSite();
  const Messages& texts = site->messages;
  const Accounts::Verdict verdict = m_world.accounts.LogIn(*site, userName, password);
  constexpr const char* kNames[] = {"unknown user", "locked", "wrong", "right"};
  call.Note("verdict", kNames[static_cast<int>(verdict)]);
  if (verdict == Accounts::Verdict::kUnknownUser || verdict == Accounts::Verdict::kWrong) {
    reply.message = texts.refused;
    return kRefused;
  }
  const User& user = *site->FindUser(userName);
  reply.userId = user.replyUserId;
  if (verdict == Accounts::Verdict::kLocked) {
    reply.message = FirstNotEmpty(user.message, texts.locked);
    return kLocked;
  }
  if (user.result) {
    const bool opens = *user.result == kRegistered || *user.result == kAboutToExpire;
    if (opens && OpenSession(*site, userName, timeOut, reply) != kRegistered) return kRefused;
    reply.message = user.message;
    return *user.result;
  }
  if (newPassword != nullptr) {
    if (*newPassword == '\0') {
      reply.message = texts.refused;
      return kRefused;
    }
    m_world.accounts.ChangePassword(*site, userName, newPassword);
  }
  const Expiry expiry = m_world.accounts.ExpiryOf(*site, userName);
  if (expiry == Expiry::kExpired) {
    reply.message = FirstNotEmpty(user.message, texts.expired);
    return kExpired;
  }
  const CORBA::Long result = OpenSession(*site, userName, timeOut, reply);
  if (result != kRegistered) return result;
  if (expiry == Expiry::kSoon) {
    reply.message = FirstNotEmpty(user.message, texts.aboutToExpire);
    return kAboutToExpire;
  }
  reply.message = texts.registered;
  return kRegistered;
}

std::string_view UsersManagerServant::Form(const char* userName, const char* sent) {
  return FormOf(sent, m_world.accounts.Encoded(*m_world.GetSite(), userName));
}

CORBA::Long UsersManagerServant::CRB_CheckUserPassword(const char* userName, const char* password,
                                                       CORBA::String_out message) {
  Call call = Begin("CRB_CheckUserPassword", {{"userName", userName}});
  call.Secret("password", password, Form(userName, password));
  std::string text;
  const auto check = [&] {
    const auto site = m_world.GetSite();
    const auto verdict = m_world.accounts.Check(*site, userName, password);
    if (verdict == Accounts::Verdict::kRight) return 1;
    text = verdict == Accounts::Verdict::kLocked ? site->messages.locked : site->messages.refused;
    return 0;
  };
  const int result = call.Run(check, &text);
  message = Dup(text);
  return result;
}

CORBA::Long UsersManagerServant::CRB_UpdateUserPassword(const char* userName,
                                                        const char* newPassword,
                                                        const char* userId) {
  Call call = Begin("CRB_UpdateUserPassword", {{"userName", userName}});
  call.Secret("newPassword", newPassword, Form(userName, newPassword)).Add({{"userId", userId}});
  return call.Run([&] {
    const auto site = m_world.GetSite();
    const std::string asker = UserOf(m_world, userId);
    Known(*site, userName);
    if (asker != userName && !MayAdministrate(*site, Known(*site, asker))) {
      throw USER_NOT_AUTHORIZED("The password is another user's.", "No FULL_ACCESS");
    }
    if (*newPassword == '\0') return 0;
    m_world.accounts.ChangePassword(*site, userName, newPassword);
    return 1;
  });
}

void UsersManagerServant::Put(const Reply& reply, QCSCorbaLMInfoSeq_out loginMessages,
                              CORBA::String_out message, CORBA::String_out userId,
                              CORBA::String_out dbUserName) {
  loginMessages = ToWire(reply.loginMessages);
  message = Dup(reply.message);
  userId = Dup(reply.userId);
  dbUserName = Dup(reply.dbUserName);
}

CORBA::Long UsersManagerServant::CRB_Register(const char* userName, const char* password,
                                              const char* hostName, const char* systemUserName,
                                              const char* clientName, const char* clientVersion,
                                              QCSCorbaLMInfoSeq_out loginMessages,
                                              CORBA::ULong timeOut, CORBA::String_out message,
                                              CORBA::String_out userId,
                                              CORBA::String_out dbUserName) {
  Call call = Begin("CRB_Register", {{"userName", userName}});
  call.Secret("password", password, Form(userName, password));
  AddClient(call, hostName, systemUserName, clientName, clientVersion, timeOut);
  Reply reply;
  const CORBA::Long result = call.Run(
      [&] { return Register(call, userName, password, nullptr, timeOut, reply); }, &reply.message);
  Put(reply, loginMessages, message, userId, dbUserName);
  return result;
}

CORBA::Long UsersManagerServant::CRB_RegisterAndUpdatePassword(
    const char* userName, const char* password, const char* newPassword, const char* hostName,
    const char* systemUserName, const char* clientName, const char* clientVersion,
    QCSCorbaLMInfoSeq_out loginMessages, CORBA::ULong timeOut, CORBA::String_out message,
    CORBA::String_out userId, CORBA::String_out dbUserName) {
  Call call = Begin("CRB_RegisterAndUpdatePassword", {{"userName", userName}});
  call.Secret("password", password, Form(userName, password));
  call.Secret("newPassword", newPassword, Form(userName, newPassword));
  AddClient(call, hostName, systemUserName, clientName, clientVersion, timeOut);
  Reply reply;
  const CORBA::Long result =
      call.Run([&] { return Register(call, userName, password, newPassword, timeOut, reply); },
               &reply.message);
  Put(reply, loginMessages, message, userId, dbUserName);
  return result;
}

CORBA::Long UsersManagerServant::CRB_Unregister(const char* userId) {
  return Serve("CRB_Unregister", {{"userId", userId}}, [&] {
    m_callbacks.RemoveOf(userId);
    return m_world.sessions.Close(userId) ? 1 : 0;
  });
}

QCSCorbaAuthorization_ptr UsersManagerServant::CRB_AllocUserAuth(const char* userId) {
  QCSCorbaAuthorization_var object = Serve("CRB_AllocUserAuth", {{"userId", userId}}, [&] {
    return QCSCorbaAuthorization_var(m_authorizationOf(UserOf(m_world, userId)));
  });
  return object._retn();
}

CORBA::Long UsersManagerServant::CRB_ClientKeepAlive(const char* userId) {
  return Serve("CRB_ClientKeepAlive", {{"userId", userId}},
               [&] { return m_world.sessions.KeepAlive(userId) ? 1 : 0; });
}

CORBA::Long UsersManagerServant::CRB_ClientsKeepAlive(const stringSeq& userIds) {
  return Serve("CRB_ClientsKeepAlive", {{"userIds", ToJson(userIds)}}, [&] {
    int all = 1;
    for (CORBA::ULong i = 0; i < userIds.length(); ++i) {
      if (!m_world.sessions.KeepAlive(userIds[i].in())) all = 0;
    }
    return all;
  });
}

CORBA::Long UsersManagerServant::CRB_ResetTimeout(const char* userId, CORBA::ULong timeOut) {
  return Serve("CRB_ResetTimeout", {{"userId", userId}, {"timeOut", timeOut}}, [&] {
    return m_world.sessions.ResetTimeOut(userId, std::chrono::seconds(timeOut)) ? 1 : 0;
  });
}

CORBA::Boolean UsersManagerServant::CRB_CheckCertificateExpiration(const char* userId,
                                                                   CORBA::String_out message) {
  std::string text;
  const auto check = [&] {
    UserOf(m_world, userId);
    return false;
  };
  const bool result = Serve("CRB_CheckCertificateExpiration", {{"userId", userId}}, check, &text);
  message = Dup(text);
  return result;
}

void UsersManagerServant::CRB_GetMyAuthorizationsFromMemory(
    const char* userId, QCSCorbaAuthorization_out authorization,
    QCSCorbaAuthorizationStruct_out details) {
  QCSCorbaAuthorization_var object;
  QCSCorbaAuthorizationStruct_var snapshot;
  Serve("CRB_GetMyAuthorizationsFromMemory", {{"userId", userId}}, [&] {
    const auto site = m_world.GetSite();
    const std::string name = UserOf(m_world, userId);
    snapshot = new QCSCorbaAuthorizationStruct(MakeSnapshot(*site, Known(*site, name)));
    object = m_authorizationOf(name);
  });
  authorization = object._retn();
  details = snapshot._retn();
}

CORBA::Long UsersManagerServant::CRB_AquireChallenge(CORBA::String_out first,
                                                     CORBA::String_out second) {
  Challenge challenge;
  const int result = Serve("CRB_AquireChallenge", {}, [&] {
    const auto site = m_world.GetSite();
    challenge = m_world.challenges.Acquire(site->challengesPending, site->challengeLifetime);
    return 1;
  });
  first = Dup(challenge.first);
  second = Dup(challenge.second);
  return result;
}

CORBA::Long UsersManagerServant::CRB_VerifyClientServerVersion(const char* clientVersion,
                                                               CORBA::String_out serverVersion) {
  std::string version;
  const auto verify = [&] {
    const auto site = m_world.GetSite();
    version = site->serverVersion;
    for (const VersionRule& rule : site->versions) {
      if (!std::string_view(clientVersion).starts_with(rule.client)) continue;
      if (rule.missing) throw CORBA::BAD_OPERATION();
      version = rule.server;
      return rule.result;
    }
    return 1;
  };
  const int result =
      Serve("CRB_VerifyClientServerVersion", {{"clientVersion", clientVersion}}, verify, &version);
  serverVersion = Dup(version);
  return result;
}

CORBA::Boolean UsersManagerServant::CRB_TryCallback(CORBA::Long callbackId, CORBA::Long timeOut,
                                                    CORBA::String_out message) {
  std::string text;
  const auto ping = [&] {
    return m_callbacks.Ping(callbackId, std::chrono::milliseconds(timeOut), text);
  };
  const bool result =
      Serve("CRB_TryCallback", {{"callbackId", callbackId}, {"timeOut", timeOut}}, ping, &text);
  message = Dup(text);
  return result;
}

}  // namespace vq::sim
