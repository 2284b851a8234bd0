#include <client/CommandLine.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cstdlib>

#include <CLI/CLI.hpp>

#include <client/ExitCodes.h>
#include <client/NamingConnection.h>
#include <support/orb/OrbSettings.h>

namespace vqclient {
namespace {

constexpr const char* kOwnScope = "vqclient";
constexpr const char* kDefaultScope = "default";
constexpr const char* kSeconds = "SECONDS";
constexpr const char* kMilliseconds = "MILLISECONDS";
constexpr unsigned int kDay = 86400;

bool BelongsToOrb(std::string_view argument) {
  return argument.starts_with("-ORB") || argument.starts_with("-SSL") ||
         argument == vq::orb::kBiDirPolicy || argument == vq::orb::kPreferIpMask;
}

// 0 for a text that is not a number from 1 to kDay.
unsigned int Seconds(std::string_view text) {
  unsigned int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number <= kDay ? number : 0;
}

std::string SiteScope(const std::string& site) {
  return std::string(kSiteScope) + site;
}

}  // namespace

const std::vector<SharedOption>& SharedOptions() {
  using namespace vq::orb;
  static const std::vector<SharedOption> kOptions{
      {"site", "", "VQ_SITE", "", "SITE",
       "Use the settings of this site (vqclient --site NAME config set ...)"},
      {"server", "s", "VQ_SERVER", "", "NAME",
       "Logical name of the server; default: the only one of its kind in the naming service"},
      {"kind", "k", "VQ_KIND", "", "GSR|GAS|QIMS|Forecast|CMS|SLS",
       "Kind of the server; default GSR"},
      {"naming", "n", "VQ_NAMING", kInitRef, "HOST:PORT",
       "Address of the naming service (HOST alone: port 2809), or its reference (corbaloc:..., "
       "IOR:...)"},
      {"user", "u", "VQ_USER", "", "NAME", "User; without it and a password file vqclient asks"},
      {"password-file", "f", "VQ_PASSWORD_FILE", "", "FILE",
       "File with user= and password= lines that only you can read. Without it vqclient asks for "
       "the password, or reads it from stdin"},
      {"max-time", "m", "", "", kSeconds,
       "Time limit of the whole command (1 to 86400); default: none, each call has its own limit"},
      {"lifetime", "t", "", "", kSeconds,
       "The server ends the session after this time without a keep-alive (1 to 86400); default "
       "600. For session and auth the site's setting replaces it. Formerly --timeout"},
      {"connect-timeout", "", "", kConnectTimeout, kMilliseconds, "Time limit for connecting"},
      {"call-timeout", "", "", kCallTimeout, kMilliseconds, "Time limit of a remote call"},
      {"tcp-keep-alive", "", "", kTcpKeepAlive, kMilliseconds,
       "Probe a connection after this idle time; 0: never"},
      {"tcp-user-timeout", "", "", kTcpUserTimeout, kMilliseconds,
       "End a connection when sent data stays unacknowledged for this time; 0: the system's limit"},
      {"ca", "", "", kTlsCa, "FILE", "Trusted CA certificates; enables TLS"},
      {"certificate", "", "", kTlsCertificate, "FILE", "Own TLS certificate; enables TLS"},
      {"key", "", "", kTlsKey, "FILE", "Private key of the certificate"},
      {"verify-peer", "", "", kTlsVerifyPeer, "0|1", "0: accept any certificate"},
      {"verify-host", "", "", kTlsVerifyHost, "0|1", "0: accept a certificate of another host"},
      {"server-names", "", "", kTlsServerNames, "NAME,...",
       "Accept only certificates of these hosts; *.DOMAIN for all hosts of a domain"},
      {"revocation-list", "", "", kTlsRevocationList, "FILE",
       "Revocation lists (CRL) of all trusted CAs"},
      {"encrypt-lookups", "", "", kTlsEncryptLookups, "0|1",
       "1: use TLS for the naming service, too"},
      {"bidir", "", "", kBiDirPolicy, "0|1",
       "1: callbacks use the client's connection to the server (bidirectional IIOP)"},
      {"listen", "", "", kListenEndpoints, "ENDPOINT", "Where to listen for callbacks"},
      {"prefer-ip", "", "", kPreferIpMask, "TEXT",
       "Beginning of the local address that $IP in --listen stands for"},
      {"max-message", "", "", kMaxMessageSize, "BYTES", "Refuse larger messages"}};
  return kOptions;
}

const SharedOption* FindSharedOption(const std::string& name) {
  const auto found = std::ranges::find_if(SharedOptions(), [&](const SharedOption& option) {
    return option.name == name || (option.IsOrb() && option.setting == name);
  });
  return found != SharedOptions().end() ? &*found : nullptr;
}

const SharedOption* SettingNamedIn(const std::string& text) {
  const auto found = std::ranges::find_if(SharedOptions(), [&](const SharedOption& option) {
    return option.IsOrb() && text.find(option.setting) != std::string::npos;
  });
  return found != SharedOptions().end() ? &*found : nullptr;
}

std::string ScopeOf(const SharedOption& option, const std::string& site) {
  if (!site.empty()) return SiteScope(site);
  return option.IsOrb() ? kDefaultScope : kOwnScope;
}

std::string OrbValue(const SharedOption& option, const std::string& text) {
  if (option.setting != vq::orb::kInitRef || text.find('=') != std::string::npos) return text;
  const bool isReference = text.starts_with("corbaloc:") || text.starts_with("IOR:");
  return "NameService=" + (isReference ? text : "corbaloc:iiop:" + text + "/NameService");
}

std::string WhyInvalid(const SharedOption& option, const std::string& text) {
  const std::string quoted = "'" + text + "' is ";
  if (option.type == kSeconds) {
    return Seconds(text) > 0 ? "" : quoted + "not a number from 1 to 86400";
  }
  if (option.IsChoice()) {
    const bool isOne = ("|" + option.type + "|").find("|" + text + "|") != std::string::npos;
    return isOne && !text.empty() ? "" : quoted + "not one of " + Replaced(option.type, "|", ", ");
  }
  if (text.empty()) return "it is empty";
  if (!option.IsOrb()) return "";
  const std::string value = OrbValue(option, text);
  if (value.ends_with(":/NameService")) return quoted + "not HOST:PORT";
  const std::array<const char*, 3> arguments{"vqclient", option.setting.c_str(), value.c_str()};
  for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, 3, arguments.data())) {
    const bool isThis = setting.value.find(option.setting) != std::string::npos;
    if (setting.group == "ORB" && setting.name == "malformed" && isThis) return setting.value;
  }
  return "";
}

