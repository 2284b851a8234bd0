#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <string_view>

#include <CLI/CLI.hpp>

namespace vqclient {
namespace {

constexpr const char* kOwnScope = "vqclient";
constexpr const char* kDefaultScope = "default";
constexpr const char* kInitRef = "-ORBInitRef";
constexpr const char* kSeconds = "SECONDS";
constexpr const char* kMilliseconds = "MILLISECONDS";
constexpr unsigned int kDay = 86400;

// In the order of the help.
constexpr std::array kKinds{std::pair{"GSR", E_GSR},   std::pair{"GAS", E_GAS},
                            std::pair{"QIMS", E_QIMS}, std::pair{"Forecast", E_FORECAST},
                            std::pair{"CMS", E_CMS},   std::pair{"SLS", E_SLS}};

bool BelongsToOrb(std::string_view argument) {
  return argument.starts_with("-ORB") || argument.starts_with("-SSL") ||
         argument == "-BiDirPolicy" || argument == "-PreferIPMask";
}

// 0 for a text that is no number from 1 to a day's seconds.
unsigned int Seconds(std::string_view text) {
  unsigned int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number <= kDay ? number : 0;
}

std::string SiteScope(const std::string& site) {
  return "site " + site;
}

// Takes over the first value of the scope.
void TakeStored(const std::list<vq::StoredSetting>& stored, const std::string& scope,
                const std::string& name, Source source, std::optional<Value>& value) {
  if (value) return;
  for (const vq::StoredSetting& setting : stored) {
    if (setting.scope != scope || setting.name != name) continue;
    value = {setting.value, source, setting.file + ", " + scope};
    return;
  }
}

std::string Environment(const char* variable) {
  const char* const value = *variable != '\0' ? std::getenv(variable) : nullptr;
  return value != nullptr ? value : "";
}

}  // namespace

const std::vector<SharedOption>& SharedOptions() {
  static const std::vector<SharedOption> kOptions{
      {"server", "s", "VQ_SERVER", "", "NAME", "Logical name of the server"},
      {"kind", "k", "VQ_KIND", "", "GSR|GAS|QIMS|Forecast|CMS|SLS",
       "Kind of the server; without it GSR"},
      {"naming", "n", "VQ_NAMING", kInitRef, "HOST:PORT", "Address of the naming service"},
      {"user", "u", "VQ_USER", "", "NAME", "User; asked for when neither name nor file is given"},
      {"password-file", "f", "VQ_PASSWORD_FILE", "", "FILE",
       "File with user= and password= lines, readable by nobody else. Without it the password is "
       "asked for, or read from stdin"},
      {"max-time", "m", "", "", kSeconds,
       "Limit of the whole command (1 to 86400); without it each call has its own limit"},
      {"lifetime", "t", "", "", kSeconds,
       "After how long without a keep-alive the server drops the session (1 to 86400); without it "
       "600. Formerly --timeout"},
      {"connect-timeout", "", "", "-ORBConnectTimeout", kMilliseconds,
       "How long to wait for a connection"},
      {"call-timeout", "", "", "-ORBCallTimeout", kMilliseconds, "How long to wait for an answer"},
      {"tcp-keep-alive", "", "", "-ORBTcpKeepAlive", kMilliseconds,
       "Probe a connection that is silent for so long; 0: never"},
      {"tcp-user-timeout", "", "", "-ORBTcpUserTimeout", kMilliseconds,
       "How long sent data may stay unacknowledged; 0: as the system has it"},
      {"ca", "", "", "-SSLCACertificate", "FILE", "Trusted CA certificates; switches TLS on"},
      {"certificate", "", "", "-SSLCertificate", "FILE", "Own certificate for TLS"},
      {"key", "", "", "-SSLPrivateKey", "FILE", "Its private key"},
      {"verify-peer", "", "", "-SSLVerifyPeer", "0|1", "0: accept a certificate of any CA"},
      {"verify-host", "", "", "-SSLVerifyHost", "0|1", "0: accept a certificate of another host"},
      {"server-names", "", "", "-SSLServerNames", "NAME,...",
       "Accept certificates of these hosts alone; *.DOMAIN for all of a domain"},
      {"revocation-list", "", "", "-SSLRevocationList", "FILE",
       "Revocation lists of all trusted CAs; refuse revoked certificates"},
      {"encrypt-lookups", "", "", "-SSLEncryptLookups", "0|1",
       "1: the naming service must offer TLS, too"},
      {"bidir", "", "", "-BiDirPolicy", "0|1",
       "1: the server calls back over the client's own connection"},
      {"listen", "", "", "-ORBListenEndpoints", "ENDPOINT", "Where to listen for calls back"},
      {"prefer-ip", "", "", "-PreferIPMask", "TEXT",
       "How the own address begins that the server calls back to"},
      {"max-message", "", "", "-ORBMaxMessageSize", "BYTES", "Refuse messages that are larger"}};
  return kOptions;
}

const SharedOption* FindSharedOption(const std::string& name) {
  const auto& options = SharedOptions();
  const auto found = std::find_if(options.begin(), options.end(), [&](const SharedOption& option) {
    return option.name == name || (*option.setting != '\0' && option.setting == name);
  });
  return found != options.end() ? &*found : nullptr;
}

std::string ScopeOf(const SharedOption& option, const std::string& site) {
  if (!site.empty()) return SiteScope(site);
  return *option.setting != '\0' ? kDefaultScope : kOwnScope;
}

std::string OrbValue(const SharedOption& option, const std::string& text) {
  const bool isAddress =
      std::string_view(option.setting) == kInitRef && text.find('=') == std::string::npos;
  return isAddress ? "NameService=corbaloc:iiop:" + text + "/NameService" : text;
}

std::string Objection(const SharedOption& option, const std::string& text) {
  const std::string_view type = option.type;
  const std::string quoted = "'" + text + "' is ";
  if (type == kSeconds) return Seconds(text) > 0 ? "" : quoted + "no number from 1 to 86400";
  if (type.find('|') != std::string_view::npos) {
    const std::string choices = "|" + std::string(type) + "|";
    if (!text.empty() && choices.find("|" + text + "|") != std::string::npos) return "";
    std::string list(type);
    for (std::size_t at = 0; (at = list.find('|', at)) != std::string::npos;) {
      list.replace(at, 1, ", ");
    }
    return quoted + "none of " + list;
  }
  if (text.empty()) return "it is empty";
  if (*option.setting == '\0') return "";
  const std::string value = OrbValue(option, text);
  const std::array<const char*, 3> arguments{"vqclient", option.setting, value.c_str()};
  for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, 3, arguments.data())) {
    const bool isThis = setting.value.find(option.setting) != std::string::npos;
    if (setting.group == "ORB" && setting.name == "malformed" && isThis) return setting.value;
  }
  return "";
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
                   "Write the log to stderr; repeat for more (-v 4, -vv 5, -vvv 6)");
  program.add_flag("--json", Form().json, "Print data as JSON, also those of a failure");
  program.add_flag("-q,--quiet", Form().quiet,
                   "Print nothing but errors and the data that were asked for");
  program
      .add_option("--site", given["site"],
                  "Take the settings of this site (vqclient --site NAME config set ...)")
      ->type_name("SITE");
}

