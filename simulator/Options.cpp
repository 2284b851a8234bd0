#include <simulator/Options.h>

namespace vq::sim {

std::unique_ptr<CLI::App> MakeProgram(Arguments& arguments) {
  auto program = std::make_unique<CLI::App>(
      "A server to try and test clients with, from one JSON file", "vq_simulator");
  program->set_version_flag("--version", VQ_VERSION);
  program
      ->add_option("--site", arguments.site,
                   "The site: what the server serves (JSON). Without it the installed sample")
      ->type_name("FILE");
  CLI::Option* const naming =
      program
          ->add_option(
              "--naming", arguments.orb.naming,
              "The naming service, such as corbaloc::HOST:PORT/NameService; without it the "
              "server registers nowhere")
          ->type_name("REFERENCE");
  program
      ->add_flag("--naming-service", arguments.ownNaming,
                 "Start a naming service on a free port of this host, and register there")
      ->excludes(naming);
  program->add_option("--server", arguments.server, "The server's name in the naming service")
      ->capture_default_str()
      ->type_name("NAME");
  program
      ->add_option("--kind", arguments.kinds,
                   "A server kind to serve; may be repeated. Without it GSR")
      ->type_name("GSR|GAS|QIMS|Forecast|CMS|SLS");
  program
      ->add_option("--endpoint", arguments.orb.endpoint,
                   "Where to listen: iiop://[HOST][:PORT]. Without it a free port of 127.0.0.1")
      ->type_name("ENDPOINT");
  program->add_flag("!--no-bidir", arguments.orb.bidirectional,
                    "Do not accept calls back over a client's own connection");
  program->add_option("--log", arguments.log, "Log of the calls and their answers (JSON lines)")
      ->type_name("FILE");
  program
      ->add_option("--ready-file", arguments.readyFile,
                   "File to write when serving: process, port, references")
      ->type_name("FILE");
  program->add_option("--control", arguments.control, "UNIX socket that takes commands")
      ->type_name("FILE");
  program->footer(
      "Exit codes: 0 stopped by SIGTERM or SIGINT, 2 usage or site file, 3 the naming service "
      "does\n"
      "not answer, 4 the ORB does not start, 5 a file cannot be opened, 86 ended by a fault.\n");
  return program;
}

}  // namespace vq::sim
