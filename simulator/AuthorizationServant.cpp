#include <simulator/AuthorizationServant.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <simulator/Snapshot.h>
#include <simulator/Wire.h>

namespace vq::sim {
namespace {

constexpr std::size_t kMostNames = 10'000;
constexpr std::size_t kLongestQueries = 256U << 20U;  // bytes in one answer; the ORB sends no more

// The user's grants for a kind of resource; null for one that the simulator has no grants of.
const std::vector<Grant>* GrantsFor(const User& user, QCSResTypeEnum kind) {
  using enum GrantKind;
  constexpr std::array kKinds = {kPrereqConds, kControlRes, kQuantRes, kGlobalPrefix,
                                 kCalendars,   kTables,     kOwners,   kWorkloads};
  const auto index = static_cast<std::size_t>(kind);
  return index < kKinds.size() ? &OwnGrants(user, kKinds[index]) : nullptr;
}

bool IsMember(const User& user, const char* group) {
  return std::ranges::find(user.groups, group) != user.groups.end();
}

}  // namespace

AuthorizationServant::AuthorizationServant(World& world, std::string kind,
                                           PortableServer::Current_ptr current)
    : Servant(world, std::move(kind), "Authorization"),
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

CORBA::Long AuthorizationServant::RetNames(
    const char* operation, Call::Arguments arguments, stringSeq_out out, const char* userId,
    const std::function<void(const Subject&, std::vector<std::string>&)>& list) {
  stringSeq_var wire = new stringSeq;
  const int result = Serve(operation, arguments, [&] {
    std::vector<std::string> names;
    list(Ask(userId), names);
    wire.inout() = ToWire(names);
    return 1;
  });
  out = wire._retn();
  return result;
}

char* AuthorizationServant::CRB_GetUserName(const char* userId) {
  return Dup(Serve("CRB_GetUserName", {{"userId", userId}}, [&] { return Ask(userId).name; }));
}

CORBA::Boolean AuthorizationServant::CRB_IsGroup(const char* userId) {
  return Serve("CRB_IsGroup", {{"userId", userId}}, [&] {
    Ask(userId);
    return false;
  });
}

char* AuthorizationServant::CRB_GetUserFullName(const char* userId) {
  return Dup(Serve("CRB_GetUserFullName", {{"userId", userId}},
                   [&] { return Ask(userId).user->fullName; }));
}

char* AuthorizationServant::CRB_GetDesc(const char* userId) {
  return Dup(
      Serve("CRB_GetDesc", {{"userId", userId}}, [&] { return Ask(userId).user->description; }));
}

stringSeq* AuthorizationServant::CRB_GetUserGroups(const char* userId) {
  return new stringSeq(Serve("CRB_GetUserGroups", {{"userId", userId}},
                             [&] { return ToWire(Ask(userId).user->groups); }));
}

CORBA::Boolean AuthorizationServant::CRB_BelongsToGroup(const char* group, const char* userId) {
  return Serve("CRB_BelongsToGroup", {{"group", group}, {"userId", userId}},
               [&] { return IsMember(*Ask(userId).user, group); });
}

CORBA::Boolean AuthorizationServant::CRB_IsAccountLocked(const char* userId) {
  return Serve("CRB_IsAccountLocked", {{"userId", userId}}, [&] {
    const Subject subject = Ask(userId);
    return m_world.accounts.IsLocked(*subject.site, subject.name);
  });
}

QCSAuthLevelEnum AuthorizationServant::CRB_GetPrivilegeAuthLevel(PrivilegeTypeEnum privilege,
                                                                 const char* userId) {
  return Serve("CRB_GetPrivilegeAuthLevel",
               {{"privilege", static_cast<int>(privilege)}, {"userId", userId}}, [&] {
                 const Subject subject = Ask(userId);
                 return static_cast<QCSAuthLevelEnum>(
                     subject.site->PrivilegeLevel(*subject.user, privilege));
               });
}

QCSCorbaAuth2LvlSeq* AuthorizationServant::CRB_GetResAccess(QCSResTypeEnum kind,
                                                            const char* userId) {
  return new QCSCorbaAuth2LvlSeq(
      Serve("CRB_GetResAccess", {{"kind", static_cast<int>(kind)}, {"userId", userId}}, [&] {
        const Subject subject = Ask(userId);
        const std::vector<Grant>* grants = GrantsFor(*subject.user, kind);
        return grants == nullptr ? QCSCorbaAuth2LvlSeq() : ToWire(*grants);
      }));
}

QCSCorbaAuth2LvlSeq2* AuthorizationServant::CRB_GetServiceAccess(const char* userId) {
  return new QCSCorbaAuth2LvlSeq2(Serve("CRB_GetServiceAccess", {{"userId", userId}}, [&] {
    return ServicesToWire(OwnGrants(*Ask(userId).user, GrantKind::kServices));
  }));
}

CORBA::Boolean AuthorizationServant::CRB_IsJobLevelAuthExist(const char* userId) {
  return Serve("CRB_IsJobLevelAuthExist", {{"userId", userId}},
               [&] { return Ask(userId).user->jobLevelAuthorization; });
}

CORBA::Long AuthorizationServant::CRB_RetAllGroups(stringSeq_out groups, const char* userId) {
  return RetNames("CRB_RetAllGroups", {{"userId", userId}}, groups, userId,
                  [](const Subject& subject, std::vector<std::string>& names) {
                    for (const auto& [name, group] : subject.site->groups) names.push_back(name);
                  });
}

CORBA::Long AuthorizationServant::CRB_RetAllUsers(stringSeq_out users, const char* userId) {
  return RetNames("CRB_RetAllUsers", {{"userId", userId}}, users, userId,
                  [](const Subject& subject, std::vector<std::string>& names) {
                    for (const auto& [name, user] : subject.site->users) names.push_back(name);
                  });
}

CORBA::Long AuthorizationServant::CRB_RetGroupUsers(const char* group, stringSeq_out users,
                                                    const char* userId) {
  return RetNames("CRB_RetGroupUsers", {{"group", group}, {"userId", userId}}, users, userId,
                  [&](const Subject& subject, std::vector<std::string>& names) {
                    for (const auto& [name, user] : subject.site->users) {
                      if (IsMember(user, group)) names.push_back(name);
                    }
                  });
}

CORBA::Long AuthorizationServant::Queries(const char* operation, Call::Arguments arguments,
                                          const stringSeq& names,
                                          QCSCorbaUserDefinitionQueries_out definitionQueries,
                                          QCSCorbaUserActiveQueriesSeq_out activeQueries,
                                          const char* userId) {
  QCSCorbaUserDefinitionQueries_var definitions = new QCSCorbaUserDefinitionQueries;
  QCSCorbaUserActiveQueriesSeq_var actives = new QCSCorbaUserActiveQueriesSeq;
  const int result = Serve(operation, arguments, [&] {
    // These two do not declare USER_NOT_AUTHORIZED, so any user may ask.
    const Subject subject = Ask(userId, true);
    if (names.length() > kMostNames) throw CORBA::IMP_LIMIT();
    const auto put = [&](auto& member, GrantKind kind) {
      const std::string query = MakeQuery(*subject.site, *subject.user, kind);
      member = query.c_str();
      return query.size();
    };
    put(definitions->m_DefTableQuery, GrantKind::kTables);
    put(definitions->m_DefCalendarQuery, GrantKind::kCalendars);
    put(definitions->m_DefGlobalCondsQuery, GrantKind::kGlobalPrefix);
    QCSCorbaUserVltActiveQueries active;
    const std::size_t size = put(active.m_ActiveJobQuery, GrantKind::kOwners) +
                             put(active.m_ActiveCtrlResQuery, GrantKind::kControlRes) +
                             put(active.m_ActiveQuantResQuery, GrantKind::kQuantRes) +
                             put(active.m_ActiveCondQuery, GrantKind::kPrereqConds);
    if (size * names.length() > kLongestQueries) throw CORBA::IMP_LIMIT();
    actives->length(names.length());
    for (CORBA::ULong i = 0; i < names.length(); ++i) {
      actives[i] = active;
      actives[i].m_VltName = names[i];
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
  return Queries("CRB_GetUserAuthQueries",
                 {{"text", text}, {"names", ToJson(names)}, {"userId", userId}}, names,
                 definitionQueries, activeQueries, userId);
}

CORBA::Long AuthorizationServant::CRB_GetUserAuthQueriesEx(
    const char* text, const stringSeq& names, CORBA::Boolean flag1, CORBA::Boolean flag2,
    QCSCorbaUserDefinitionQueries_out definitionQueries,
    QCSCorbaUserActiveQueriesSeq_out activeQueries, const char* userId) {
  return Queries("CRB_GetUserAuthQueriesEx",
                 {{"text", text},
                  {"names", ToJson(names)},
                  {"flag1", static_cast<bool>(flag1)},
                  {"flag2", static_cast<bool>(flag2)},
                  {"userId", userId}},
                 names, definitionQueries, activeQueries, userId);
}

}  // namespace vq::sim
