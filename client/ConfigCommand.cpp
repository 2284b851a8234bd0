// vqclient config: all settings with values and origins, and changes of the stored ones.

#include <filesystem>
#include <iostream>
#include <set>
#include <string_view>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Suggestion.h>

namespace vqclient {
namespace {

std::list<vq::Setting> Settings(const CommandLine& line) {
  std::list<vq::Setting> settings = line.Report();
  for (vq::Setting& setting : settings) {
    // This program passes its values to the library as command line arguments.
    const SharedOption* const option = FindSharedOption(setting.name);
    if (option == nullptr || setting.origin != "command line") continue;
    if (const auto found = line.values.find(option->name); found != line.values.end()) {
      setting.origin = found->second.origin;
    }
  }
  // The library reads one client property.
  const std::string help = ClientProperties::Get()->GetStringValue("LocalHelpFile", "");
  settings.push_back({"client", "LocalHelpFile", help.empty() ? "1" : help,
                      help.empty() ? "built in" : "CommonClientConf.xml"});
  const auto add = [&](const std::string& name) {
    const auto found = line.values.find(name);
    const bool isSet = found != line.values.end();
    settings.push_back({"vqclient", name, isSet ? found->second.text : "",
                        isSet ? found->second.origin : "not set"});
  };
  add("site");
  for (const SharedOption& option : SharedOptions()) {
    if (*option.setting == '\0') add(option.name);
  }
  return settings;
}

int Show(CommandLine& line) {
  nlohmann::json rows = nlohmann::json::array();
  int exitCode = kSuccess;
  for (const vq::Setting& setting : Settings(line)) {
    rows.push_back({{"group", setting.group},
                    {"name", setting.name},
                    {"value", setting.value},
                    {"origin", setting.origin}});
    if (!Form().json) {
      if (setting.value.empty()) rows.back()["value"] = "-";
      rows.back()["origin"] = "  (" + setting.origin + ")";
    }
    if (setting.group != "ORB" || setting.name.starts_with('-')) continue;
    PrintError("The settings cannot be used: " + setting.value);
    exitCode = kRefused;
  }
  PrintRows(rows, {{"group", 10}, {"name", 33}, {"value", 0}, {"origin", 0}});
  return exitCode;
}

struct Change {
  std::string name;
  std::optional<std::string> value;
  bool system = false;
};

// The scope of a setting, and its name there. Raises CLI::ValidationError for an unknown setting.
std::pair<std::string, std::string> PlaceOf(const std::string& name, const std::string& site) {
  std::vector<std::string> names{"site"};
  for (const SharedOption& option : SharedOptions()) names.emplace_back(option.name);
  if (name == "site" && site.empty()) return {"vqclient", name};
  const SharedOption* const option = FindSharedOption(name);
  if (option == nullptr) {
    throw CLI::ValidationError("unknown setting '" + name + "'" + Nearest(name, names));
  }
  return {ScopeOf(*option, site), *option->setting != '\0' ? option->setting : name};
}

int Store(const CommandLine& line, const Change& change) {
  const auto [scope, name] = PlaceOf(change.name, line.given.at("site"));
  std::optional<std::string> value = change.value;
  if (const SharedOption* const option = FindSharedOption(change.name); option && value) {
    if (const std::string reason = WhyInvalid(*option, *value); !reason.empty()) {
      throw CLI::ValidationError(change.name, reason);
    }
    value = OrbValue(*option, *value);
    // The next run may have another working directory.
    if (option->type == std::string_view("FILE")) value = std::filesystem::absolute(*value);
  }
  const vq::StoreResult stored = vq::StoreSetting(
      scope, name, value, change.system ? vq::SettingsLayer::kHost : vq::SettingsLayer::kOwn);
  if (!stored.error.empty()) throw Failure(kRefused, "The setting is not changed: " + stored.error);
  if (Form().json) {
    PrintJson({{"file", stored.file},
               {"scope", scope},
               {"name", name},
               {"value", value ? nlohmann::json(*value) : nlohmann::json()}},
              -1);
  }
  PrintLine(stored.file + ", " + scope + ": " + name + (value ? " = " + *value : " is not set"));
  return kSuccess;
}

int ShowSites() {
  constexpr std::string_view kPrefix = "site ";
  std::string error;
  std::set<std::string> sites;
  for (const vq::StoredSetting& setting : vq::ReadStoredSettings(error)) {
    if (setting.scope.starts_with(kPrefix)) sites.insert(setting.scope.substr(kPrefix.size()));
  }
  if (Form().json) PrintJson(sites, -1);
  for (const std::string& site : sites) {
    if (!Form().json) std::cout << site << '\n';
  }
  if (error.empty()) return kSuccess;
  PrintError(error);
  return kRefused;
}

std::string SettingNames() {
  std::string names = "site";
  for (const SharedOption& option : SharedOptions()) names += std::string("|") + option.name;
  return names;
}

void AddChange(CLI::App& config, CommandLine& line, bool set) {
  CLI::App* const command = config.add_subcommand(
      set ? "set" : "unset", set ? "Store a setting, for the user or with --site for one site"
                                 : "Remove a stored setting");
  auto change = std::make_shared<Change>();
  command
      ->add_option("name", change->name, "The long name of an option without the dashes, or site")
      ->required()
      ->type_name(SettingNames());
  if (set) {
    change->value.emplace();
    command->add_option("value", *change->value, "Its value")->required();
  }
  command->add_flag("--system", change->system, "For all users of this host");
  command->callback([&line, change] { line.exitCode = Store(line, *change); });
}

}  // namespace

void AddConfigCommand(CLI::App& program, CommandLine& line) {
  CLI::App* const config = program.add_subcommand("config", "Settings of this client");
  config->require_subcommand(1);
  line.AddCommand(*config, "show", "Print every setting with its value and its origin", false,
                  Show);
  config->add_subcommand("sites", "The names for --site")->callback([&line] {
    line.exitCode = ShowSites();
  });
  AddChange(*config, line, true);
  AddChange(*config, line, false);
}

}  // namespace vqclient
