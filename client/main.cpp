// vqclient: the suite's command-line client. Its first use is to try a server out; it is also the
// shortest complete program on this library.

#include <algorithm>
#include <exception>
#include <memory>

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Program.h"
#include "Suggestion.h"

int main(int argc, char** argv) {
  using namespace vqclient;
  CommandLine line = CommandLine::Split(argc, argv);
  int exitCode = kSuccess;

  const std::unique_ptr<CLI::App> program = MakeProgram(line, exitCode);
  try {
    std::vector<std::string> arguments(line.own.rbegin(), line.own.rend() - 1);
    program->parse(std::move(arguments));
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) {
      program->exit(e);  // prints the help or the version that was asked for
      return FinishOutput(kSuccess);
    }
    // A command line that is not understood may not have come to that option.
    Form().json |= std::find(line.own.begin(), line.own.end(), "--json") != line.own.end();
    Tell(Explain(*program, e) + "\nvqclient --help and vqclient COMMAND --help tell more.");
    exitCode = kUsage;
  } catch (const std::exception& e) {
    Tell(std::string("it failed: ") + e.what());
    exitCode = kRefused;
  }
  exit_vqclient_common();
  return FinishOutput(exitCode);
}
