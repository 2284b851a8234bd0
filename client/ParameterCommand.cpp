// vqclient param: reads parameters of the server.

#include <array>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "ExitCodes.h"
#include "Login.h"

namespace vqclient {
namespace {

struct Parameter {
  const char* section;
  const char* name;
};

// Those that clients of the suite ask for; the server cannot be asked which it has.
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

int Get(CommandLine& line, const std::string& section, const std::string& name) {
  const vq::Session session = LogIn(line, OptionsOf(line));
  const std::optional<std::string> value = session.Parameter(name, section);
  if (!value)
    throw Failure(kNoAnswer, "The server gives no value for " + section + "/" + name + ".");
  if (Form().json) {
    PrintJson({{"section", section}, {"name", name}, {"value", *value}}, -1);
  } else {
    std::cout << *value << '\n';
  }
  return kSuccess;
}

int List(CommandLine& line) {
  const vq::Session session = LogIn(line, OptionsOf(line));
  nlohmann::json rows = nlohmann::json::array();
  for (const Parameter& parameter : kKnown) {
    const std::optional<std::string> value = session.Parameter(parameter.name, parameter.section);
    rows.push_back({{"section", parameter.section},
                    {"name", parameter.name},
                    {"value", value ? nlohmann::json(*value) : nlohmann::json()}});
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
      "Print the parameters that clients ask for; - for one that the server does not have", true,
      List);
}

}  // namespace vqclient
