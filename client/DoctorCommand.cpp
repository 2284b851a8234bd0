// vqclient doctor: finds out step by step why a connection or a callback fails, says what to do
// next, and can store a way that works.

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <support/orb/ORBCommon.h>
#include <support/orb/ReferenceAddress.h>

#include "Commands.h"
#include "ExitCodes.h"
#include "Login.h"
#include "NamingConnection.h"

namespace vqclient {
namespace {

enum class Status { kGood, kNote, kBad };

constexpr std::chrono::milliseconds kTcpLimit{5000};
constexpr int kCallLimit = 10000;  // milliseconds

constexpr int kNoServer = ExitCodeOf(vq::LoginResult::kNoServer);
constexpr int kOrbNotUp = ExitCodeOf(vq::LoginResult::kOrbNotUp);

// What to do next according to the cause of a failure, with this program's option in place of the
// ORB's setting; empty when the cause does not say.
std::string AdviceIn(const std::string& cause) {
  const std::size_t semicolon = cause.rfind("; ");
  if (semicolon == std::string::npos) return "";
  std::string advice = cause.substr(semicolon + 2);
  advice[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(advice[0])));
  for (const SharedOption& option : SharedOptions()) {
    const std::size_t at =
        *option.setting != '\0' ? advice.find(option.setting) : std::string::npos;
    if (at == std::string::npos) continue;
    const std::string name = option.name;
    advice.replace(at, std::strlen(option.setting), "--" + name);
    return advice + "; vqclient config set " + name + " " + option.type + " stores it.";
  }
  return advice + ".";
}

bool NamesSetting(const std::string& cause) {
  const auto& options = SharedOptions();
  return std::any_of(options.begin(), options.end(), [&](const SharedOption& option) {
    return *option.setting != '\0' && cause.find(option.setting) != std::string::npos;
  });
}

// Why a host and port are not reached, as advice.
std::string AdviceFor(vq::orb::Reach reach, const std::string& host, const std::string& what) {
  switch (reach) {
    case vq::orb::Reach::kNotResolvable:
      return "This host does not know the name '" + host +
             "': correct it, or add it to the DNS or to /etc/hosts.";
    case vq::orb::Reach::kRefused:
      return "Nobody listens there: start " + what + ", or correct the port.";
    case vq::orb::Reach::kReached:
      return "It takes connections, but gives no answer: " + what +
             " hangs, or something else has that port. Restart it, or correct the port.";
    case vq::orb::Reach::kFailed:
      break;
  }
  return "Check that the host is up, and that a firewall lets the port through.";
}

// Lines of a text under one another, each indented.
std::string Indented(const std::string& text) {
  std::string result;
  for (const char c : text) {
    result += c;
    if (c == '\n') result += "          ";
  }
  return result;
}

std::string Mark(Status status) {
  constexpr std::array kMarks{"[good] ", "[note] ", "[BAD]  "};
  constexpr std::array kColours{"\033[32m", "\033[33m", "\033[31m"};
  const auto index = static_cast<std::size_t>(status);
  const char* const refused = std::getenv("NO_COLOR");
  const bool plain = isatty(STDOUT_FILENO) != 1 || (refused != nullptr && *refused != '\0');
  if (plain) return kMarks.at(index);
  return std::string(kColours.at(index)) + kMarks.at(index) + "\033[0m";
}

// An IPv6 address that is good on one network link alone.
bool IsLinkLocal(const std::string& host) {
  return host.size() > 3 &&
         (host.starts_with("fe8") || host.starts_with("fe9") || host.starts_with("fea") ||
          host.starts_with("feb")) &&
         host.find(':') != std::string::npos;
}

std::string Text(const vq::orb::ReferenceEndpoint& endpoint) {
  return endpoint.host + " port " + std::to_string(endpoint.port) + (endpoint.tls ? " (TLS)" : "");
}

// Prints what a step has found; the advice is for kBad alone. Returns whether it is not bad.
bool Report(const std::string& step, Status status, const std::string& detail,
            const std::string& advice = "") {
  const bool isBad = status == Status::kBad;
  if (Form().json) {
    constexpr std::array kNames{"good", "note", "bad"};
    nlohmann::json entry{{"step", step},
                         {"good", status == Status::kGood},
                         {"status", kNames.at(static_cast<std::size_t>(status))},
                         {"detail", detail}};
    if (isBad) entry["advice"] = advice;
    PrintJson(entry, -1);
  } else if (isBad || !Form().quiet) {
    std::cout << Mark(status) << step << ": " << Indented(detail) << '\n';
    if (isBad) std::cout << "   next:  " << Indented(advice) << '\n';
  }
  std::cout << std::flush;
  return !isBad;
}

bool Bad(const std::string& step, const std::string& detail, const std::string& advice) {
  return Report(step, Status::kBad, detail, advice);
}

bool Good(const std::string& step, const std::string& detail) {
  return Report(step, Status::kGood, detail);
}

class Doctor {
 public:
  explicit Doctor(CommandLine& line) : m_line(line), m_kind(GL_ResolveServerID(line.kind)) {}

