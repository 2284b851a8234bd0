// vqclient: the suite's command-line client. Its first use is to try a server out; it is also the
// shortest complete program on this library.

#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "ClientSession.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ExitCodes.h"

int main(int argc, char** argv) {
  using namespace vqclient;
  CommandLine line = CommandLine::Split(argc, argv);
  int exitCode = kSuccess;

  CLI::App program("Command-line client of the VELTRA-M/Quorum suite", "vqclient");
  program.set_version_flag("--version", "vqclient " VQ_VERSION);
  program.require_subcommand(1);
  program.fallthrough();
  program.footer(std::string(kExitCodeHelp));
  line.AddGlobalOptions(program);
  AddLoginCommand(program, line, exitCode);
  AddSessionCommand(program, line, exitCode);
  AddParameterCommand(program, line, exitCode);
  AddAuthCommand(program, line, exitCode);
  AddConfigCommand(program, line, exitCode);
  AddDoctorCommand(program, line, exitCode);
  AddPasswordCommand(program, line, exitCode);
  AddVersionCommand(program, line, exitCode);

  try {
    std::vector<std::string> arguments(line.own.rbegin(), line.own.rend() - 1);
    program.parse(std::move(arguments));
  } catch (const CLI::ParseError& e) {
    return program.exit(e) == 0 ? kSuccess : kUsage;
  } catch (const std::exception& e) {
    Tell(std::string("it failed: ") + e.what());
    exitCode = kRefused;
  }
  exit_vqclient_common();
  return exitCode;
}
