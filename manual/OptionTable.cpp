#include <manual/OptionTable.h>

#include <CLI/CLI.hpp>

namespace vq::manual {
namespace {

Option Describe(const CLI::Option& option) {
  Option result;
  for (const std::string& name : option.get_snames()) result.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) result.names.push_back("--" + name);
  result.positional = result.names.empty();
  if (result.positional) result.names.push_back(option.get_single_name());
  if (option.get_items_expected_max() > 0) result.value = option.get_type_name();
  result.description = option.get_description();
  result.defaultValue = option.get_default_str();
  if (option.get_group() != "Options") result.group = option.get_group();
  result.required = option.get_required();
  return result;
}

std::vector<Option> OptionsOf(const CLI::App& app, bool withHelp) {
  std::vector<Option> result;
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_group().empty()) continue;  // a former name, which is not shown
    if (withHelp || option != app.get_help_ptr()) result.push_back(Describe(*option));
  }
  return result;
}

void Append(const CLI::App& app, const std::string& path, std::vector<Command>& commands) {
  Command command{path, app.get_description(), app.get_footer(), {}, false, {}, {}};
  command.options = OptionsOf(app, app.get_parent() == nullptr);
  command.needsCommand = app.get_require_subcommand_min() > 0;
  for (const CLI::App* above = &app; above->get_fallthrough() && above->get_parent() != nullptr;) {
    above = above->get_parent();
    for (Option& option : OptionsOf(*above, above->get_parent() == nullptr)) {
      command.inherited.push_back(std::move(option));
    }
  }
  const auto below = app.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* const sub : below) command.commands.push_back(sub->get_name());
  commands.push_back(std::move(command));
  for (const CLI::App* const sub : below) Append(*sub, path + " " + sub->get_name(), commands);
}

}  // namespace

std::vector<Command> CommandsOf(const CLI::App& program) {
  std::vector<Command> commands;
  Append(program, program.get_name(), commands);
  return commands;
}

}  // namespace vq::manual
