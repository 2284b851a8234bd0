// vqclient auth: the authorizations of a user, and the answer to one question about them.

#include <algorithm>
#include <array>
#include <string_view>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>
#include <client/NamingConnection.h>
#include <support/orb/CorbaConversions.h>
#include <vq_idl/UsersManagerC.h>

namespace vqclient {
namespace {

using nlohmann::json;
using Snapshot = QCSCorbaAuthorizationStruct;

constexpr std::array<std::string_view, 6> kLevels{"DEFAULT_ACCESS", "ACCESS_NONE", "BROWSE_ACCESS",
                                                  "UPDATE_ACCESS",  "FULL_ACCESS", "MAX_ACCESS"};

// In the order of PrivilegeTypeEnum.
constexpr std::array<const char*, MAX_PRIV_TYPE> kPrivileges{
    "COLLECTIONDEF", "HIERARCHIEDEF", "FILTERDEF",
    "ACTIVEVP",      "ARCHIVEVP",     "AUTHORIZATION",
    "CLI",           "ALERT",         "QIM",
    "FORECAST",      "VMC_LOGIN",     "VMC_CONFIGURATION",
    "VMC_OPERATION", "VMC_DB",        "VMC_VLT_SECURITY",
    "PERIOD_STAT",   "QIMFOR_CONFIG", "SITE_STANDARD",
    "SLS_LOGIN",     "WCM_LOGIN",     "OTHER_LOGIN",
    "AI_ACCESS"};

std::string_view LevelName(QCSAuthLevelEnum level) {
  const auto index = static_cast<std::size_t>(level);
  return index < kLevels.size() ? kLevels[index] : "?";
}

json ToJson(const QCSCORBAAuthPair& grant) {
  return {{"criteria", grant.m_sCriteria.in()}, {"level", LevelName(grant.m_eLevel)}};
}

json ToJson(const QCSCORBAAuthPair2& grant) {
  json actions = json::array();
  for (CORBA::ULong i = 0, count = LengthOnTheWire(grant.Actions); i < count; ++i) {
    actions.push_back(static_cast<int>(grant.Actions[i]));
  }
  return {
      {"criteria", grant.Criteria.in()}, {"level", LevelName(grant.Level)}, {"actions", actions}};
}

template <auto Own, auto Groups>
json GrantsOf(const Snapshot& snapshot) {
  const auto list = [](const auto& grants) {
    json all = json::array();
    for (CORBA::ULong i = 0; i < grants.length(); ++i) all.push_back(ToJson(grants[i]));
    return all;
  };
  return {{"own", list(snapshot.*Own)}, {"groups", list(snapshot.*Groups)}};
}

// A kind of object, its grants, and the question about one object.
struct Kind {
  std::string_view name;
  json (*grants)(const Snapshot&);
  bool (UserAuthorizations::*question)(const QCSObject&, QCSAuthLevelEnum) const;
};

constexpr std::array kKinds{
    Kind{"service", GrantsOf<&Snapshot::ServiceUserAccess, &Snapshot::ServiceGroupAccess>,
         &UserAuthorizations::IsServiceAccessAllowed},
    Kind{"table", GrantsOf<&Snapshot::m_TablesUserAccess, &Snapshot::m_TablesGroupAccess>,
         &UserAuthorizations::IsSchedTblAccessAllowed},
    Kind{"calendar", GrantsOf<&Snapshot::m_CalendarsUserAccess, &Snapshot::m_CalendarsGroupAccess>,
         &UserAuthorizations::IsCalendarAccessAllowed},
    Kind{"quantitative",
         GrantsOf<&Snapshot::m_QuantResUserAccess, &Snapshot::m_QuantResGroupAccess>,
         &UserAuthorizations::IsQuantResAccessAllowed},
    Kind{"control", GrantsOf<&Snapshot::m_ControlResUserAccess, &Snapshot::m_ControlResGroupAccess>,
         &UserAuthorizations::IsControlResAccessAllowed},
    Kind{"condition",
         GrantsOf<&Snapshot::m_PrereqCondsUserAccess, &Snapshot::m_PrereqCondsGroupAccess>,
         &UserAuthorizations::IsPrereqCondAccessAllowed},
    Kind{"global",
         GrantsOf<&Snapshot::m_GlobalPrefixUserAccess, &Snapshot::m_GlobalPrefixGroupAccess>,
         &UserAuthorizations::IsGlobalCondAccessAllowed},
    Kind{"owner", GrantsOf<&Snapshot::m_OwnerUserAccess, &Snapshot::m_OwnerGroupAccess>,
         &UserAuthorizations::IsOwnerAccessAllowed},
    Kind{"workload", GrantsOf<&Snapshot::m_WorkloadsUserAccess, &Snapshot::m_WorkloadsGroupAccess>,
         &UserAuthorizations::IsWorkloadAccessAllowed},
};

json Describe(const Snapshot& snapshot, bool isAdministrator) {
  json all{{"user", ConnectionSettings::Get()->getUserName()},
           {"administrator", isAdministrator},
           {"privileges", json::object()}};
  for (CORBA::ULong i = 0; i < snapshot.Privileges.length() && i < kPrivileges.size(); ++i) {
    all["privileges"][kPrivileges[i]] = LevelName(snapshot.Privileges[i]);
  }
  for (const Kind& kind : kKinds) all["grants"][std::string(kind.name)] = kind.grants(snapshot);
  return all;
}

std::string ToText(const json& all) {
  std::string text = "user           " + all["user"].get<std::string>();
  text += all["administrator"].get<bool>() ? " (administrator)\n\n" : "\n\n";
  for (const auto& [privilege, level] : all["privileges"].items()) {
    text += Padded(privilege, 19) + level.get<std::string>() + '\n';
  }
  text += '\n';
  for (const auto& [kind, lists] : all["grants"].items()) {
    if (lists["own"].empty() && lists["groups"].empty()) text += Padded(kind, 13) + "none\n";
    for (const char* holder : {"own", "groups"}) {
      for (const json& grant : lists[holder]) {
        text += Padded(kind, 13) + Padded(holder, 7) + Padded(grant["level"], 14);
        text += grant["criteria"].get<std::string>();
        if (grant.contains("actions")) text += "  actions " + grant["actions"].dump();
        text += '\n';
      }
    }
  }
  return text;
}

int Show(CommandLine& line) {
  const vq::Session session = LogIn(line, OptionsOf(line, true));
  const auto limit = line.LimitBeforeLogout();
  json all;
  try {
    QCSCorbaAuthorization_var object;
    QCSCorbaAuthorizationStruct_var snapshot;
    const auto users = session.Servant<QCSCorbaUsersManager>("UsersManager");
    if (CORBA::is_nil(users.in())) throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
    users->CRB_GetMyAuthorizationsFromMemory(ConnectionSettings::Get()->GetUserID().c_str(),
                                             object.out(), snapshot.out());
    all = Describe(snapshot.in(), session.Authorizations()->IsAdministrator());
  } catch (const CORBA::Exception& e) {
    const bool isLost = dynamic_cast<const CORBA::SystemException*>(&e) != nullptr;
    throw Failure(isLost ? kSessionLost : kNoAnswer,
                  WithCause("The server does not return the user's authorizations.", CauseOf(e)));
  }
  PrintJson(all);
  PrintText(ToText(all));
  return kSuccess;
}

// words: KIND NAME=VALUE... LEVEL
int Check(CommandLine& line, const std::vector<std::string>& words) {
  const auto kind = std::ranges::find(kKinds, words.front(), &Kind::name);
  const auto found = std::ranges::find(kLevels, words.back());
  if (kind == kKinds.end()) {
    throw CLI::ValidationError("question", "unknown kind '" + words.front() + "'");
  }
  if (found == kLevels.end()) {
    throw CLI::ValidationError("question", "unknown level '" + words.back() + "'");
  }
  QCSObject object;
  for (auto word = words.begin() + 1; word != words.end() - 1; ++word) {
    const std::size_t equals = word->find('=');
    if (equals == std::string::npos || equals == 0) {
      throw CLI::ValidationError("question", "'" + *word + "' is not NAME=VALUE");
    }
    object.SetAttribute(word->substr(0, equals), word->substr(equals + 1));
  }
  line.Apply(true);

  const vq::Session session = LogIn(line, OptionsOf(line, true));
  const auto level = static_cast<QCSAuthLevelEnum>(found - kLevels.begin());
  const bool allowed = (*session.Authorizations().*kind->question)(object, level);
  PrintJson({{"kind", kind->name}, {"level", *found}, {"allowed", allowed}}, -1);
  PrintLine(allowed ? "yes" : "no");
  return allowed ? kSuccess : kDenied;
}

std::string KindsAndLevels() {
  std::string words;
  for (const Kind& kind : kKinds) words += std::string(kind.name) + "|";
  for (const std::string_view level : kLevels) words += std::string(level) + "|";
  words.pop_back();
  return words;
}

void AddCheck(CLI::App& parent, CommandLine& line) {
  CLI::App* const command =
      parent.add_subcommand("check", "Ask one question; exit code 0 for yes, 7 for no");
  command->fallthrough();  // the connection's options belong to auth itself
  auto words = std::make_shared<std::vector<std::string>>();
  command
      ->add_option("question", *words,
                   "KIND NAME=VALUE... LEVEL, such as: table TABLE=PAY01 UPDATE_ACCESS")
      ->required()
      ->type_name(KindsAndLevels())
      ->expected(2, 1000);
  command->callback([&line, words] { line.exitCode = Check(line, *words); });
}

}  // namespace

void AddAuthCommand(CLI::App& program, CommandLine& line) {
  CLI::App* const command = line.AddCommand(
      program, "auth", "Show what the user may do, or ask one question about it", true, Show);
  command->require_subcommand(0, 1);
  AddCheck(*command, line);
}

}  // namespace vqclient
