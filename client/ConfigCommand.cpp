// vqclient config: all settings with values and origins, and changes of the stored ones.

#include <filesystem>
#include <set>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Suggestion.h>

namespace vqclient {
namespace {

int Show(CommandLine& line) {
  std::list<vq::Setting> settings = line.Report();
  // The library reads one client property.
  const std::string help = ClientProperties::Get()->GetStringValue("LocalHelpFile", "");
  settings.push_back({"client", "LocalHelpFile", help.empty() ? "1" : help,
                      help.empty() ? "built in" : "CommonClientConf.xml"});
  for (const SharedOption& option : SharedOptions()) {
    if (option.IsOrb()) continue;
    const auto found = line.values.find(option.name);
    const Value& value =
        found != line.values.end() ? found->second : Value{"", Source::kGeneral, "not set"};
    settings.push_back({"vqclient", option.name, value.text, value.origin});
  }
  nlohmann::json rows = nlohmann::json::array();
  int exitCode = kSuccess;
  for (const vq::Setting& setting : settings) {
    const bool isText = !Form().json;
    rows.push_back({{"group", setting.group},
                    {"name", setting.name},
                    {"value", isText && setting.value.empty() ? "-" : setting.value},
                    {"origin", isText ? "  (" + setting.origin + ")" : setting.origin}});
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

int Store(const CommandLine& line, const Change& change) {
  const std::string& site = line.given.at("site");
  const SharedOption* const option = FindSharedOption(change.name);
  if (option == nullptr || (option->name == "site" && !site.empty())) {
    std::vector<std::string> names;
    for (const SharedOption& one : SharedOptions()) names.push_back(one.name);
    throw CLI::ValidationError("unknown setting '" + change.name + "'" +
                               Nearest(change.name, names));
  }
  const std::string scope = ScopeOf(*option, site);
  const std::string name = option->StoredName();
  std::optional<std::string> value = change.value;
  if (value) {
    if (const std::string reason = WhyInvalid(*option, *value); !reason.empty()) {
      throw CLI::ValidationError(change.name, reason);
    }
    value = OrbValue(*option, *value);
    // The next run may have another working directory.
    if (option->type == "FILE") value = std::filesystem::absolute(*value);
  }
  const vq::StoreResult stored = vq::StoreSetting(
      scope, name, value, change.system ? vq::SettingsLayer::kHost : vq::SettingsLayer::kOwn);
  if (!stored.error.empty()) throw Failure(kRefused, "The setting is not changed: " + stored.error);
  PrintJson({{"file", stored.file},
             {"scope", scope},
             {"name", name},
             {"value", value ? nlohmann::json(*value) : nlohmann::json()}},
            -1);
  PrintLine(stored.file + ", " + scope + ": " + name + (value ? " = " + *value : " is not set"));
  return kSuccess;
}

int ShowSites() {
  std::string error;
  std::set<std::string> sites;
  for (const vq::StoredSetting& setting : vq::ReadStoredSettings(error)) {
    if (setting.scope.starts_with(kSiteScope))
      sites.insert(setting.scope.substr(kSiteScope.size()));
  }
  PrintJson(sites, -1);
  for (const std::string& site : sites) PrintText(site + '\n');
  if (error.empty()) return kSuccess;
  PrintError(error);
  return kRefused;
}

std::string SettingNames() {
  std::string names;
  for (const SharedOption& option : SharedOptions()) names += option.name + "|";
  names.pop_back();
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
