// vqclient param: reads parameters of the server.

#include <array>
#include <iomanip>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ClientSession.h"
#include "Commands.h"
#include "ExitCodes.h"

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
  ClientSession session(line);
  const int result = session.Login();
  if (!IsIn(result)) return ExitCodeOfSession(result);
  std::string value;
  if (!GetSystemParameter(name, value, section, line.kind)) {
    Tell("The server gives no value for " + section + "/" + name + ".");
    return kNoAnswer;
  }
  if (Form().json) {
    PrintJson({{"section", section}, {"name", name}, {"value", value}}, -1);
  } else {
    std::cout << value << '\n';
  }
  return kSuccess;
}

int List(CommandLine& line) {
  ClientSession session(line);
  const int result = session.Login();
  if (!IsIn(result)) return ExitCodeOfSession(result);
  nlohmann::json list = nlohmann::json::array();
  for (const Parameter& parameter : kKnown) {
    std::string value;
    const bool isSet = GetSystemParameter(parameter.name, value, parameter.section, line.kind);
    if (Form().json) {
      list.push_back({{"section", parameter.section},
                      {"name", parameter.name},
                      {"value", isSet ? nlohmann::json(value) : nlohmann::json()}});
    } else {
      std::cout << std::left << std::setw(8) << parameter.section << std::setw(32) << parameter.name
                << (isSet ? value : "-") << '\n';
    }
  }
  if (Form().json) PrintJson(list);
  return kSuccess;
}

}  // namespace

void AddParameterCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const parameters = program.add_subcommand("param", "Parameters of the server");
  parameters->require_subcommand(1);
  CLI::App* const get = parameters->add_subcommand("get", "Print the value of a parameter");
  line.AddConnectionOptions(*get);
  auto section = std::make_shared<std::string>();
  auto name = std::make_shared<std::string>();
  get->add_option("section", *section, "Section, such as general")->required();
  get->add_option("name", *name, "Name, such as Language")->required();
  get->callback([&line, &exitCode, section, name] {
    line.ApplyWithServer();
    exitCode = Get(line, *section, *name);
  });
  CLI::App* const list = parameters->add_subcommand(
      "list", "Print the parameters that clients ask for; - for one that the server does not have");
  line.AddConnectionOptions(*list);
  list->callback([&] {
    line.ApplyWithServer();
    exitCode = List(line);
  });
}

}  // namespace vqclient
