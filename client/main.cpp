// vqclient: the suite's command-line client. Its first use is to try a server out; it is also the
// shortest complete program on this library.

#include <exception>
#include <memory>

#include <CLI/CLI.hpp>

#include "ClientSession.h"
#include "CommandLine.h"
#include "ExitCodes.h"
#include "Program.h"

int main(int argc, char** argv) {
  using namespace vqclient;
  CommandLine line = CommandLine::Split(argc, argv);
  int exitCode = kSuccess;

  const std::unique_ptr<CLI::App> program = MakeProgram(line, exitCode);
  try {
    std::vector<std::string> arguments(line.own.rbegin(), line.own.rend() - 1);
    program->parse(std::move(arguments));
  } catch (const CLI::ParseError& e) {
    return program->exit(e) == 0 ? kSuccess : kUsage;
  } catch (const std::exception& e) {
    Tell(std::string("it failed: ") + e.what());
    exitCode = kRefused;
  }
  exit_vqclient_common();
  return exitCode;
}