  // Goes through the steps and prints each finding; stops where a later step could only repeat the
  // failure. Returns the exit code of the first failure, 0 without one.
  int Examine() {
    if (!ExamineSettings() || !ExamineNamingService()) return kOrbNotUp;
    if (!ExamineRegistration() || !ExamineAddresses() || !ExamineServer()) return kNoServer;
    if (const int code = ExamineLogin(); code != kSuccess) return code;
    return ExamineCallbacks();
  }

  // After Examine: an address and a direction of connection by which the server called back.
  bool FoundWay() const { return m_foundWay; }
  std::string Way() const {
    return m_biDirectional
               ? "calls back over the client's own connection"
               : "calls back to " + (m_address.empty() ? "the default address" : m_address);
  }

  // Stores the way that was found, and the ORB's settings that this run had from its command line
  // or environment, and reads them back. Why that failed; empty when it did not.
  std::string Store() {
    m_needed.emplace_back("-BiDirPolicy", m_biDirectional ? "1" : "0");
    for (const auto& [name, value] : m_needed) {
      const vq::StoreResult stored =
          vq::StoreSetting("default", name, value, vq::SettingsLayer::kOwn);
      if (!stored.error.empty()) return stored.error;
    }
    if (!TroubleshootConnection::ORBConfigure(m_address, m_biDirectional, false)) {
      return GL_GetFailureCause();
    }
    const std::string endpoint = "hostname_in_ior=" + m_address;
    for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, 0, nullptr)) {
      const auto needed = std::find_if(m_needed.rbegin(), m_needed.rend(), [&](const auto& pair) {
        return pair.first == setting.name;
      });
      const bool isOther = needed != m_needed.rend() && setting.name != "-ORBListenEndpoints" &&
                           needed->second != setting.value;
      const bool isOtherEndpoint = setting.name == "-ORBListenEndpoints" && !m_address.empty() &&
                                   setting.value.find(endpoint) == std::string::npos;
      if (isOther || isOtherEndpoint) {
        return setting.name + " is still '" + setting.value + "' (" + setting.origin + ")";
      }
    }
    return "";
  }

 private:
  bool ExamineSettings() {
    std::string set;
    for (const vq::Setting& setting : m_line.Report()) {
      if (setting.group != "ORB") continue;
      if (!setting.name.starts_with('-')) {
        return Bad("settings", setting.value,
                   "Correct it where it is set; vqclient config show lists every setting with its "
                   "origin.");
      }
      if (setting.name == "-ORBInitRef") m_namingReference = setting.value;
      m_tls |= (setting.name == "-SSLCACertificate" || setting.name == "-SSLCertificate") &&
               !setting.value.empty();
      if (setting.origin == "built in") continue;
      set += "\n" + setting.name + " = " + setting.value + " (" + setting.origin + ")";
      const SharedOption* const option = FindSharedOption(setting.name);
      const auto value = option != nullptr ? m_line.values.find(option->name) : m_line.values.end();
      const bool isOfSite = value != m_line.values.end() && value->second.source == Source::kSite;
      if (setting.origin == "command line" && !isOfSite) {
        m_needed.emplace_back(setting.name, setting.value);
      }
    }
    return Good("settings", set.empty() ? "all built in" : "in force:" + set);
  }

  // Where the naming service is configured to be; empty when that names no host.
  vq::orb::ReferenceEndpoint NamingAddress() const {
    constexpr std::string_view kStart = "NameService=corbaloc:";
    vq::orb::ReferenceEndpoint place;
    if (!m_namingReference.starts_with(kStart)) return place;
    std::string address = m_namingReference.substr(kStart.size());
    address.resize(std::min(address.find_first_of("/,"), address.size()));  // the first of several
    address.erase(0, address.find(':') + 1);                                // the protocol
    address.erase(0, address.find('@') + 1);                                // and its version
    const std::size_t colon = address.rfind(':');
    if (colon == std::string::npos) return place;
    std::from_chars(&address[colon + 1], address.data() + address.size(), place.port);
    place.host = address.substr(0, colon);
    if (place.host.starts_with('[')) place.host = place.host.substr(1, place.host.size() - 2);
    return place;
  }

  bool ExamineNamingService() {
    try {
      m_naming.emplace(m_line, kCallLimit, kOrbNotUp);
      return Good("naming service", "it answers");
    } catch (const Failure&) {  // The cause says more.
    }
    const std::string cause = GL_GetFailureCause();
    const std::string advice = AdviceIn(cause);
    if (!advice.empty()) return Bad("naming service", cause, advice);
    if (NamesSetting(cause)) {
      return Bad("settings", cause,
                 "Correct that setting; vqclient config show lists every setting with its origin.");
    }
    const vq::orb::ReferenceEndpoint place = NamingAddress();
    if (place.host.empty()) {
      return Bad("naming service", cause,
                 "Give its address in the form HOST:PORT: --naming HOST:PORT.");
    }
    std::string why = Text(place) + " does not answer";
    const vq::orb::Reach reach = vq::orb::TryToReach(place, kTcpLimit, why);
    return Bad("naming service", why, AdviceFor(reach, place.host, "the naming service"));
  }

  bool ExamineRegistration() {
    const std::string name = "'" + m_line.server + "' of kind " + m_kind;
    try {
      m_server = ORBCommon<1>::Get()->Bind(m_line.server, m_kind, "UsersManager", false);
      return Good("registration", "the naming service knows server " + name);
    } catch (const CosNaming::NamingContext::NotFound&) {
      return Bad(
          "registration", "the naming service knows no server " + name,
          "Compare name and kind with what vqclient servers lists; if they are right, start the "
          "server.");
    } catch (const CORBA::Exception& e) {
      return Bad("registration", "the naming service fails: " + CauseOf(e),
                 "Try again; if it stays so, restart the naming service.");
    }
  }

  bool ExamineAddresses() {
    const std::vector<vq::orb::ReferenceEndpoint> all = vq::orb::EndpointsOf(m_server.in());
    std::vector<vq::orb::ReferenceEndpoint> usable;
    std::copy_if(all.begin(), all.end(), std::back_inserter(usable),
                 [&](const vq::orb::ReferenceEndpoint& endpoint) { return endpoint.tls == m_tls; });
    if (all.empty()) {
      return Bad("address", "the server's reference has no address",
                 "Restart the server, so that it registers anew.");
    }
    if (usable.empty()) {
      return m_tls ? Bad("address", "TLS is on here, and the server offers none",
                         "Give the server a TLS endpoint, or unset ca and certificate here.")
                   : Bad("address", "the server takes TLS connections alone",
                         "Switch TLS on: --ca FILE, or vqclient config set ca FILE.");
    }
    std::string found;
    std::string advice;
    bool isReached = false;
    for (const vq::orb::ReferenceEndpoint& endpoint : usable) {
      found += found.empty() ? "" : "\n";
      if (IsLinkLocal(endpoint.host) && endpoint.host.find('%') == std::string::npos) {
        found += Text(endpoint) + " is a link-local address: it is good on one link alone";
        advice = "Let the server publish another address of its host (hostname_in_ior).";
        continue;
      }
      std::string result = Text(endpoint) + " takes connections";
      const vq::orb::Reach reach = vq::orb::TryToReach(endpoint, kTcpLimit, result);
      isReached |= reach == vq::orb::Reach::kReached;
      found += result;
      if (advice.empty()) advice = AdviceFor(reach, endpoint.host, "the server");
    }
    return isReached ? Good("address", found) : Bad("address", found, advice);
  }

  bool ExamineServer() {
    try {
      const CORBA::Object_var object =
          ORBCommon<1>::Get()->Bind(m_line.server, m_kind, "UsersManager", true);
      return Good("server", "it answers");
    } catch (const CORBA::Exception& e) {
      const std::string cause = CauseOf(e);
      std::string advice = AdviceIn(cause);
      if (advice.empty() && dynamic_cast<const CORBA::OBJECT_NOT_EXIST*>(&e) != nullptr) {
        advice =
            "The server was restarted without registering anew, or another one has its port: "
            "restart it.";
      } else if (advice.empty() && m_tls) {
        advice =
            "The TLS handshake does not come to an end: the server hangs, or asks for a "
            "certificate of this client (--certificate FILE, --key FILE). Look at its log.";
      } else if (advice.empty()) {
        advice = AdviceFor(vq::orb::Reach::kReached, "", "the server");
      }
      return Bad("server", "it does not answer: " + cause, advice);
    }
  }

  int ExamineLogin() {
    vq::LoginError error;
    try {
      m_session = LogIn(m_line, OptionsOf(m_line), error);
    } catch (const Failure& e) {
      Tell(e.what());
      Bad("login", "no user name or password",
          "Give --user NAME and type the password, or give --password-file FILE.");
      return e.exitCode;
    }
    if (m_session) {
      Good("login", "accepted as " + ConnectionSettings::Get()->getUserName());
      return kSuccess;
    }
    const auto says = [&](const char* text) {
      return std::string_view(error.what()).find(text) != std::string_view::npos;
    };
    const bool isGate = says("is not compatible with");
    std::string advice = AdviceIn(error.Cause());
    if (advice.empty()) advice = "Look at the server's log; -v shows that of this client.";
    if (isGate) {
      advice =
          "Install the client that belongs to the server, or name the server's version in "
          "min-accepted-servers.txt.";
    } else if (error.Result() == vq::LoginResult::kPasswordExpired) {
      advice = "Change it: vqclient passwd.";
    } else if (error.Result() == vq::LoginResult::kAccountLocked) {
      advice = "Ask the site's administrator to unlock the account.";
    } else if (error.Result() == vq::LoginResult::kNotAuthorized) {
      advice = "Ask the site's administrator for the right to log in.";
    } else if (says("password is incorrect")) {
      advice = "Check user and password, upper and lower case included.";
    }
    Bad(isGate ? "version gate" : "login", "code " + std::to_string(error.Code()), advice);
    return ExitCodeOf(error.Result());
  }

  void TryCallback(const std::string& address, bool biDirectional) {
    const std::string way =
        biDirectional
            ? "callback over the client's own connection"
            : "callback to " + (address.empty() ? std::string("the default address") : address);
    if (IsLinkLocal(address)) {
      Report(way, Status::kNote, "not tried: a link-local address is good on one link alone");
      return;
    }
    long milliseconds = 0;
    const bool reached =
        TroubleshootConnection::ORBInitAndTestCallback(biDirectional, address, milliseconds, false);
    // Over the client's own connection it may have a cause although the server called back.
    const std::string cause = GL_GetFailureCause();
    if (!reached || (biDirectional && !cause.empty())) {
      Report(way, Status::kNote, cause.empty() ? "the server did not call back" : cause);
      return;
    }
    if (!m_foundWay) {
      m_foundWay = true;
      m_address = address;
      m_biDirectional = biDirectional;
    }
    Good(way, std::to_string(milliseconds) + " ms there and back");
  }

  int ExamineCallbacks() {
    // A trial goes by settings that it stores for a moment.
    const std::string scope = "Test" + std::to_string(getpid());
    for (const std::optional<std::string>& value : {std::optional<std::string>("0"), {}}) {
      const vq::StoreResult stored =
          vq::StoreSetting(scope, "-BiDirPolicy", value, vq::SettingsLayer::kOwn);
      if (stored.error.empty()) continue;
      Bad("callbacks", "not tried, for the settings cannot be stored: " + stored.error,
          "Make " + stored.file + " writable, or set VQ_CONFIG_DOMAINS to a directory that is.");
      return kNoCallback;
    }
    std::vector<IPAddressInfo*> addresses;
    unsigned int preferred = 0;
    TroubleshootConnection::IdentifyIPAddresses(addresses, preferred);
    if (addresses.empty()) TryCallback("", false);  // a host that has only the loopback address
    for (const IPAddressInfo* const address : addresses) {
      TryCallback(address->ipAddress, false);
      delete address;
    }
    TryCallback("", true);
    if (m_foundWay) return kSuccess;
    Bad("callbacks", "the server reaches this client in no way",
        "Open a port of this host for the server (--listen iiop://:PORT), or let the server accept "
        "bidirectional connections.");
    return kNoCallback;
  }

  CommandLine& m_line;
  const std::string m_kind;
  std::optional<NamingConnection> m_naming;
  CORBA::Object_var m_server;
  std::optional<vq::Session> m_session;  // on the ORB of m_naming, and ends before it
  std::vector<std::pair<std::string, std::string>> m_needed;  // settings to store, by name
  std::string m_namingReference;
  bool m_tls = false;
  bool m_foundWay = false;
  std::string m_address;
  bool m_biDirectional = false;
};

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
  const std::string error = doctor.Store();
  if (!error.empty()) throw Failure(kRefused, "The settings cannot be written: " + error);
  Say("Written; clients use it from their next start on.");
  return code;
}

}  // namespace

void AddDoctorCommand(CLI::App& program, CommandLine& line) {
  auto fix = std::make_shared<bool>(false);
  line.AddCommand(program, "doctor", "Find out why a connection or a callback fails", true,
                  [fix](CommandLine& given) { return Run(given, *fix); })
      ->add_flag("--fix", *fix,
                 "Write the way that worked to the configuration domain, after asking");
}

}  // namespace vqclient