std::pair<std::string, std::string> SplitCause(const std::string& cause) {
  const std::size_t semicolon = cause.rfind("; ");
  if (semicolon == std::string::npos) return {cause, ""};
  std::string advice = cause.substr(semicolon + 2) + ".";
  advice[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(advice[0])));
  if (const SharedOption* const option = SettingNamedIn(advice)) {
    advice = Replaced(advice, option->setting, "--" + option->name) +
             " To store it: vqclient config set " + option->name + " " + option->type;
  }
  return {cause.substr(0, semicolon), advice};
}

std::string WithCause(const std::string& text, const std::string& cause) {
  if (cause.empty()) return text;
  const auto [finding, advice] = SplitCause(cause);
  return text + "\nCause: " + finding + (advice.empty() ? "" : "\nNext: " + advice);
}

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
                   "Write the log to stderr: -v level 4, -vv level 5, -vvv level 6");
  program.add_flag("--json", Form().json, "Print data as JSON, also that of a failure");
  program.add_flag("-q,--quiet", Form().quiet,
                   "Print only errors, and the data that was asked for");
  const SharedOption& shared = SharedOptions().front();
  program.add_option("--site", given["site"], shared.text)->type_name(shared.type);
}

void CommandLine::AddConnectionOptions(CLI::App& command) {
  for (const SharedOption& shared : SharedOptions()) {
    if (shared.name == "site") continue;  // precedes a command
    const std::string letter = shared.letter.empty() ? "" : "-" + shared.letter + ",";
    const std::string variable = shared.variable.empty() ? "" : " [" + shared.variable + "]";
    command.add_option(letter + "--" + shared.name, given[shared.name], shared.text + variable)
        ->type_name(shared.type)
        ->group(!shared.IsOrb() || shared.name == "naming" ? "Connection" : "ORB and TLS");
    // The former name; the help does not show a group without a name.
    if (shared.name == "lifetime") command.add_option("--timeout", given[shared.name])->group("");
  }
}

CLI::App* CommandLine::AddCommand(CLI::App& parent, const char* name, const char* text,
                                  bool needsServer, const std::function<int(CommandLine&)>& run) {
  CLI::App* const command = parent.add_subcommand(name, text);
  AddConnectionOptions(*command);
  command->callback([this, command, needsServer, run] {
    if (!command->get_subcommands().empty()) return;
    Apply(needsServer);
    exitCode = run(*this);
  });
  return command;
}

