// vqclient: the suite's command-line client. Its first use is to try a server out; it is also an
// example of a program on this library.

#include <algorithm>
#include <exception>
#include <memory>

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Suggestion.h"

int main(int argc, char** argv) {
  using namespace vqclient;
  CommandLine line = CommandLine::Split(argc, argv);
  const std::unique_ptr<CLI::App> program = MakeProgram(line);
  try {
    program->parse(std::vector<std::string>(line.own.rbegin(), line.own.rend() - 1));
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) {
      program->exit(e);  // prints the help or the version that was asked for
      return FinishOutput(kSuccess);
    }
    // After an error further options are not parsed.
    Form().json |= std::find(line.own.begin(), line.own.end(), "--json") != line.own.end();
    Tell(Explain(*program, e) + "\nSee vqclient --help and vqclient COMMAND --help.");
    line.exitCode = kUsage;
  } catch (const Failure& e) {
    if (*e.what() != '\0') Tell(e.what());
    line.exitCode = e.exitCode;
  } catch (const std::exception& e) {
    Tell(std::string("it failed: ") + e.what());
    line.exitCode = kRefused;
  }
  exit_vqclient_common();
  return FinishOutput(line.exitCode);
}
