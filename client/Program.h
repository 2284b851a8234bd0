// The command line of vqclient as a whole: its commands and options, which the program parses and
// from which the manual page and the shell's completion are made.
#ifndef VQ_CLIENT_PROGRAM_H
#define VQ_CLIENT_PROGRAM_H

#include <memory>

#include <CLI/App.hpp>

#include "CommandLine.h"

namespace vqclient {

// A command that is given runs at the end of parsing and stores its exit code. Both arguments
// outlive the program that is returned.
std::unique_ptr<CLI::App> MakeProgram(CommandLine& line, int& exitCode);

}  // namespace vqclient

#endif  // VQ_CLIENT_PROGRAM_H
