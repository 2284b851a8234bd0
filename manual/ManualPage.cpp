#include <manual/Pages.h>

#include <cctype>
#include <map>
#include <string_view>

namespace vq::manual {
namespace {

// Text as roff takes it literally; a closing line end is added.
std::string Line(std::string_view text) {
  std::string result;
  if (text.starts_with('.') || text.starts_with('\'')) result = "\\&";
  for (const char c : text) {
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result + '\n';
}

std::string In(char font, std::string_view text) {
  std::string line = Line(text);
  line.pop_back();
  return std::string("\\f") + font + line + "\\fR";
}

std::string Capitals(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string Sentence(std::string text) {
  if (!text.empty() && text.back() != '.') text += '.';
  return text;
}

std::string Item(const Option& option) {
  std::string result = ".TP\n";
  for (const std::string& name : option.names) {
    if (&name != &option.names.front()) result += ", ";
    result += In(option.positional ? 'I' : 'B', name);
  }
  if (!option.positional && !option.value.empty()) result += " " + In('I', option.value);
  result += '\n' + Line(Sentence(option.description));
  if (option.required && !option.positional) result += "It has to be given.\n";
  if (!option.standard.empty()) result += Line("Default: " + option.standard + ".");
  return result;
}

// "[-s NAME] section name" with the options that have to be given and the arguments.
std::string Usage(const Command& command) {
  std::string result = In('B', command.path);
  for (const Option& option : command.options) {
    if (!option.required || option.positional) continue;
    result += " " + In('B', option.names.back()) + " " + In('I', option.value);
  }
  result += " [" + In('I', "OPTIONS") + "]";
  for (const Option& option : command.options) {
    if (option.positional) result += " " + In('I', option.names.front());
  }
  if (!command.commands.empty()) {
    const std::string word = In('I', "COMMAND");
    result += command.needsCommand ? " " + word : " [" + word + "]";
  }
  return result + '\n';
}

struct Group {
  std::vector<Option> options;
  std::string takers;
};

// What belongs to several commands is told once.
std::map<std::string, Group> GroupsOf(const std::vector<Command>& commands) {
  std::map<std::string, Group> groups;
  for (const Command& command : commands) {
    std::map<std::string, std::vector<Option>> own;
    for (const Option& option : command.options) {
      if (!option.group.empty()) own[option.group].push_back(option);
    }
    for (auto& [name, options] : own) {
      Group& group = groups[name];
      if (!group.takers.empty()) group.takers += ", ";
      group.takers += command.path.substr(command.path.find(' ') + 1);
      group.options = std::move(options);
    }
  }
  return groups;
}

std::string OwnItems(const Command& command) {
  std::string result;
  for (const Option& option : command.options) {
    if (option.group.empty()) result += Item(option);
  }
  return result;
}

// The help text's closing lines, without their heading.
std::string ExitStatus(std::string_view footer) {
  constexpr std::string_view kHeading = "Exit codes: ";
  if (footer.starts_with(kHeading)) footer.remove_prefix(kHeading.size());
  return Line(footer.substr(0, footer.find_last_not_of('\n') + 1));
}

}  // namespace

std::string ManualPage(const std::vector<Command>& commands, const std::string& version,
                       const std::string& more) {
  const Command& program = commands.front();
  const std::string description = more.substr(0, more.find(".SH"));
  std::string page = ".TH " + Capitals(program.path) + " 1 \"\" \"vq_client_common " + version +
                     "\" \"User Commands\"\n.SH NAME\n" + program.path + " \\- " +
                     Line(program.description) + ".SH SYNOPSIS\n" + Usage(program) +
                     ".SH DESCRIPTION\n" + description + ".SH OPTIONS\n" + OwnItems(program);
  if (commands.size() > 1) page += ".SH COMMANDS\n";
  for (std::size_t i = 1; i < commands.size(); ++i) {
    const Command& command = commands[i];
    if (!command.commands.empty() && command.options.empty()) continue;  // a mere heading
    page += ".SS " + Usage(command) + Line(Sentence(command.description)) + OwnItems(command);
  }
  for (const auto& [name, group] : GroupsOf(commands)) {
    page += ".SH " + Capitals(name) + " OPTIONS\n" + Line("Of " + group.takers + ".");
    for (const Option& option : group.options) page += Item(option);
  }
  return page + ".SH EXIT STATUS\n" + ExitStatus(program.footer) + more.substr(description.size());
}

}  // namespace vq::manual
