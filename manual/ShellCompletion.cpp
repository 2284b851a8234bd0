#include <manual/Pages.h>

#include <algorithm>
#include <set>

namespace vq::manual {
namespace {

// The texts below contain PROGRAM for the program's name.

// What bash and zsh do with each word before the one to complete, in place of STEP. PROGRAM_table
// PLACE sets commands, arguments, flags and values for the command at that place.
constexpr const char* kStep = R"sh(    if [[ -n $value ]]; then
      value=
    elif [[ $word == -* ]]; then
      value=${values[$word]-}
    elif [[ " $commands " == *" $word "* ]]; then
      place+=" $word"
      _PROGRAM_table "$place"
    fi)sh";

constexpr const char* kBash = R"sh(
_PROGRAM_complete() {
  local current=${COMP_WORDS[COMP_CWORD]} place= value= word words i
  local commands arguments flags
  local -A values
  _PROGRAM_table "$place"
  for ((i = 1; i < COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
STEP
  done
  case $value in
    FILE)
      compopt -o filenames 2>/dev/null || :
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    SITE) words=$(PROGRAM config sites 2>/dev/null) ;;
    *'|'*) words=${value//|/ } ;;
    '') words="$commands $arguments $flags" ;;
    *) words= ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _PROGRAM_complete PROGRAM
)sh";

constexpr const char* kZsh = R"zsh(
_PROGRAM() {
  local place= value= word i
  local commands arguments flags
  local -A values
  _PROGRAM_table "$place"
  for ((i = 2; i < CURRENT; ++i)); do
    word=${words[i]}
STEP
  done
  case $value in
    FILE) _files ;;
    SITE) compadd -- ${(f)"$(PROGRAM config sites 2>/dev/null)"} ;;
    *'|'*) compadd -- ${(s:|:)value} ;;
    '') compadd -- ${=commands} ${=arguments} ${=flags} ;;
  esac
}

_PROGRAM "$@"
)zsh";

constexpr const char* kFish = R"sh(
function __PROGRAM_at
    set -l place PROGRAM
    set -l skip 0
    for word in (commandline -opc)[2..-1]
        if test $skip = 1
            set skip 0
        else if contains -- $word WITH_VALUE
            set skip 1
        else if contains -- "$place $word" COMMANDS
            set place "$place $word"
        end
    end
    test "$place" = "$argv[1]"
end
complete -c PROGRAM -f
)sh";

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string result;
  for (const std::string& word : words) result += (result.empty() ? "" : " ") + word;
  return result;
}

bool IsChoice(const Option& option) {
  return option.value.find('|') != std::string::npos;
}

std::vector<Option> AllOptions(const Command& command) {
  std::vector<Option> options = command.options;
  options.insert(options.end(), command.inherited.begin(), command.inherited.end());
  return options;
}

// One arm of NAME_table, which bash and zsh read alike.
std::string Arm(const Command& command, const std::string& program) {
  std::vector<std::string> flags;
  std::vector<std::string> arguments;
  std::string values;
  for (const Option& option : AllOptions(command)) {
    if (option.positional) {
      if (IsChoice(option)) arguments.push_back(Replace(option.value, "|", " "));
      continue;
    }
    flags.push_back(option.names.back());
    if (option.value.empty()) continue;
    for (const std::string& name : option.names) {
      values += "[" + name + "]='" + option.value + "' ";
    }
  }
  return "    '" + command.path.substr(program.size()) + "')\n      commands='" +
         Joined(command.commands) + "'\n      arguments='" + Joined(arguments) +
         "'\n      flags='" + Joined(flags) + "'\n      values=(" + values + ") ;;\n";
}

std::string Table(const std::vector<Command>& commands) {
  const std::string program = commands.front().path;
  std::string text = "_" + program + "_table() {\n  case $1 in\n";
  for (const Command& command : commands) text += Arm(command, program);
  return text + "  esac\n}\n";
}

std::string Quoted(const std::string& text) {
  return "'" + Replace(Replace(text, "\\", "\\\\"), "'", "\\'") + "'";
}

std::string FishOption(const Option& option) {
  std::string line;
  for (const std::string& name : option.names) {
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (option.value == "FILE") {
    line += " -r -F";
  } else if (option.value == "SITE") {
    line += " -x -a '(PROGRAM config sites 2>/dev/null)'";
  } else if (!option.value.empty()) {
    line += " -x";
    if (IsChoice(option)) line += " -a " + Quoted(Replace(option.value, "|", " "));
  }
  return line + " -d " + Quoted(option.description);
}

}  // namespace

std::string BashCompletion(const std::vector<Command>& commands) {
  const std::string& program = commands.front().path;
  return "# Completion of " + program + " for bash, made from its table of options.\n\n" +
         Table(commands) + Replace(Replace(kBash, "STEP", kStep), "PROGRAM", program);
}

std::string ZshCompletion(const std::vector<Command>& commands) {
  const std::string& program = commands.front().path;
  return "#compdef " + program + "\n# Completion of " + program +
         " for zsh, made from its table of options.\n\n" + Table(commands) +
         Replace(Replace(kZsh, "STEP", kStep), "PROGRAM", program);
}

std::string FishCompletion(const std::vector<Command>& commands) {
  const std::string& program = commands.front().path;
  std::set<std::string> withValue;
  std::vector<std::string> places;
  std::string lines;
  for (const Command& command : commands) {
    places.push_back(Quoted(command.path));
    const std::string at = "complete -c PROGRAM -n \"__PROGRAM_at " + Quoted(command.path) + "\"";
    for (const std::string& word : command.commands) {
      const auto below = std::find_if(commands.begin(), commands.end(), [&](const Command& other) {
        return other.path == command.path + " " + word;
      });
      lines += at + " -a " + word + " -d " + Quoted(below->description) + "\n";
    }
    for (const Option& option : AllOptions(command)) {
      if (option.positional) {
        if (IsChoice(option)) lines += at + " -a " + Quoted(Replace(option.value, "|", " ")) + "\n";
        continue;
      }
      lines += at + FishOption(option) + "\n";
      if (!option.value.empty()) withValue.insert(option.names.begin(), option.names.end());
    }
  }
  std::string function = Replace(kFish, "WITH_VALUE", Joined({withValue.begin(), withValue.end()}));
  function = Replace(function, "COMMANDS", Joined(places));
  return "# Completion of " + program + " for fish, made from its table of options.\n" +
         Replace(function + lines, "PROGRAM", program);
}

}  // namespace vq::manual