void CommandLine::FindValues() {
  std::string error;  // reported when the ORB starts
  const std::list<vq::StoredSetting> stored = vq::ReadStoredSettings(error);
  const auto find = [&](const SharedOption& option) {
    // The first value counts.
    const auto add = [&](const std::string& text, Source source, const std::string& origin) {
      values.try_emplace(option.name, Value{text, source, origin});
    };
    const auto addStored = [&](const std::string& scope, Source source) {
      for (const auto& [in, name, value, file] : stored) {
        if (in == scope && name == option.StoredName()) add(value, source, file + ", " + scope);
      }
    };
    if (!given[option.name].empty()) add(given[option.name], Source::kCommandLine, "command line");
    const char* const set = std::getenv(option.variable.c_str());
    if (set != nullptr && *set != '\0') {
      add(set, Source::kEnvironment, "environment, " + option.variable);
    }
    if (!site.empty()) addStored(SiteScope(site), Source::kSite);
    // The library itself reads the scope "default".
    if (!option.IsOrb()) addStored(kOwnScope, Source::kGeneral);
  };
  find(SharedOptions().front());  // the site, whose settings the others may have
  if (const auto found = values.find("site"); found != values.end()) site = found->second.text;
  const auto isOfSite = [&](auto& setting) { return setting.scope == SiteScope(site); };
  if (!site.empty() && std::ranges::none_of(stored, isOfSite)) {
    throw CLI::ValidationError("--site", "no settings of a site '" + site + "'");
  }
  std::ranges::for_each(SharedOptions(), find);

  // A user and a password file exclude each other. The one of higher precedence applies; with equal
  // precedence the file. Both on the command line are a conflict, which OptionsOf reports.
  const auto name = values.find("user");
  const auto file = values.find("password-file");
  if (name == values.end() || file == values.end()) return;
  if (name->second.source < file->second.source) {
    values.erase(file);
  } else if (name->second.source != Source::kCommandLine) {
    values.erase(name);
  }
}

void CommandLine::Apply(bool needsServer) {
  if (verbosity > 0) {
    TDiag::Instance()->SetMinimumDebugLevel(verbosity + 3);
    TDiag::Instance()->AddStandardErrorSink();
  }
  FindValues();
  for (const SharedOption& option : SharedOptions()) {
    const auto found = values.find(option.name);
    if (found == values.end()) continue;
    const auto& [text, source, origin] = found->second;
    // The ORB checks the other settings of its own when it starts.
    const bool isChecked = !option.IsOrb() || option.IsChoice();
    if (const std::string reason = isChecked ? WhyInvalid(option, text) : ""; !reason.empty()) {
      throw CLI::ValidationError("--" + option.name, reason + " (" + origin + ")");
    }
    if (!option.IsOrb()) continue;
    if (std::find(orb.begin() + 1, orb.end(), option.setting) == orb.end()) {
      orb.insert(orb.end(), {option.setting, OrbValue(option, text)});
    } else {
      values.erase(found);  // an option in the ORB's form overrides the long one
    }
  }
  const auto text = [&](const char* name) {
    const auto found = values.find(name);
    return found != values.end() ? found->second.text : std::string();
  };
  server = text("server");
  user = text("user");
  passwordFile = text("password-file");
  maxTime = Seconds(text("max-time"));
  if (const unsigned int seconds = Seconds(text("lifetime")); seconds > 0) lifetime = seconds;
  for (const SERVER_ID one : {E_GSR, E_GAS, E_QIMS, E_FORECAST, E_CMS, E_SLS}) {
    if (text("kind") == GL_ResolveServerID(one)) kind = one;
  }
  if (!needsServer || !server.empty()) return;
  const NamingConnection naming(*this, 0, kOrbNotUp);
  std::string reason;
  try {
    server = naming.OnlyServer(kind, reason);
  } catch (const CORBA::Exception& e) {
    throw Failure(kOrbNotUp, WithCause("The naming service fails.", CauseOf(e)));
  }
  if (server.empty()) {
    throw CLI::ValidationError("--server NAME is required: " + reason +
                               "; vqclient servers lists all");
  }
}

void CommandLine::StartClock() {
  if (maxTime == 0 || m_deadline != nullptr) return;
  m_end = std::chrono::steady_clock::now() + std::chrono::seconds(maxTime);
  m_deadline = std::make_unique<vq::CallDeadline>(m_end);
}

CommandLine::StoppedClock::~StoppedClock() {
  if (m_line.m_deadline == nullptr) return;
  m_line.m_end += std::chrono::steady_clock::now() - m_start;
  m_line.m_deadline.reset();  // The new one would keep to it.
  m_line.m_deadline = std::make_unique<vq::CallDeadline>(m_line.m_end);
}

std::unique_ptr<vq::CallDeadline> CommandLine::LimitBeforeLogout() const {
  return maxTime == 0 ? nullptr : std::make_unique<vq::CallDeadline>(EndBeforeLogout());
}

std::vector<char*> CommandLine::OrbArguments() {
  std::vector<char*> arguments;
  for (std::string& argument : orb) arguments.push_back(argument.data());
  return arguments;
}

std::list<vq::Setting> CommandLine::Report() {
  const std::vector<char*> arguments = OrbArguments();
  std::list<vq::Setting> settings =
      vq::ReportSettings(CLIENT_CLI, static_cast<int>(arguments.size()), arguments.data());
  for (vq::Setting& setting : settings) {
    const SharedOption* const option = FindSharedOption(setting.name);
    const auto found = option != nullptr ? values.find(option->name) : values.end();
    const bool isOurs = setting.origin == "command line" && found != values.end();
    if (isOurs) setting.origin = found->second.origin;
  }
  return settings;
}

}  // namespace vqclient
