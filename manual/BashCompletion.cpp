#include <manual/Pages.h>

namespace vq::manual {
namespace {

// NAME stands for the function and PROGRAM for the program.
constexpr const char* kFunction = R"(
PROGRAM_complete() {
  local current=${COMP_WORDS[COMP_CWORD]} path= value= word words i
  local commands flags
  local -A values
  PROGRAM_table "$path"
  for ((i = 1; i < COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    if [[ $value ]]; then
      value=
    elif [[ $word == -* ]]; then
      value=${values[$word]-}
    elif [[ " $commands " == *" $word "* ]]; then
      path+=" $word"
      PROGRAM_table "$path"
    fi
  done
  case $value in
    FILE)
      compopt -o filenames 2>/dev/null || :
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    *'|'*) words=${value//|/ } ;;
    '') words="$commands $flags" ;;
    *) words= ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F PROGRAM_complete )";

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

std::string Arm(const Command& command, const std::string& program) {
  std::vector<std::string> flags;
  std::string values;
  for (const auto* options : {&command.options, &command.inherited}) {
    for (const Option& option : *options) {
      if (option.positional) continue;
      flags.push_back(option.names.back());
      if (option.value.empty()) continue;
      for (const std::string& name : option.names) {
        values += "[" + name + "]='" + option.value + "' ";
      }
    }
  }
  return "    '" + command.path.substr(program.size()) + "')\n      commands='" +
         Joined(command.commands) + "'\n      flags='" + Joined(flags) + "'\n      values=(" +
         values + ") ;;\n";
}

}  // namespace

std::string BashCompletion(const std::vector<Command>& commands) {
  const std::string program = commands.front().path;
  std::string text = "# Completion of " + program +
                     " for bash, made from its table of options.\n\n_" + program +
                     "_table() {\n  case $1 in\n";
  for (const Command& command : commands) text += Arm(command, program);
  return text + "  esac\n}\n" + Replace(kFunction, "PROGRAM", "_" + program) + program + "\n";
}

}  // namespace vq::manual
