// The command line of vqclient. The program parses it; the manual page and the completions are made
// from it.
#ifndef VQ_CLIENT_COMMANDS_H
#define VQ_CLIENT_COMMANDS_H

#include <memory>

#include <CLI/App.hpp>

#include <client/CommandLine.h>

namespace vqclient {

// The whole command line. The given command runs at the end of parsing. `line` must outlive the
// result.
std::unique_ptr<CLI::App> MakeProgram(CommandLine& line);

// Each adds one command (CommandLine::AddCommand).
void AddAuthCommand(CLI::App& program, CommandLine& line);
void AddConfigCommand(CLI::App& program, CommandLine& line);
void AddDoctorCommand(CLI::App& program, CommandLine& line);
void AddLoginCommand(CLI::App& program, CommandLine& line);
void AddParameterCommand(CLI::App& program, CommandLine& line);
void AddPasswordCommand(CLI::App& program, CommandLine& line);
void AddPingCommand(CLI::App& program, CommandLine& line);
void AddServersCommand(CLI::App& program, CommandLine& line);
void AddSessionCommand(CLI::App& program, CommandLine& line);
void AddVersionCommand(CLI::App& program, CommandLine& line);

}  // namespace vqclient

#endif  // VQ_CLIENT_COMMANDS_H
