// vqclient auth: what the logged-in user may do, and the answer to one question about it.

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <string_view>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <vq_idl/UsersManagerC.h>

#include "ClientSession.h"
#include "Commands.h"
#include "ExitCodes.h"

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

struct Kind {
  const char* name;
  Grants QCSCorbaAuthorizationStruct::*own;
  Grants QCSCorbaAuthorizationStruct::*group;
  bool (UserAuthorizations::*question)(const QCSObject&, QCSAuthLevelEnum) const;
};

// Services have grants of another form and stand beside the table.
constexpr const char* kService = "service";
constexpr std::array kKinds{
    Kind{"table", &QCSCorbaAuthorizationStruct::m_TablesUserAccess,
         &QCSCorbaAuthorizationStruct::m_TablesGroupAccess,
         &UserAuthorizations::IsSchedTblAccessAllowed},
    Kind{"calendar", &QCSCorbaAuthorizationStruct::m_CalendarsUserAccess,
         &QCSCorbaAuthorizationStruct::m_CalendarsGroupAccess,
         &UserAuthorizations::IsCalendarAccessAllowed},
    Kind{"quantitative", &QCSCorbaAuthorizationStruct::m_QuantResUserAccess,
         &QCSCorbaAuthorizationStruct::m_QuantResGroupAccess,
         &UserAuthorizations::IsQuantResAccessAllowed},
    Kind{"control", &QCSCorbaAuthorizationStruct::m_ControlResUserAccess,
         &QCSCorbaAuthorizationStruct::m_ControlResGroupAccess,
         &UserAuthorizations::IsControlResAccessAllowed},
    Kind{"condition", &QCSCorbaAuthorizationStruct::m_PrereqCondsUserAccess,
         &QCSCorbaAuthorizationStruct::m_PrereqCondsGroupAccess,
         &UserAuthorizations::IsPrereqCondAccessAllowed},
    Kind{"global", &QCSCorbaAuthorizationStruct::m_GlobalPrefixUserAccess,
         &QCSCorbaAuthorizationStruct::m_GlobalPrefixGroupAccess,
         &UserAuthorizations::IsGlobalCondAccessAllowed},
    Kind{"owner", &QCSCorbaAuthorizationStruct::m_OwnerUserAccess,
         &QCSCorbaAuthorizationStruct::m_OwnerGroupAccess,
         &UserAuthorizations::IsOwnerAccessAllowed},
    Kind{"workload", &QCSCorbaAuthorizationStruct::m_WorkloadsUserAccess,
         &QCSCorbaAuthorizationStruct::m_WorkloadsGroupAccess,
         &UserAuthorizations::IsWorkloadAccessAllowed},
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

nlohmann::json Describe(const QCSCorbaAuthorizationStruct& snapshot) {
  nlohmann::json all{{"user", ConnectionSettings::Get()->getUserName()},
                     {"administrator", UserAuthorizations::Get()->IsAdministrator()}};
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
  ClientSession session(line);
  const int result = session.LoginAndFinish();
  if (!IsIn(result)) return ExitCodeOfSession(result);
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, line.kind, true) != 1) {
    return kNoServer;
  }
  try {
    QCSCorbaAuthorization_var object;
    QCSCorbaAuthorizationStruct_var snapshot;
    users->CRB_GetMyAuthorizationsFromMemory(LoginHandler::GetGlobal()->GetUserID().c_str(),
                                             object.out(), snapshot.out());
    const nlohmann::json all = Describe(snapshot.in());
    if (Form().json) {
      PrintJson(all);
    } else {
      PrintTable(all);
    }
    return kSuccess;
  } catch (const CORBA::Exception&) {
    Tell("The server does not tell what the user may do.");
    return kNoAnswer;
  }
}

struct Question {
  std::string kind;
  std::vector<std::string> attributes;  // NAME=VALUE
  int level = BROWSE_ACCESS;
};

int Check(CommandLine& line, const Question& question) {
  QCSObject object;
  for (const std::string& attribute : question.attributes) {
    const std::size_t equals = attribute.find('=');
    object.SetAttribute(attribute.substr(0, equals), attribute.substr(equals + 1));
  }
  ClientSession session(line);
  const int result = session.LoginAndFinish();
  if (!IsIn(result)) return ExitCodeOfSession(result);

  const UserAuthorizations& user = *UserAuthorizations::Get();
  const auto level = static_cast<QCSAuthLevelEnum>(question.level);
  const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                 [&](const Kind& row) { return row.name == question.kind; });
  const bool allowed = kind != kKinds.end() ? (user.*kind->question)(object, level)
                                            : user.IsServiceAccessAllowed(object, level);
  if (Form().json) {
    PrintJson({{"kind", question.kind}, {"level", LevelName(level)}, {"allowed", allowed}}, -1);
  } else {
    Say(allowed ? "yes" : "no");
  }
  return allowed ? kSuccess : kDenied;
}

std::string KindsAndLevels() {
  std::string words = kService;
  for (const Kind& kind : kKinds) words += std::string("|") + kind.name;
  for (const std::string_view level : kLevels) words += "|" + std::string(level);
  return words;
}

void AddCheck(CLI::App& parent, CommandLine& line, int& exitCode) {
  CLI::App* const command =
      parent.add_subcommand("check", "Ask one question; yes is exit code 0, no is 7");
  command->fallthrough();  // the connection's options belong to auth itself
  auto question = std::make_shared<Question>();
  auto words = std::make_shared<std::vector<std::string>>();
  command
      ->add_option("question", *words,
                   "KIND NAME=VALUE... LEVEL, such as: table TABLE=PAY01 UPDATE_ACCESS")
      ->required()
      ->type_name(KindsAndLevels())
      ->expected(2, 1000);
  command->callback([&line, &exitCode, question, words] {
    const auto level = std::find(kLevels.begin(), kLevels.end(), words->back());
    question->kind = words->front();
    question->attributes.assign(words->begin() + 1, words->end() - 1);
    const bool known = question->kind == kService ||
                       std::any_of(kKinds.begin(), kKinds.end(),
                                   [&](const Kind& kind) { return kind.name == question->kind; });
    if (!known) throw CLI::ValidationError("question", "no kind '" + question->kind + "'");
    if (level == kLevels.end()) {
      throw CLI::ValidationError("question", "no level '" + words->back() + "'");
    }
    for (const std::string& attribute : question->attributes) {
      if (attribute.find('=') == std::string::npos || attribute.front() == '=') {
        throw CLI::ValidationError("question", "'" + attribute + "' is not NAME=VALUE");
      }
    }
    question->level = static_cast<int>(level - kLevels.begin());
    line.ApplyWithServer();
    exitCode = Check(line, *question);
  });
}

}  // namespace

void AddAuthCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command =
      program.add_subcommand("auth", "Show what the user may do, or ask one question about it");
  line.AddConnectionOptions(*command);
  command->require_subcommand(0, 1);
  AddCheck(*command, line, exitCode);
  command->callback([&line, &exitCode, command] {
    if (!command->get_subcommands().empty()) return;
    line.ApplyWithServer();
    exitCode = Show(line);
  });
}

}  // namespace vqclient
