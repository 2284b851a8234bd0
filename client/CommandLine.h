// The options that commands share, and those of the ORB.
//
// The value of a shared option comes from the first of these that has one: the command line, the
// environment, the settings of the site, the general settings. Settings are variables of the
// configuration domain, in the scope "site NAME" or "vqclient". General settings of the ORB are in
// the scope "default" instead, where every client of the library reads them. In each scope the
// user's layer overrides the host's.
#ifndef VQ_CLIENT_COMMANDLINE_H
#define VQ_CLIENT_COMMANDLINE_H

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/App.hpp>

#include <client/Output.h>
#include <vq_client_common/vq_client_common.h>

namespace vqclient {

// One shared option. Its name is also what `vqclient config set` calls it.
struct SharedOption {
  std::string name;      // "server", for --server
  std::string letter;    // "s", for -s; empty for none
  std::string variable;  // the environment variable; empty for none
  std::string setting;   // the ORB's name for it; empty for an option of vqclient's own
  std::string type;      // of the value; "A|B" for a choice
  std::string text;      // for the help

  bool IsOrb() const { return !setting.empty(); }
  const std::string& StoredName() const { return IsOrb() ? setting : name; }
  bool IsChoice() const { return type.find('|') != std::string::npos; }
};

// The first one is "site".
const std::vector<SharedOption>& SharedOptions();
// By its name or by the ORB's; null for none.
const SharedOption* FindSharedOption(const std::string& name);
// The first option of the ORB whose ORB name occurs in the text; null for none.
const SharedOption* SettingNamedIn(const std::string& text);

// The origin of a value, in order of precedence.
enum class Source { kCommandLine, kEnvironment, kSite, kGeneral };

struct Value {
  std::string text;
  Source source = Source::kCommandLine;
  std::string origin;  // for display
};

// Begins the scope of a site; its name follows.
inline constexpr std::string_view kSiteScope = "site ";

// The scope of a setting in the configuration domain; `site` may be empty.
std::string ScopeOf(const SharedOption& option, const std::string& site);

// The value in the ORB's form: the address of a naming service becomes its reference.
std::string OrbValue(const SharedOption& option, const std::string& text);

struct CommandLine {
  // Set by Apply.
  std::string site;
  std::string server;
  SERVER_ID kind = E_GSR;
  std::string user;
  std::string passwordFile;
  unsigned int lifetime = 600;          // seconds
  unsigned int maxTime = 0;             // seconds; 0: no limit
  std::map<std::string, Value> values;  // by name; options without a value are missing

  int verbosity = 0;
  std::map<std::string, std::string> given;  // the command line's values, by name

  int exitCode = 0;  // of the command that ran

  std::vector<std::string> own;  // the arguments of vqclient, program name first
  std::vector<std::string> orb;  // the ORB's arguments, program name first

  // Separates the ORB's options, which have one dash and a long name ("-ORBInitRef X").
  static CommandLine Split(int argc, char** argv);

  // Adds the options that precede a command.
  void AddGlobalOptions(CLI::App& program);

  // Adds a command with the options of a connection. When it is given, without a subcommand, Apply
  // and `run` are called at the end of parsing. The result of `run` is the exit code.
  CLI::App* AddCommand(CLI::App& parent, const char* name, const char* text, bool needsServer,
                       const std::function<int(CommandLine&)>& run);

  // After parsing: enables the log if -v is given, finds the value of each shared option and
  // appends those of the ORB to `orb`. A server that is needed and not named becomes the only one
  // of its kind in the naming service. Raises CLI::ValidationError for an invalid value and for a
  // missing server, and Failure when the naming service cannot be asked for it.
  void Apply(bool needsServer);

  // Starts the time of --max-time, which limits the calls of this thread. Later calls do nothing.
  void StartClock();
  // The time of a user's input does not count: End moves by the lifetime of the object. At its end
  // the thread may have no vq::CallDeadline but that of StartClock.
  class StoppedClock {
   public:
    explicit StoppedClock(CommandLine& line) : m_line(line) {}
    ~StoppedClock();
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;

   private:
    CommandLine& m_line;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
  };
  // When that time is over; the maximum without a limit.
  std::chrono::steady_clock::time_point End() const { return m_end; }
  // A part of --max-time remains for the logout.
  std::chrono::steady_clock::time_point EndBeforeLogout() const {
    return m_end - std::chrono::milliseconds(std::min(1000U, maxTime * 250));
  }
  // Limits the calls of this thread to that time, until the object is destroyed; null without a
  // limit.
  std::unique_ptr<vq::CallDeadline> LimitBeforeLogout() const;
  bool IsTimeOver() const { return std::chrono::steady_clock::now() >= m_end; }

  // `orb` as argv; valid until `orb` changes.
  std::vector<char*> OrbArguments();
  // The library's report of all settings, with these arguments. The origin of an option's value is
  // that of the option.
  std::list<vq::Setting> Report();

 private:
  std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::time_point::max();
  std::unique_ptr<vq::CallDeadline> m_deadline;

  void AddConnectionOptions(CLI::App& command);
  void FindValues();
};

// Adds an option for a number from 0 to `most`, whose present value is the default.
template <class Number>
void AddNumber(CLI::App& command, const char* names, Number& number, Number most, const char* type,
               const char* text) {
  command.add_option(names, number, text)
      ->check(CLI::Range(Number(0), most).description(""))
      ->capture_default_str()
      ->type_name(type);
}

// Why a value is invalid for its option; empty when it is valid.
std::string WhyInvalid(const SharedOption& option, const std::string& text);

// The two parts of a cause (GL_GetFailureCause): the finding; and what to do next, with a long
// option in place of the ORB's, or nothing.
std::pair<std::string, std::string> SplitCause(const std::string& cause);

// The text of a failure, followed by its cause, if any, and the advice.
std::string WithCause(const std::string& text, const std::string& cause);

}  // namespace vqclient

#endif  // VQ_CLIENT_COMMANDLINE_H
