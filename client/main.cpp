// vqclient: the suite's command-line client, and an example of a program that uses this library.

#include <algorithm>
#include <exception>
#include <memory>

#include <CLI/CLI.hpp>

#include <client/CommandLine.h>
#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Output.h>
#include <client/Suggestion.h>

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
    // CLI11 does not parse the options after an error.
    Form().json |= std::find(line.own.begin(), line.own.end(), "--json") != line.own.end();
    PrintError(Explain(*program, e) + "\nSee vqclient --help and vqclient COMMAND --help.");
    line.exitCode = kUsage;
  } catch (const Failure& e) {
    if (*e.what() != '\0') PrintError(e.what());
    line.exitCode = e.exitCode;
  } catch (const std::exception& e) {
    PrintError(std::string("unexpected error: ") + e.what());
    line.exitCode = kRefused;
  }
  exit_vqclient_common();
  return FinishOutput(line.exitCode);
}
