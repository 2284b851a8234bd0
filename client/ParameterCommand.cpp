// vqclient param get: reads one parameter of the server.

#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ClientSession.h"
#include "Commands.h"
#include "ExitCodes.h"

namespace vqclient {
namespace {

int Get(CommandLine& line, const std::string& section, const std::string& name) {
  ClientSession session(line);
  const int result = session.Login();
  if (result != 1 && result != 50) return ExitCodeOfSession(result);
  std::string value;
  if (!GetSystemParameter(name, value, section, line.kind)) {
    Tell("The server gives no value for " + section + "/" + name + ".");
    return kNoAnswer;
  }
  if (line.json) {
    std::cout << nlohmann::json{{"section", section}, {"name", name}, {"value", value}} << '\n';
  } else {
    std::cout << value << '\n';
  }
  return kSuccess;
}

}  // namespace

void AddParameterCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const parameters = program.add_subcommand("param", "Parameters of the server");
  parameters->require_subcommand(1);
  CLI::App* const command = parameters->add_subcommand("get", "Print the value of a parameter");
  line.AddConnectionOptions(*command);
  auto section = std::make_shared<std::string>();
  auto name = std::make_shared<std::string>();
  command->add_option("section", *section, "Section, such as general")->required();
  command->add_option("name", *name, "Name, such as Language")->required();
  command->callback([&line, &exitCode, section, name] {
    line.Apply();
    exitCode = Get(line, *section, *name);
  });
}

}  // namespace vqclient
