#include <client/Commands.h>

#include <string>

#include <client/ExitCodes.h>

namespace vqclient {

std::unique_ptr<CLI::App> MakeProgram(CommandLine& line) {
  auto program =
      std::make_unique<CLI::App>("Command-line client of the VELTRA-M/Quorum suite", "vqclient");
  program->set_version_flag("--version", "vqclient " VQ_VERSION);
  program->require_subcommand(1);
  program->fallthrough();
  program->footer(
      "Options that begin with -ORB or -SSL, such as -ORBtraceLevel 5, go to the ORB.\n\n" +
      std::string(kExitCodeHelp));
  line.AddGlobalOptions(*program);
  for (const auto add : {AddLoginCommand, AddSessionCommand, AddPingCommand, AddServersCommand,
                         AddParameterCommand, AddAuthCommand, AddConfigCommand, AddDoctorCommand,
                         AddPasswordCommand, AddVersionCommand}) {
    add(*program, line);
  }
  return program;
}

}  // namespace vqclient
