#include <simulator/Snapshot.h>

#include <support/selection/QCSSelectionDef.h>

namespace vq::sim {
namespace {

struct Lists {
  GrantKind kind;
  QCSCorbaAuth2LvlSeq QCSCorbaAuthorizationStruct::*user;
  QCSCorbaAuth2LvlSeq QCSCorbaAuthorizationStruct::*group;
};

using Struct = QCSCorbaAuthorizationStruct;
constexpr std::array kLists = {
    Lists{GrantKind::kTables, &Struct::m_TablesUserAccess, &Struct::m_TablesGroupAccess},
    Lists{GrantKind::kCalendars, &Struct::m_CalendarsUserAccess, &Struct::m_CalendarsGroupAccess},
    Lists{GrantKind::kQuantRes, &Struct::m_QuantResUserAccess, &Struct::m_QuantResGroupAccess},
    Lists{GrantKind::kControlRes, &Struct::m_ControlResUserAccess,
          &Struct::m_ControlResGroupAccess},
    Lists{GrantKind::kPrereqConds, &Struct::m_PrereqCondsUserAccess,
          &Struct::m_PrereqCondsGroupAccess},
    Lists{GrantKind::kGlobalPrefix, &Struct::m_GlobalPrefixUserAccess,
          &Struct::m_GlobalPrefixGroupAccess},
    Lists{GrantKind::kOwners, &Struct::m_OwnerUserAccess, &Struct::m_OwnerGroupAccess},
    Lists{GrantKind::kWorkloads, &Struct::m_WorkloadsUserAccess, &Struct::m_WorkloadsGroupAccess}};

CORBA::ULong Size(std::size_t size) {
  return static_cast<CORBA::ULong>(size);
}

// Whether it parses as a selection that can fit an object.
bool IsSelection(const std::string& criteria) {
  QCSSelectionDef selection;
  SelectionParseError ignored;
  return selection.Parse(criteria, ignored) && !selection.Terms().empty();
}

}  // namespace

QCSCorbaAuth2LvlSeq ToWire(const std::vector<Grant>& grants) {
  QCSCorbaAuth2LvlSeq wire;
  wire.length(Size(grants.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    wire[i].m_sCriteria = grants[i].criteria.c_str();
    wire[i].m_eLevel = static_cast<QCSAuthLevelEnum>(grants[i].level);
  }
  return wire;
}

QCSCorbaAuth2LvlSeq2 ServicesToWire(const std::vector<Grant>& grants) {
  QCSCorbaAuth2LvlSeq2 wire;
  wire.length(Size(grants.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const Grant& grant = grants[i];
    wire[i].Criteria = grant.criteria.c_str();
    wire[i].Level = static_cast<QCSAuthLevelEnum>(grant.level);
    wire[i].Actions.length(Size(grant.actions.size()));
    for (CORBA::ULong a = 0; a < Size(grant.actions.size()); ++a) {
      wire[i].Actions[a] = grant.actions[a];
    }
  }
  return wire;
}

stringSeq ToWire(const std::vector<std::string>& texts) {
  stringSeq wire;
  wire.length(Size(texts.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) wire[i] = texts[i].c_str();
  return wire;
}

QCSCorbaAuthorizationStruct MakeSnapshot(const Site& site, const User& user) {
  QCSCorbaAuthorizationStruct snapshot{};
  snapshot.Privileges.length(MAX_PRIV_TYPE);
  for (int i = 0; i < MAX_PRIV_TYPE; ++i) {
    snapshot.Privileges[static_cast<CORBA::ULong>(i)] =
        static_cast<QCSAuthLevelEnum>(site.PrivilegeLevel(user, i));
  }
  for (const Lists& lists : kLists) {
    snapshot.*lists.user = ToWire(OwnGrants(user, lists.kind));
    snapshot.*lists.group = ToWire(site.GroupGrants(user, lists.kind));
  }
  snapshot.ServiceUserAccess = ServicesToWire(OwnGrants(user, GrantKind::kServices));
  snapshot.ServiceGroupAccess = ServicesToWire(site.GroupGrants(user, GrantKind::kServices));
  snapshot.m_LdapOnlyAuthentication = false;
  snapshot.m_JobsFilterForGroup = GROUP_FILTER_NOT_USED;
  return snapshot;
}

std::string MakeQuery(const Site& site, const User& user, GrantKind kind) {
  const std::vector<Grant>& own = OwnGrants(user, kind);
  const std::vector<Grant> grants = own.empty() ? site.GroupGrants(user, kind) : own;
  std::string query;
  for (const Grant& grant : grants) {
    if (grant.level < BROWSE_ACCESS || !IsSelection(grant.criteria)) continue;
    query += (query.empty() ? "" : " OR ") + grant.criteria;
  }
  return query;
}

}  // namespace vq::sim
