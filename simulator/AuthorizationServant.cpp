#include <simulator/AuthorizationServant.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <simulator/Snapshot.h>
#include <simulator/Wire.h>

namespace vq::sim {
namespace {

constexpr std::size_t kMostNames = 10'000;
constexpr std::size_t kLongestQueries = 256U << 20U;  // bytes in one answer; the ORB sends no more

// The kind of grant for a kind of resource; nothing for one that the simulator has no grants of.
const std::vector<Grant>* GrantsFor(const User& user, QCSResTypeEnum kind) {
  constexpr std::array kKinds = {
      GrantKind::PrereqConds, GrantKind::ControlRes, GrantKind::QuantRes, GrantKind::GlobalPrefix,
      GrantKind::Calendars,   GrantKind::Tables,     GrantKind::Owners,   GrantKind::Workloads};
  const auto index = static_cast<std::size_t>(kind);
  return index < kKinds.size() ? &user.rights.grants[static_cast<std::size_t>(kKinds[index])]
                               : nullptr;
}

}  // namespace

AuthorizationServant::AuthorizationServant(World& world, std::string kind,
                                           PortableServer::Current_ptr current)
    : PartOfAuthorization(world, std::move(kind)),
      m_current(PortableServer::Current::_duplicate(current)) {}

AuthorizationServant::Subject AuthorizationServant::Ask(const char* userId, bool anyUser) {
  Subject subject;
  subject.site = m_world.GetSite();
  const PortableServer::ObjectId_var id = m_current->get_object_id();
  subject.name = CORBA::String_var(PortableServer::ObjectId_to_string(id.in())).in();
  const std::string asker = UserOf(m_world, userId);
  subject.user = &Known(*subject.site, subject.name);
  const User& asking = Known(*subject.site, asker);
  if (!anyUser && asker != subject.name &&
      subject.site->PrivilegeLevel(asking, AUTHORIZATION_PRIV_TYPE) < BROWSE_ACCESS) {
    throw USER_NOT_AUTHORIZED("The record is another user's.", "No BROWSE_ACCESS");
  }
  return subject;
}

template <typename Map>
stringSeq AuthorizationServant::Names(const Map& map) {
  std::vector<std::string> names;
  for (const auto& [name, ignored] : map) names.push_back(name);
  return ToWire(names);
}

char* AuthorizationServant::CRB_GetUserName(const char* userId) {
  Call call = Begin("CRB_GetUserName");
  call.Argument("userId", userId);
  return Dup(call.Run([&] { return Ask(userId).name; }));
}

CORBA::Boolean AuthorizationServant::CRB_IsGroup(const char* userId) {
  Call call = Begin("CRB_IsGroup");
  call.Argument("userId", userId);
  return call.Run([&]() -> CORBA::Boolean {
    Ask(userId);
    return false;
  });
}

char* AuthorizationServant::CRB_GetUserFullName(const char* userId) {
  Call call = Begin("CRB_GetUserFullName");
  call.Argument("userId", userId);
  return Dup(call.Run([&] { return Ask(userId).user->fullName; }));
}

char* AuthorizationServant::CRB_GetDesc(const char* userId) {
  Call call = Begin("CRB_GetDesc");
  call.Argument("userId", userId);
  return Dup(call.Run([&] { return Ask(userId).user->description; }));
}

stringSeq* AuthorizationServant::CRB_GetUserGroups(const char* userId) {
  Call call = Begin("CRB_GetUserGroups");
  call.Argument("userId", userId);
  return new stringSeq(call.Run([&] { return ToWire(Ask(userId).user->groups); }));
}

CORBA::Boolean AuthorizationServant::CRB_BelongsToGroup(const char* group, const char* userId) {
  Call call = Begin("CRB_BelongsToGroup");
  call.Argument("group", group).Argument("userId", userId);
  return call.Run([&]() -> CORBA::Boolean {
    const Subject subject = Ask(userId);
    const auto& groups = subject.user->groups;
    return std::find(groups.begin(), groups.end(), group) != groups.end();
  });
}

CORBA::Boolean AuthorizationServant::CRB_IsAccountLocked(const char* userId) {
  Call call = Begin("CRB_IsAccountLocked");
  call.Argument("userId", userId);
  return call.Run([&]() -> CORBA::Boolean {
    const Subject subject = Ask(userId);
    const auto standings = m_world.accounts.List();
    const auto standing = standings.find(subject.name);
    return subject.user->locked || (standing != standings.end() && standing->second.locked);
  });
}

QCSAuthLevelEnum AuthorizationServant::CRB_GetPrivilegeAuthLevel(PrivilegeTypeEnum privilege,
                                                                 const char* userId) {
  Call call = Begin("CRB_GetPrivilegeAuthLevel");
  call.Argument("privilege", static_cast<int>(privilege)).Argument("userId", userId);
  return call.Run([&] {
    const Subject subject = Ask(userId);
    return static_cast<QCSAuthLevelEnum>(subject.site->PrivilegeLevel(*subject.user, privilege));
  });
}

QCSCorbaAuth2LvlSeq* AuthorizationServant::CRB_GetResAccess(QCSResTypeEnum kind,
                                                            const char* userId) {
  Call call = Begin("CRB_GetResAccess");
  call.Argument("kind", static_cast<int>(kind)).Argument("userId", userId);
  return new QCSCorbaAuth2LvlSeq(call.Run([&] {
    const Subject subject = Ask(userId);
    const std::vector<Grant>* grants = GrantsFor(*subject.user, kind);
    return grants == nullptr ? QCSCorbaAuth2LvlSeq() : ToWire(*grants);
  }));
}

QCSCorbaAuth2LvlSeq2* AuthorizationServant::CRB_GetServiceAccess(const char* userId) {
  Call call = Begin("CRB_GetServiceAccess");
  call.Argument("userId", userId);
  return new QCSCorbaAuth2LvlSeq2(call.Run([&] {
    const auto kind = static_cast<std::size_t>(GrantKind::Services);
    return ServicesToWire(Ask(userId).user->rights.grants[kind]);
  }));
}

CORBA::Boolean AuthorizationServant::CRB_IsJobLevelAuthExist(const char* userId) {
  Call call = Begin("CRB_IsJobLevelAuthExist");
  call.Argument("userId", userId);
  return call.Run([&]() -> CORBA::Boolean { return Ask(userId).user->jobLevelAuthorization; });
}

CORBA::Long AuthorizationServant::CRB_RetAllGroups(stringSeq_out groups, const char* userId) {
  Call call = Begin("CRB_RetAllGroups");
  call.Argument("userId", userId);
  stringSeq_var names = new stringSeq;
  const CORBA::Long result = call.Run([&]() -> CORBA::Long {
    names.inout() = Names(Ask(userId).site->groups);
    return 1;
  });
  groups = names._retn();
  return result;
}

CORBA::Long AuthorizationServant::CRB_RetAllUsers(stringSeq_out users, const char* userId) {
  Call call = Begin("CRB_RetAllUsers");
  call.Argument("userId", userId);
  stringSeq_var names = new stringSeq;
  const CORBA::Long result = call.Run([&]() -> CORBA::Long {
    names.inout() = Names(Ask(userId).site->users);
    return 1;
  });
  users = names._retn();
  return result;
}

CORBA::Long AuthorizationServant::CRB_RetGroupUsers(const char* group, stringSeq_out users,
                                                    const char* userId) {
  Call call = Begin("CRB_RetGroupUsers");
  call.Argument("group", group).Argument("userId", userId);
  stringSeq_var names = new stringSeq;
  const CORBA::Long result = call.Run([&]() -> CORBA::Long {
    const Subject subject = Ask(userId);
    std::vector<std::string> members;
    for (const auto& [name, user] : subject.site->users) {
      const auto& groups = user.groups;
      if (std::find(groups.begin(), groups.end(), group) != groups.end()) members.push_back(name);
    }
    names.inout() = ToWire(members);
    return 1;
  });
  users = names._retn();
  return result;
}

CORBA::Long AuthorizationServant::Queries(Call& call, const stringSeq& names,
                                          QCSCorbaUserDefinitionQueries_out definitionQueries,
                                          QCSCorbaUserActiveQueriesSeq_out activeQueries,
                                          const char* userId) {
  QCSCorbaUserDefinitionQueries_var definitions = new QCSCorbaUserDefinitionQueries;
  QCSCorbaUserActiveQueriesSeq_var actives = new QCSCorbaUserActiveQueriesSeq;
  const CORBA::Long result = call.Run([&]() -> CORBA::Long {
    // These two do not declare USER_NOT_AUTHORIZED, so they judge no one.
    const Subject subject = Ask(userId, true);
    if (names.length() > kMostNames) throw CORBA::IMP_LIMIT();
    const auto query = [&](GrantKind kind) {
      return CORBA::String_var(Dup(MakeQuery(*subject.site, *subject.user, kind)));
    };
    definitions->m_DefTableQuery = query(GrantKind::Tables);
    definitions->m_DefCalendarQuery = query(GrantKind::Calendars);
    definitions->m_DefGlobalCondsQuery = query(GrantKind::GlobalPrefix);
    const CORBA::String_var jobs = query(GrantKind::Owners);
    const CORBA::String_var control = query(GrantKind::ControlRes);
    const CORBA::String_var quantitative = query(GrantKind::QuantRes);
    const CORBA::String_var conditions = query(GrantKind::PrereqConds);
    std::size_t each = 0;
    for (const auto* text : {&jobs, &control, &quantitative, &conditions}) {
      each += std::string_view(text->in()).size();
    }
    if (each * names.length() > kLongestQueries) throw CORBA::IMP_LIMIT();
    actives->length(names.length());
    for (CORBA::ULong i = 0; i < names.length(); ++i) {
      actives[i].m_VltName = names[i];
      actives[i].m_ActiveJobQuery = jobs;
      actives[i].m_ActiveCtrlResQuery = control;
      actives[i].m_ActiveQuantResQuery = quantitative;
      actives[i].m_ActiveCondQuery = conditions;
    }
    return 1;
  });
  definitionQueries = definitions._retn();
  activeQueries = actives._retn();
  return result;
}

CORBA::Long AuthorizationServant::CRB_GetUserAuthQueries(
    const char* text, const stringSeq& names, QCSCorbaUserDefinitionQueries_out definitionQueries,
    QCSCorbaUserActiveQueriesSeq_out activeQueries, const char* userId) {
  Call call = Begin("CRB_GetUserAuthQueries");
  call.Argument("text", text).Argument("names", ToJson(names)).Argument("userId", userId);
  return Queries(call, names, definitionQueries, activeQueries, userId);
}

CORBA::Long AuthorizationServant::CRB_GetUserAuthQueriesEx(
    const char* text, const stringSeq& names, CORBA::Boolean flag1, CORBA::Boolean flag2,
    QCSCorbaUserDefinitionQueries_out definitionQueries,
    QCSCorbaUserActiveQueriesSeq_out activeQueries, const char* userId) {
  Call call = Begin("CRB_GetUserAuthQueriesEx");
  call.Argument("text", text)
      .Argument("names", ToJson(names))
      .Argument("flag1", static_cast<bool>(flag1))
      .Argument("flag2", static_cast<bool>(flag2))
      .Argument("userId", userId);
  return Queries(call, names, definitionQueries, activeQueries, userId);
}

}  // namespace vq::sim
