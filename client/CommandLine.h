// The part of the command line that every command shares, and what belongs to the ORB.
#ifndef VQ_CLIENT_COMMANDLINE_H
#define VQ_CLIENT_COMMANDLINE_H

#include <string>
#include <vector>

#include <CLI/App.hpp>

#include <vq_client_common/vq_client_common.h>

namespace vqclient {

// Options with one dash and a long name belong to the ORB ("-ORBInitRef X", "-BiDirPolicy 1"); they
// are taken out before the rest is parsed. Thread contract: one thread.
struct CommandLine {
  std::string server;
  SERVER_ID kind = E_GSR;
  std::string user;
  std::string passwordFile;
  std::string naming;          // HOST:PORT of the naming service
  unsigned int timeOut = 600;  // seconds
  int verbosity = 0;
  bool json = false;

  std::vector<std::string> own;  // the arguments that are not the ORB's, program name first
  std::vector<std::string> orb;  // the ORB's, program name first

  static CommandLine Split(int argc, char** argv);

  // Adds the shared options to the program, and those of a connection to one command.
  void AddGlobalOptions(CLI::App& program);
  void AddConnectionOptions(CLI::App& command);

  // After parsing: switches the log on as far as asked for, and gives the ORB its arguments.
  void Apply();
};

}  // namespace vqclient

#endif  // VQ_CLIENT_COMMANDLINE_H
