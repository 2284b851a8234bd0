#include <manual/Pages.h>

#include <algorithm>
#include <string_view>

namespace vq::manual {
namespace {

// "--option" in a column of its own, then the text.
std::string Row(const std::string& what, const std::string& text) {
  constexpr std::size_t kColumn = 32;
  const std::size_t blanks = what.size() + 4 < kColumn ? kColumn - what.size() - 2 : 2;
  return "  " + what + std::string(blanks, ' ') + text + '\n';
}

std::string Sentence(std::string text) {
  if (!text.empty() && text.back() != '.') text += '.';
  return text;
}

// The rows of one group; options of this command alone are in the group "".
std::string Rows(const Command& command, const std::string& group) {
  std::string rows;
  for (const Option& option : command.options) {
    if (option.group != group) continue;
    std::string what;
    for (const std::string& name : option.names) what += (what.empty() ? "" : ", ") + name;
    if (!option.positional && !option.value.empty()) what += ' ' + option.value;
    std::string text = Sentence(option.description);
    if (option.required && !option.positional) text += " Required.";
    if (!option.defaultValue.empty()) text += " Default: " + option.defaultValue + ".";
    rows += Row(what, text);
  }
  return rows;
}

// A group of options that several commands share, once for all of them.
std::string SharedRows(const std::vector<Command>& commands, const std::string& group) {
  std::string names;
  std::string rows;
  for (const Command& command : commands) {
    const std::string own = Rows(command, group);
    if (own.empty()) continue;
    rows = own;
    names += (names.empty() ? "" : ", ") + command.path.substr(commands.front().path.size() + 1);
  }
  return '\n' + group + " options of " + names + ":\n" + rows;
}

// "vqclient param get [OPTIONS] section name"
std::string Usage(const Command& command) {
  std::string usage = command.path + " [OPTIONS]";
  for (const Option& option : command.options) {
    if (option.positional) usage += ' ' + option.names.front();
  }
  if (!command.commands.empty()) usage += command.needsCommand ? " COMMAND" : " [COMMAND]";
  return usage;
}

}  // namespace

std::string HelpText(const std::vector<Command>& commands) {
  const Command& program = commands.front();
  std::string text = "Usage: " + Usage(program) + "\n\n" + Sentence(program.description) +
                     "\n\nOptions:\n" + Rows(program, "");
  std::vector<std::string> groups;
  for (const Command& command : commands) {
    if (&command == &program || (!command.commands.empty() && command.options.empty())) continue;
    text += '\n' + Usage(command) + ":\n  " + Sentence(command.description) + "\n\n" +
            Rows(command, "");
    for (const Option& option : command.options) {
      const bool isNew = std::find(groups.begin(), groups.end(), option.group) == groups.end();
      if (!option.group.empty() && isNew) groups.push_back(option.group);
    }
  }
  for (const std::string& group : groups) text += SharedRows(commands, group);
  constexpr std::string_view kHeading = "Exit codes: ";
  std::string_view footer = program.footer;
  const std::size_t codes = footer.find(kHeading);
  if (codes != std::string_view::npos) footer.remove_prefix(codes + kHeading.size());
  return text + "\nExit status:\n  " + std::string(footer) + '\n';
}

}  // namespace vq::manual
