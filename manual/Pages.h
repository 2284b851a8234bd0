// The source of a program's manual page, and its shell completions.
#ifndef VQ_MANUAL_PAGES_H
#define VQ_MANUAL_PAGES_H

#include <string>
#include <vector>

#include <manual/OptionTable.h>

namespace vq::manual {

// The help of the program and of all its commands, in the form that help2man reads.
std::string HelpText(const std::vector<Command>& commands);

// Completions for three shells: commands, options, and the values of those whose value is a choice,
// a file or the name of a site.
std::string BashCompletion(const std::vector<Command>& commands);
std::string ZshCompletion(const std::vector<Command>& commands);
std::string FishCompletion(const std::vector<Command>& commands);

// Prints HelpText for --help, and name and version for --version: what help2man asks for. With
// another argument, a directory, writes the completions there: PROGRAM.bash, PROGRAM.zsh and
// PROGRAM.fish. Returns the exit status.
int WritePages(const CLI::App& program, const std::string& version, int argc, char** argv);

}  // namespace vq::manual

#endif  // VQ_MANUAL_PAGES_H
