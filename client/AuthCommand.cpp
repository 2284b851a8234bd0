// vqclient auth: the authorizations of a user, and the answer to one question about them.

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <string_view>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>
#include <client/NamingConnection.h>
#include <vq_idl/UsersManagerC.h>

namespace vqclient {
namespace {

using Grants = QCSCorbaAuth2LvlSeq;

constexpr std::array<std::string_view, 6> kLevels{"DEFAULT_ACCESS", "ACCESS_NONE", "BROWSE_ACCESS",
                                                  "UPDATE_ACCESS",  "FULL_ACCESS", "MAX_ACCESS"};

// In the order of PrivilegeTypeEnum.
constexpr std::array<std::string_view, MAX_PRIV_TYPE> kPrivileges{
    "COLLECTIONDEF", "HIERARCHIEDEF", "FILTERDEF",
    "ACTIVEVP",      "ARCHIVEVP",     "AUTHORIZATION",
    "CLI",           "ALERT",         "QIM",
    "FORECAST",      "VMC_LOGIN",     "VMC_CONFIGURATION",
    "VMC_OPERATION", "VMC_DB",        "VMC_VLT_SECURITY",
    "PERIOD_STAT",   "QIMFOR_CONFIG", "SITE_STANDARD",
    "SLS_LOGIN",     "WCM_LOGIN",     "OTHER_LOGIN",
    "AI_ACCESS"};

using Snapshot = QCSCorbaAuthorizationStruct;
using User = UserAuthorizations;

struct Kind {
  const char* name;
  Grants Snapshot::*own;
  Grants Snapshot::*group;
  bool (User::*question)(const QCSObject&, QCSAuthLevelEnum) const;
};

// Not in the table: the grants of services have another type.
constexpr const char* kService = "service";
constexpr std::array kKinds{
    Kind{"table", &Snapshot::m_TablesUserAccess, &Snapshot::m_TablesGroupAccess,
         &User::IsSchedTblAccessAllowed},
    Kind{"calendar", &Snapshot::m_CalendarsUserAccess, &Snapshot::m_CalendarsGroupAccess,
         &User::IsCalendarAccessAllowed},
    Kind{"quantitative", &Snapshot::m_QuantResUserAccess, &Snapshot::m_QuantResGroupAccess,
         &User::IsQuantResAccessAllowed},
    Kind{"control", &Snapshot::m_ControlResUserAccess, &Snapshot::m_ControlResGroupAccess,
         &User::IsControlResAccessAllowed},
    Kind{"condition", &Snapshot::m_PrereqCondsUserAccess, &Snapshot::m_PrereqCondsGroupAccess,
         &User::IsPrereqCondAccessAllowed},
    Kind{"global", &Snapshot::m_GlobalPrefixUserAccess, &Snapshot::m_GlobalPrefixGroupAccess,
         &User::IsGlobalCondAccessAllowed},
    Kind{"owner", &Snapshot::m_OwnerUserAccess, &Snapshot::m_OwnerGroupAccess,
         &User::IsOwnerAccessAllowed},
    Kind{"workload", &Snapshot::m_WorkloadsUserAccess, &Snapshot::m_WorkloadsGroupAccess,
         &User::IsWorkloadAccessAllowed},
};

std::string_view LevelName(QCSAuthLevelEnum level) {
  const auto index = static_cast<std::size_t>(level);
  return index < kLevels.size() ? kLevels[index] : "?";
}

nlohmann::json ToJson(const Grants& grants) {
  nlohmann::json list = nlohmann::json::array();
  for (CORBA::ULong i = 0; i < grants.length(); ++i) {
    list.push_back(
        {{"criteria", grants[i].m_sCriteria.in()}, {"level", LevelName(grants[i].m_eLevel)}});
  }
  return list;
}

nlohmann::json ToJson(const QCSCorbaAuth2LvlSeq2& grants) {
  nlohmann::json list = nlohmann::json::array();
  for (CORBA::ULong i = 0; i < grants.length(); ++i) {
    nlohmann::json actions = nlohmann::json::array();
    for (CORBA::ULong j = 0; j < grants[i].Actions.length(); ++j) {
      actions.push_back(static_cast<int>(grants[i].Actions[j]));
    }
    list.push_back({{"criteria", grants[i].Criteria.in()},
                    {"level", LevelName(grants[i].Level)},
                    {"actions", actions}});
  }
  return list;
}

nlohmann::json Describe(const Snapshot& snapshot, bool isAdministrator) {
  nlohmann::json all{{"user", ConnectionSettings::Get()->getUserName()},
                     {"administrator", isAdministrator}};
  for (CORBA::ULong i = 0; i < snapshot.Privileges.length() && i < kPrivileges.size(); ++i) {
    all["privileges"][std::string(kPrivileges[i])] = LevelName(snapshot.Privileges[i]);
  }
  for (const Kind& kind : kKinds) {
    all["grants"][kind.name] = {{"own", ToJson(snapshot.*kind.own)},
                                {"groups", ToJson(snapshot.*kind.group)}};
  }
  all["grants"][kService] = {{"own", ToJson(snapshot.ServiceUserAccess)},
                             {"groups", ToJson(snapshot.ServiceGroupAccess)}};
  return all;
}

void PrintTable(const nlohmann::json& all) {
  std::cout << "user           " << all["user"].get<std::string>()
            << (all["administrator"].get<bool>() ? " (administrator)" : "") << "\n\n";
  for (const auto& [privilege, level] : all["privileges"].items()) {
    std::cout << std::left << std::setw(18) << privilege << ' ' << level.get<std::string>() << '\n';
  }
  std::cout << '\n';
  for (const auto& [kind, lists] : all["grants"].items()) {
    if (lists["own"].empty() && lists["groups"].empty()) {
      std::cout << std::left << std::setw(13) << kind << "none\n";
    }
    for (const char* holder : {"own", "groups"}) {
      for (const nlohmann::json& grant : lists[holder]) {
        std::cout << std::left << std::setw(13) << kind << std::setw(7) << holder << std::setw(14)
                  << grant["level"].get<std::string>() << grant["criteria"].get<std::string>();
        if (grant.contains("actions")) std::cout << "  actions " << grant["actions"];
        std::cout << '\n';
      }
    }
  }
}

int Show(CommandLine& line) {
  const vq::Session session = LogIn(line, OptionsOf(line, true));
  QCSCorbaAuthorization_var object;
  QCSCorbaAuthorizationStruct_var snapshot;
  try {
    const auto users = session.Servant<QCSCorbaUsersManager>("UsersManager");
    if (CORBA::is_nil(users.in())) throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
    users->CRB_GetMyAuthorizationsFromMemory(ConnectionSettings::Get()->GetUserID().c_str(),
                                             object.out(), snapshot.out());
  } catch (const CORBA::Exception& e) {
    const bool isLost = dynamic_cast<const CORBA::SystemException*>(&e) != nullptr;
    throw Failure(isLost ? kSessionLost : kNoAnswer,
                  WithCause("The server does not return the user's authorizations.", CauseOf(e)));
  }
  const nlohmann::json all = Describe(snapshot.in(), session.Authorizations()->IsAdministrator());
  if (Form().json) {
    PrintJson(all);
  } else {
    PrintTable(all);
  }
  return kSuccess;
}

// words: KIND NAME=VALUE... LEVEL
int Check(CommandLine& line, const std::vector<std::string>& words) {
  const std::string& name = words.front();
  const auto kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& row) { return row.name == name; });
  if (kind == kKinds.end() && name != kService) {
    throw CLI::ValidationError("question", "unknown kind '" + name + "'");
  }
  const auto found = std::find(kLevels.begin(), kLevels.end(), words.back());
  if (found == kLevels.end()) {
    throw CLI::ValidationError("question", "unknown level '" + words.back() + "'");
  }
  const auto level = static_cast<QCSAuthLevelEnum>(found - kLevels.begin());
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
  const User& user = *session.Authorizations();
  const bool allowed = kind != kKinds.end() ? (user.*kind->question)(object, level)
                                            : user.IsServiceAccessAllowed(object, level);
  if (Form().json) {
    PrintJson({{"kind", name}, {"level", *found}, {"allowed", allowed}}, -1);
  } else {
    PrintLine(allowed ? "yes" : "no");
  }
  return allowed ? kSuccess : kDenied;
}

std::string KindsAndLevels() {
  std::string words = kService;
  for (const Kind& kind : kKinds) words += std::string("|") + kind.name;
  for (const std::string_view level : kLevels) words += "|" + std::string(level);
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
