#include "Program.h"

#include <string>

#include "Commands.h"
#include "ExitCodes.h"

namespace vqclient {

std::unique_ptr<CLI::App> MakeProgram(CommandLine& line, int& exitCode) {
  auto program =
      std::make_unique<CLI::App>("Command-line client of the VELTRA-M/Quorum suite", "vqclient");
  program->set_version_flag("--version", "vqclient " VQ_VERSION);
  program->require_subcommand(1);
  program->fallthrough();
  program->footer(
      "Options that begin with -ORB or -SSL, such as -ORBtraceLevel 5, go to the ORB.\n\n" +
      std::string(kExitCodeHelp));
  line.AddGlobalOptions(*program);
  AddLoginCommand(*program, line, exitCode);
  AddSessionCommand(*program, line, exitCode);
  AddPingCommand(*program, line, exitCode);
  AddServersCommand(*program, line, exitCode);
  AddParameterCommand(*program, line, exitCode);
  AddAuthCommand(*program, line, exitCode);
  AddConfigCommand(*program, line, exitCode);
  AddDoctorCommand(*program, line, exitCode);
  AddPasswordCommand(*program, line, exitCode);
  AddVersionCommand(*program, line, exitCode);
  return program;
}

}  // namespace vqclient