void CommandLine::AddConnectionOptions(CLI::App& command) {
  for (const SharedOption& shared : SharedOptions()) {
    const std::string name = shared.name;
    const std::string letter = *shared.letter != '\0' ? std::string("-") + shared.letter + "," : "";
    const std::string variable =
        *shared.variable != '\0' ? std::string(" [") + shared.variable + "]" : "";
    command.add_option(letter + "--" + name, given[name], shared.text + variable)
        ->type_name(shared.type)
        ->group(*shared.setting == '\0' || name == "naming" ? "Connection" : "ORB and TLS");
    // The former name; a group without a name is not shown.
    if (name == "lifetime") command.add_option("--timeout", given[name])->group("");
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
  std::string error;  // the library says it better when it starts
  const std::list<vq::StoredSetting> stored = vq::ReadStoredSettings(error);
  const auto find = [&](const std::string& name, const SharedOption* option) {
    std::optional<Value> value;
    const std::string variable = option != nullptr ? option->variable : "VQ_SITE";
    if (const std::string& text = given[name]; !text.empty()) {
      value = {text, Source::kCommandLine, "command line"};
    } else if (const std::string set = Environment(variable.c_str()); !set.empty()) {
      value = {set, Source::kEnvironment, "environment, " + variable};
    }
    const bool isOrb = option != nullptr && *option->setting != '\0';
    const std::string stands = isOrb ? option->setting : name;
    if (!site.empty()) TakeStored(stored, SiteScope(site), stands, Source::kSite, value);
    // The library itself reads what lies in "default".
    if (!isOrb) TakeStored(stored, kOwnScope, stands, Source::kGeneral, value);
    if (value) values[name] = *value;
  };
  find("site", nullptr);
  if (const auto found = values.find("site"); found != values.end()) site = found->second.text;
  const bool isKnown =
      site.empty() || std::any_of(stored.begin(), stored.end(),
                                  [&](auto& setting) { return setting.scope == SiteScope(site); });
  if (!isKnown) throw CLI::ValidationError("--site", "no settings of a site '" + site + "'");
  for (const SharedOption& option : SharedOptions()) find(option.name, &option);
}

void CommandLine::GiveOrbItsArguments() {
  for (const SharedOption& option : SharedOptions()) {
    const auto found = values.find(option.name);
    if (*option.setting == '\0' || found == values.end()) continue;
    // What was given in the ORB's own way counts.
    if (std::find(orb.begin() + 1, orb.end(), option.setting) != orb.end()) continue;
    orb.emplace_back(option.setting);
    orb.emplace_back(OrbValue(option, found->second.text));
  }
}

// A user and a password file exclude each other. Of two that come from different places the nearer
// one counts, and of two that are equally near the file.
void CommandLine::SettleUserOrFile() {
  const auto name = values.find("user");
  const auto file = values.find("password-file");
  if (name == values.end() || file == values.end()) return;
  if (name->second.source == Source::kCommandLine && file->second.source == Source::kCommandLine) {
    return;  // the library says that this is a conflict
  }
  values.erase(name->second.source < file->second.source ? file : name);
}

void CommandLine::Apply(bool needsServer) {
  if (verbosity > 0) {
    TDiag::Instance()->SetMinimumDebugLevel(std::min(verbosity + 3, TDiag::kTrace));
    TDiag::Instance()->AddStandardErrorSink();
  }
  FindValues();
  for (const auto& [name, value] : values) {
    const SharedOption* const option = FindSharedOption(name);
    if (option == nullptr) continue;
    // The ORB's own are judged by the ORB, beside all that it gets.
    if (*option->setting != '\0' && std::string_view(option->type).find('|') == std::string::npos) {
      continue;
    }
    if (const std::string objection = Objection(*option, value.text); !objection.empty()) {
      throw CLI::ValidationError("--" + name, objection + " (" + value.origin + ")");
    }
  }
  SettleUserOrFile();
  const auto text = [&](const char* name) {
    const auto found = values.find(name);
    return found != values.end() ? found->second.text : std::string();
  };
  server = text("server");
  user = text("user");
  passwordFile = text("password-file");
  maxTime = Seconds(text("max-time"));
  if (const unsigned int seconds = Seconds(text("lifetime")); seconds > 0) lifetime = seconds;
  for (const auto& [name, number] : kKinds) {
    if (text("kind") == name) kind = number;
  }
  GiveOrbItsArguments();
  if (!needsServer || !server.empty()) return;
  throw CLI::ValidationError(
      "--server NAME is required, or VQ_SERVER, or once: vqclient config set server NAME");
}

void CommandLine::StartClock() {
  if (maxTime == 0 || m_deadline != nullptr) return;
  m_deadline = std::make_unique<vq::CallDeadline>(std::chrono::seconds(maxTime));
}

std::vector<char*> CommandLine::OrbArguments() {
  std::vector<char*> arguments;
  for (std::string& argument : orb) arguments.push_back(argument.data());
  return arguments;
}

std::list<vq::Setting> CommandLine::Report() const {
  std::vector<const char*> arguments;
  for (const std::string& argument : orb) arguments.push_back(argument.c_str());
  return vq::ReportSettings(CLIENT_CLI, static_cast<int>(arguments.size()), arguments.data());
}

}  // namespace vqclient
