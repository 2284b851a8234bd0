// The manual page and the completion of one program.
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

// A completion for bash: commands, options, and the values of those whose value is a choice or a
// file.
std::string BashCompletion(const std::vector<Command>& commands);

// Writes DIRECTORY/PROGRAM.1 and DIRECTORY/PROGRAM.bash; the arguments are VERSION, the file with
// `more`, and DIRECTORY. Returns the exit status.
int WritePages(const CLI::App& program, int argc, char** argv);

}  // namespace vq::manual

#endif  // VQ_MANUAL_PAGES_H
