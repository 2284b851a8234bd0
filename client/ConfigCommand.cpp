// vqclient config show: every setting in force, its value and where it came from.

#include <iomanip>
#include <iostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "ClientSession.h"
#include "Commands.h"
#include "ExitCodes.h"

namespace vqclient {
namespace {

// No setting of the library is a secret; one that is added some day does not slip out here.
bool HoldsSecret(const vq::Setting& setting) {
  return setting.name.find("assword") != std::string::npos ||
         setting.name.find("ecret") != std::string::npos;
}

int Show(const CommandLine& line) {
  std::vector<const char*> arguments;
  for (const std::string& argument : line.orb) arguments.push_back(argument.c_str());
  std::list<vq::Setting> settings =
      vq::ReportSettings(CLIENT_CLI, static_cast<int>(arguments.size()), arguments.data());
  for (vq::Setting& setting : settings) {
    if (HoldsSecret(setting)) setting.value = "(hidden)";
  }
  // The library itself reads one of the client's own settings.
  const std::string help = ClientProperties::Get()->GetStringValue("LocalHelpFile", "");
  settings.push_back({"client", "LocalHelpFile", help.empty() ? "1" : help,
                      help.empty() ? "built in" : "CommonClientConf.xml"});

  if (line.json) {
    nlohmann::json list = nlohmann::json::array();
    for (const vq::Setting& setting : settings) {
      list.push_back({{"group", setting.group},
                      {"name", setting.name},
                      {"value", setting.value},
                      {"origin", setting.origin}});
    }
    std::cout << list.dump(2) << '\n';
    return kSuccess;
  }
  for (const vq::Setting& setting : settings) {
    std::cout << std::left << std::setw(10) << setting.group << std::setw(33) << setting.name
              << (setting.value.empty() ? "-" : setting.value) << "  (" << setting.origin << ")\n";
  }
  return kSuccess;
}

}  // namespace

void AddConfigCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const config = program.add_subcommand("config", "Settings of this client");
  config->require_subcommand(1);
  CLI::App* const command =
      config->add_subcommand("show", "Every setting with its value and where it came from");
  command->add_option("-n,--naming", line.naming, "Address of the naming service")
      ->type_name("HOST:PORT");
  command->callback([&] {
    line.Apply();
    exitCode = Show(line);
  });
}

}  // namespace vqclient
