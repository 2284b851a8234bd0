// What a program's command line offers, as the manual page and the completions need it: read from
// the program's own CLI::App, so that they cannot differ from it.
//
//   for (const Command& command : CommandsOf(app)) ...   // the program first, then every command
#ifndef VQ_MANUAL_OPTIONTABLE_H
#define VQ_MANUAL_OPTIONTABLE_H

#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace vq::manual {

// An option, or with `positional` a plain argument.
struct Option {
  std::vector<std::string> names;  // as they are typed: "-s", "--server"; "section"
  std::string value;               // the name of its value, "A|B" for a choice; empty for a flag
  std::string description;
  std::string defaultValue;  // may be empty
  std::string group;         // a heading that several commands share; empty for a command's own
  bool positional = false;
  bool required = false;
};

struct Command {
  std::string path;  // "vqclient auth check"
  std::string description;
  std::string footer;
  std::vector<std::string> commands;  // the words that may follow
  bool needsCommand = false;          // one of them must follow
  std::vector<Option> options;        // its own
  std::vector<Option> inherited;      // of the commands above it, which it takes, too
};

std::vector<Command> CommandsOf(const CLI::App& program);

}  // namespace vq::manual

#endif  // VQ_MANUAL_OPTIONTABLE_H
