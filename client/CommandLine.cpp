#include "CommandLine.h"

#include <algorithm>
#include <map>
#include <string_view>

#include <CLI/CLI.hpp>

namespace vqclient {
namespace {

bool BelongsToOrb(std::string_view argument) {
  return argument.starts_with("-ORB") || argument.starts_with("-SSL") ||
         argument == "-BiDirPolicy" || argument == "-PreferIPMask";
}

const std::map<std::string, SERVER_ID> kKinds{{"GSR", E_GSR},   {"GAS", E_GAS},
                                              {"QIMS", E_QIMS}, {"Forecast", E_FORECAST},
                                              {"CMS", E_CMS},   {"SLS", E_SLS}};

}  // namespace

CommandLine CommandLine::Split(int argc, char** argv) {
  CommandLine line;
  line.orb.emplace_back(argc > 0 ? argv[0] : "vqclient");
  for (int i = 0; i < argc; ++i) {
    if (i == 0 || !BelongsToOrb(argv[i])) {
      line.own.emplace_back(argv[i]);
      continue;
    }
    line.orb.emplace_back(argv[i]);
    if (i + 1 < argc) line.orb.emplace_back(argv[++i]);
  }
  return line;
}

void CommandLine::AddGlobalOptions(CLI::App& program) {
  program.add_flag("-v,--verbose", verbosity,
                   "Write the log to standard error; repeat for more (-v 4, -vv 5, -vvv 6)");
  program.add_flag("--json", json, "Print data as JSON");
}

void CommandLine::AddConnectionOptions(CLI::App& command) {
  CLI::Option* const options[] = {
      command.add_option("-s,--server", server, "Logical name of the server")
          ->required()
          ->type_name("NAME"),
      command.add_option("-k,--kind", kind, "Kind of the server")
          ->transform(CLI::CheckedTransformer(kKinds).description(""))
          ->default_str("GSR")
          ->type_name("GSR|GAS|QIMS|Forecast|CMS|SLS"),
      command
          .add_option("-n,--naming", naming,
                      "Address of the naming service; without it the configuration domain's")
          ->type_name("HOST:PORT"),
      command.add_option("-u,--user", user, "User; asked for when neither name nor file is given")
          ->type_name("NAME"),
      command
          .add_option("-f,--password-file", passwordFile,
                      "File with user= and password= lines, readable by nobody else. Without it "
                      "the password is asked for, or read from standard input")
          ->type_name("FILE"),
      command
          .add_option("-t,--timeout", timeOut,
                      "After how long without a keep-alive the server drops the session (1 to "
                      "86400)")
          ->check(CLI::Range(1U, 86400U).description(""))
          ->capture_default_str()
          ->type_name("SECONDS"),
  };
  for (CLI::Option* const option : options) option->group("Connection");
}

void CommandLine::Apply() {
  if (verbosity > 0) {
    TDiag::Instance()->SetMinimumDebugLevel(std::min(verbosity + 3, TDiag::kTrace));
    TDiag::Instance()->AddStandardErrorSink();
  }
  if (!naming.empty()) {
    orb.emplace_back("-ORBInitRef");
    orb.emplace_back("NameService=corbaloc:iiop:" + naming + "/NameService");
  }
}

}  // namespace vqclient
