// vqclient doctor: finds out why a connection or a callback fails, and can write down a way that
// works.

#include <iostream>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Doctor.h"
#include "ExitCodes.h"

namespace vqclient {
namespace {

// Asks on standard input; everything but a plain yes is a no.
bool Agrees(const std::string& question) {
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  return std::getline(std::cin, answer) && (answer == "y" || answer == "yes");
}

int Run(CommandLine& line, bool fix) {
  Doctor doctor(line);
  const int code = doctor.Examine();
  if (!fix) return code;
  if (!doctor.FoundWay()) {
    Tell("No way was found by which the server calls back; nothing is written.");
    return code;
  }
  if (!Agrees("Write to the configuration domain that the server " + doctor.Way() + "?")) {
    Tell("Nothing is written.");
    return code;
  }
  if (const std::string error = doctor.Store(); !error.empty()) {
    Tell("The settings cannot be written: " + error);
    return kRefused;
  }
  Say("Written; clients use it from their next start on.");
  return code;
}

}  // namespace

void AddDoctorCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command =
      program.add_subcommand("doctor", "Find out why a connection or a callback fails");
  line.AddConnectionOptions(*command);
  auto fix = std::make_shared<bool>(false);
  command->add_flag("--fix", *fix,
                    "Write the way that worked to the configuration domain, after asking");
  command->callback([&line, &exitCode, fix] {
    line.ApplyWithServer();
    exitCode = Run(line, *fix);
  });
}

}  // namespace vqclient
