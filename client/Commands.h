// The commands of vqclient. Each function adds one command to the program; when the command is
// given, it runs after parsing and stores its exit code.
#ifndef VQ_CLIENT_COMMANDS_H
#define VQ_CLIENT_COMMANDS_H

#include <CLI/App.hpp>

#include "CommandLine.h"

namespace vqclient {

void AddAuthCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddConfigCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddDoctorCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddLoginCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddParameterCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddPasswordCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddPingCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddServersCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddSessionCommand(CLI::App& program, CommandLine& line, int& exitCode);
void AddVersionCommand(CLI::App& program, CommandLine& line, int& exitCode);

}  // namespace vqclient

#endif  // VQ_CLIENT_COMMANDS_H
