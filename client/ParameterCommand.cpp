// vqclient param: reads parameters of the server.

#include <array>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>

namespace vqclient {
namespace {

struct Parameter {
  const char* section;
  const char* name;
};

// The parameters that clients of the suite read. No operation lists those of a server.
constexpr std::array kKnown{Parameter{"general", "ApplicationFieldIsMandatory"},
                            Parameter{"general", "I18N"},
                            Parameter{"general", "Language"},
                            Parameter{"general", "MaxPasswordLength"},
                            Parameter{"general", "MinPasswordLength"},
                            Parameter{"general", "PasswordComplexityOnOff"},
                            Parameter{"general", "PasswordComplexityRules"},
                            Parameter{"general", "PasswordEncode"},
                            Parameter{"general", "PermitManualUnlock"},
                            Parameter{"general", "SubApplicationFieldIsMandatory"},
                            Parameter{"general", "WarningSSLExpirationDays"},
                            Parameter{"gsr", "Action_OrderForce_AuthLevel"},
                            Parameter{"gsr", "AuthorSecurity"},
                            Parameter{"gui", "OrbShutdownWait"},
                            Parameter{"gui", "RegisterTimeout"},
                            Parameter{"gui", "UserChangePassword"}};

// Null when the server does not return it. Raises Failure when the server cannot be asked, or no
// longer knows the session.
nlohmann::json Read(vq::Session& session, const std::string& section, const std::string& name) {
  if (const auto value = session.Parameter(name, section)) return *value;
  const std::string cause = GL_GetFailureCause();
  if (!cause.empty()) throw Failure(kSessionLost, WithCause("The server cannot be asked.", cause));
  if (session.KeepAlive() == vq::LoginResult::kFailed) throw Failure(kSessionLost, kUnknownSession);
  return nullptr;
}

int Get(CommandLine& line, const std::string& section, const std::string& name) {
  vq::Session session = LogIn(line, OptionsOf(line));
  const auto limit = line.LimitBeforeLogout();
  const nlohmann::json value = Read(session, section, name);
  if (value.is_null()) {
    throw Failure(kNoAnswer, "The server returns no value for " + section + "/" + name + ".");
  }
  PrintJson({{"section", section}, {"name", name}, {"value", value}}, -1);
  PrintText(value.get<std::string>() + '\n');
  return kSuccess;
}

int List(CommandLine& line) {
  vq::Session session = LogIn(line, OptionsOf(line));
  const auto limit = line.LimitBeforeLogout();
  nlohmann::json rows = nlohmann::json::array();
  for (const auto& [section, name] : kKnown) {
    rows.push_back({{"section", section}, {"name", name}, {"value", Read(session, section, name)}});
  }
  PrintRows(rows, {{"section", 8}, {"name", 32}, {"value", 0}});
  return kSuccess;
}

}  // namespace

void AddParameterCommand(CLI::App& program, CommandLine& line) {
  CLI::App* const parameters = program.add_subcommand("param", "Parameters of the server");
  parameters->require_subcommand(1);
  auto section = std::make_shared<std::string>();
  auto name = std::make_shared<std::string>();
  CLI::App* const get =
      line.AddCommand(*parameters, "get", "Print the value of a parameter", true,
                      [section, name](CommandLine& given) { return Get(given, *section, *name); });
  get->add_option("section", *section, "Section, such as general")->required();
  get->add_option("name", *name, "Name, such as Language")->required();
  line.AddCommand(
      *parameters, "list",
      "Print the parameters that clients read; - for one that the server does not return", true,
      List);
}

}  // namespace vqclient
