// The options that commands share, and those of the ORB.
//
// The value of a shared option comes from, first wins: the command line, the environment, the
// settings of the site in use, the general settings. Settings are variables of the configuration
// domain, in the scope "site NAME" or "vqclient"; those of the ORB are in "default" instead of
// "vqclient", where every client of the library finds them. In each scope the user's layer comes
// before the host's.
#ifndef VQ_CLIENT_COMMANDLINE_H
#define VQ_CLIENT_COMMANDLINE_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

#include <vq_client_common/vq_client_common.h>

#include "Output.h"

namespace vqclient {

// One shared option. Its name is also what `vqclient config set` calls it.
struct SharedOption {
  const char* name;      // "server", for --server
  const char* letter;    // "s", for -s; empty for none
  const char* variable;  // of the environment; empty for none
  const char* setting;   // what the ORB calls it; empty for one of vqclient's own
  const char* type;      // of the value, "A|B" for a choice
  const char* text;      // of the help
};

const std::vector<SharedOption>& SharedOptions();
const SharedOption* FindSharedOption(const std::string& name);  // null for none

// Where a value came from, the strongest first.
enum class Source { kCommandLine, kEnvironment, kSite, kGeneral };

struct Value {
  std::string text;
  Source source = Source::kCommandLine;
  std::string origin;  // in words
};

// The scope of a setting in the configuration domain; `site` may be empty.
std::string ScopeOf(const SharedOption& option, const std::string& site);

// What the ORB takes for a value of the option: an address of a naming service as a reference.
std::string OrbValue(const SharedOption& option, const std::string& text);

struct CommandLine {
  // After Apply.
  std::string site;
  std::string server;
  SERVER_ID kind = E_GSR;
  std::string user;
  std::string passwordFile;
  unsigned int lifetime = 600;          // seconds
  unsigned int maxTime = 0;             // seconds; 0: no limit
  std::map<std::string, Value> values;  // all that have one, by name

  int verbosity = 0;
  std::map<std::string, std::string> given;  // on the command line, by name

  int exitCode = 0;  // of the command that ran

  std::vector<std::string> own;  // the arguments that are not the ORB's, program name first
  std::vector<std::string> orb;  // the ORB's, program name first

  // Options with one dash and a long name belong to the ORB ("-ORBInitRef X", "-BiDirPolicy 1") and
  // are taken out before the rest is parsed.
  static CommandLine Split(int argc, char** argv);

  // Adds the options that stand before a command.
  void AddGlobalOptions(CLI::App& program);

  // Adds a command with the options of a connection. When it is given, and none below it, Apply and
  // `run` are called at the end of parsing, and the result of `run` is the exit code.
  CLI::App* AddCommand(CLI::App& parent, const char* name, const char* text, bool needsServer,
                       const std::function<int(CommandLine&)>& run);

  // After parsing: switches the log on as far as asked for, finds the value of each shared option
  // and gives the ORB its arguments. Raises CLI::ValidationError for a value that is not of its
  // form, and for a server that is needed and not named.
  void Apply(bool needsServer);

  // Starts the time of --max-time, for the calls of this thread until EndClock.
  void StartClock();
  void EndClock() { m_deadline.reset(); }

  // The ORB's arguments for a function in the style of C; valid as long as `orb` stays as it is.
  std::vector<char*> OrbArguments();
  // What the library reports of the settings with these arguments.
  std::list<vq::Setting> Report() const;

 private:
  std::unique_ptr<vq::CallDeadline> m_deadline;

  void AddConnectionOptions(CLI::App& command);
  void FindValues();
  void GiveOrbItsArguments();
  void SettleUserOrFile();
};

// Why a value is not of its option's form; empty when it is.
std::string Objection(const SharedOption& option, const std::string& text);

}  // namespace vqclient

#endif  // VQ_CLIENT_COMMANDLINE_H
