// The manual page and the completions of one program.
#ifndef VQ_MANUAL_PAGES_H
#define VQ_MANUAL_PAGES_H

#include <string>
#include <vector>

#include <manual/OptionTable.h>

namespace vq::manual {

// A page of section 1, in the man macros of roff. `more` is roff for what is no option: the
// description, then sections that follow the exit status.
std::string ManualPage(const std::vector<Command>& commands, const std::string& version,
                       const std::string& more);

// Completions for three shells: commands, options, and the values of those whose value is a choice,
// a file or the name of a site.
std::string BashCompletion(const std::vector<Command>& commands);
std::string ZshCompletion(const std::vector<Command>& commands);
std::string FishCompletion(const std::vector<Command>& commands);

// Writes DIRECTORY/PROGRAM.1 and beside it PROGRAM.bash, PROGRAM.zsh and PROGRAM.fish; the arguments are VERSION, the file with
// `more`, and DIRECTORY. Returns the exit status.
int WritePages(const CLI::App& program, int argc, char** argv);

}  // namespace vq::manual

#endif  // VQ_MANUAL_PAGES_H
