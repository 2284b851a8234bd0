#include "Doctor.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include <support/orb/ORBCommon.h>

#include "ExitCodes.h"
#include "NamingConnection.h"
#include "TcpProbe.h"

namespace vqclient {
namespace {

constexpr std::chrono::milliseconds kTcpLimit{5000};
constexpr int kCallLimit = 10000;  // milliseconds

struct Advice {
  std::string_view sign;  // what the reasons of a failure contain
  std::string_view text;
};

// Of refused certificates and the like; the first one that fits counts.
constexpr std::array kTlsAdvice{
    Advice{"it has expired", "Have the server's certificate renewed."},
    Advice{"it is not yet valid", "Compare the clocks of both hosts."},
    Advice{
        "it is for another host",
        "Have a certificate made that names the server's host, or let the server publish the name "
        "that its certificate has."},
    Advice{
        "its CA is unknown",
        "Give the file with the CA of the server's certificate: --ca FILE, or vqclient config set "
        "ca FILE."},
    Advice{"it is self-signed",
           "Have the server's certificate signed by a CA, or add it to the file of --ca."},
};

// Of an ORB that does not start.
constexpr std::array kStartAdvice{
    Advice{"No naming service is configured",
           "Say where it is: vqclient config set naming HOST:PORT, or --naming HOST:PORT."},
    Advice{
        "is of no object that exists",
        "Something else than a naming service answers there: correct the port or the reference."},
    Advice{"does not start. Check its -ORB options",
           "Correct the -ORB options, or choose a listen endpoint that is free."},
    Advice{"is not started: ",
           "Correct that setting; vqclient config show lists every setting with its origin."},
};

template <std::size_t N>
std::string AdviceFor(const std::array<Advice, N>& table, const std::string& reasons) {
  for (const Advice& advice : table) {
    if (reasons.find(advice.sign) != std::string::npos) return std::string(advice.text);
  }
  return "";
}

// Why a host and port are not reached, as advice.
std::string AdviceFor(Reach reach, const std::string& host, const std::string& what) {
  switch (reach) {
    case Reach::kNotResolvable:
      return "This host does not know the name '" + host +
             "': correct it, or add it to the DNS or to /etc/hosts.";
    case Reach::kRefused:
      return "Nobody listens there: start " + what + ", or correct the port.";
    case Reach::kReached:
      return "It takes connections, but gives no answer: " + what +
             " hangs, or something else has that port. Restart it, or correct the port.";
    default:
      return "Check that the host is up, and that a firewall lets the port through.";
  }
}

// The lines without those that contain `sign`.
std::string Without(const std::string& lines, std::string_view sign) {
  std::string result;
  std::istringstream input(lines);
  for (std::string line; std::getline(input, line);) {
    if (line.find(sign) == std::string::npos) result += (result.empty() ? "" : "\n") + line;
  }
  return result;
}

std::string KindName(const CommandLine& line) {
  return GL_ResolveServerID(line.kind);
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

bool WantsColour() {
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

std::string Mark(Status status) {
  constexpr std::array kMarks{"[good] ", "[note] ", "[BAD]  "};
  constexpr std::array kColours{"\033[32m", "\033[33m", "\033[31m"};
  const auto index = static_cast<std::size_t>(status);
  if (!WantsColour()) return kMarks.at(index);
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

}  // namespace

Doctor::Doctor(CommandLine& line) : m_line(line), m_session(line) {}

Doctor::~Doctor() {
  m_session.Logout();
  ORBCommon<1>::Get()->DestroyOrb(true);
}

bool Doctor::Report(const Finding& finding) {
  const bool isBad = finding.status == Status::kBad;
  if (Form().json) {
    constexpr std::array kNames{"good", "note", "bad"};
    nlohmann::json entry{{"step", finding.step},
                         {"good", finding.status == Status::kGood},
                         {"status", kNames.at(static_cast<std::size_t>(finding.status))},
                         {"detail", finding.detail}};
    if (isBad) entry["advice"] = finding.advice;
    PrintJson(entry, -1);
  } else if (isBad || !Form().quiet) {
    std::cout << Mark(finding.status) << finding.step << ": " << Indented(finding.detail) << '\n';
    if (isBad) std::cout << "   next:  " << Indented(finding.advice) << '\n';
  }
  std::cout << std::flush;
  return !isBad;
}

bool Doctor::Bad(const std::string& step, const std::string& detail, const std::string& advice) {
  return Report({step, Status::kBad, detail, advice});
}

bool Doctor::Good(const std::string& step, const std::string& detail) {
  return Report({step, Status::kGood, detail, ""});
}

int Doctor::Examine() {
  if (!ExamineSettings() || !ExamineNamingService()) return kOrbNotUp;
  if (!ExamineRegistration() || !ExamineAddresses() || !ExamineServer()) return kNoServer;
  if (const int code = ExamineLogin(); code != kSuccess) return code;
  return ExamineCallbacks();
}

bool Doctor::ExamineSettings() {
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
  LimitCalls(m_line, kCallLimit);
  return Good("settings", set.empty() ? "all built in" : "in force:" + set);
}

std::pair<std::string, std::string> Doctor::NamingAddress() const {
  constexpr std::string_view kStart = "NameService=corbaloc:";
  if (!m_namingReference.starts_with(kStart)) return {};
  std::string address = m_namingReference.substr(kStart.size());
  address.resize(std::min(address.find('/'), address.size()));
  address.resize(std::min(address.find(','), address.size()));  // the first of several
  address.erase(0, address.find(':') + 1);                      // the protocol
  if (const std::size_t at = address.find('@'); at != std::string::npos) address.erase(0, at + 1);
  const std::size_t colon = address.rfind(':');
  if (colon == std::string::npos) return {};
  std::string host = address.substr(0, colon);
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  return {host, address.substr(colon + 1)};
}

bool Doctor::ExamineNamingService() {
  ConnectionSettings::Get()->SetClientID(CLIENT_CLI);
  std::vector<char*> arguments = m_line.OrbArguments();
  m_reasons.Take();
  m_line.StartClock();
  if (GL_InitializeCORBA(static_cast<int>(arguments.size()), arguments.data())) {
    return Good("naming service", "it answers");
  }
  const std::string reasons = m_reasons.Take();
  std::string advice = AdviceFor(kTlsAdvice, reasons);
  if (advice.empty()) advice = AdviceFor(kStartAdvice, reasons);
  const bool isSetting = reasons.find("is not started: ") != std::string::npos;
  if (!advice.empty()) return Bad(isSetting ? "settings" : "naming service", reasons, advice);
  const auto [host, port] = NamingAddress();
  if (host.empty()) {
    return Bad("naming service", reasons,
               "Give its address in the form HOST:PORT: --naming HOST:PORT.");
  }
  const ProbeResult probe = TcpProbe(host, port, kTcpLimit);
  return Bad("naming service",
             host + " port " + port +
                 (probe.error.empty() ? " does not answer" : " cannot be reached: " + probe.error),
             AdviceFor(probe.reach, host, "the naming service"));
}

bool Doctor::ExamineRegistration() {
  const std::string name = "'" + m_line.server + "' of kind " + KindName(m_line);
  try {
    const CORBA::Object_var object =
        ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", false);
    return Good("registration", "the naming service knows server " + name);
  } catch (const CosNaming::NamingContext::NotFound&) {
    return Bad(
        "registration", "the naming service knows no server " + name,
        "Compare name and kind with what vqclient servers lists; if they are right, start the "
        "server.");
  } catch (const CORBA::Exception& e) {
    return Bad("registration", "the naming service fails: " + FailureOf(e),
               "Try again; if it stays so, restart the naming service.");
  }
}

bool Doctor::ExamineAddresses() {
  const CORBA::Object_var object =
      ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", false);
  const std::vector<vq::orb::ReferenceEndpoint> all = vq::orb::EndpointsOf(object.in());
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
  std::string reached;
  std::string failures;
  std::string advice;
  bool isOther = false;  // one that clients do not use
  for (const vq::orb::ReferenceEndpoint& endpoint : usable) {
    if (IsLinkLocal(endpoint.host) && endpoint.host.find('%') == std::string::npos) {
      failures += "\n" + Text(endpoint) + " is a link-local address: it is good on one link alone";
      if (advice.empty()) {
        advice = "Let the server publish another address of its host (hostname_in_ior).";
      }
      continue;
    }
    const ProbeResult probe = TcpProbe(endpoint.host, std::to_string(endpoint.port), kTcpLimit);
    if (probe.reach != Reach::kReached) {
      failures += "\n" + Text(endpoint) + " cannot be reached: " + probe.error;
      if (advice.empty()) advice = AdviceFor(probe.reach, endpoint.host, "the server");
    } else if (endpoint.profile > 0) {
      isOther = true;
      failures += "\n" + Text(endpoint) + " takes connections, but stands in a later profile";
    } else {
      reached += "\n" + Text(endpoint) + " takes connections";
    }
  }
  if (!reached.empty()) return Good("address", (reached + failures).substr(1));
  return Bad("address", failures.substr(1),
             isOther
                 ? "Clients use the first profile of a reference alone: let the server publish an "
                   "address first that this host reaches."
                 : advice);
}

bool Doctor::ExamineServer() {
  m_reasons.Take();
  try {
    const CORBA::Object_var object =
        ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", true);
    return Good("server", "it answers");
  } catch (const CORBA::Exception& e) {
    // A server with an endpoint for TLS may have one in clear beside it, which is not used.
    const std::string reasons = Without(m_reasons.Take(), "it would be in clear");
    std::string advice = AdviceFor(kTlsAdvice, reasons);
    if (advice.empty() && dynamic_cast<const CORBA::OBJECT_NOT_EXIST*>(&e) != nullptr) {
      advice =
          "The server was restarted without registering anew, or another one has its port: "
          "restart it.";
    } else if (advice.empty() && m_tls) {
      advice =
          "The TLS handshake does not come to an end: the server hangs, or asks for a "
          "certificate of this client (--certificate FILE, --key FILE). Look at its log.";
    } else if (advice.empty()) {
      advice = AdviceFor(Reach::kReached, "", "the server");
    }
    return Bad("server",
               "it does not answer: " + FailureOf(e) + (reasons.empty() ? "" : "\n" + reasons),
               advice);
  }
}

int Doctor::ExamineLogin() {
  m_reasons.Take();
  const int result = m_session.Login();
  if (IsIn(result)) {
    Good("login", "accepted as " + ConnectionSettings::Get()->getUserName());
    return kSuccess;
  }
  const std::string& message = m_session.Message();
  const auto says = [&](const char* text) { return message.find(text) != std::string::npos; };
  std::string advice = "Look at the server's log; -v shows that of this client.";
  if (result == ClientSession::kCredentialsMissing) {
    advice = "Give --user NAME and type the password, or give --password-file FILE.";
  } else if (says("is not compatible with")) {
    advice =
        "Install the client that belongs to the server, or name the server's version in "
        "min-accepted-servers.txt.";
  } else if (result == kPasswordExpired) {
    advice = "Change it: vqclient passwd.";
  } else if (result == kAccountLocked) {
    advice = "Ask the site's administrator to unlock the account.";
  } else if (result == kNotAuthorized) {
    advice = "Ask the site's administrator for the right to log in.";
  } else if (says("password is incorrect")) {
    advice = "Check user and password, upper and lower case included.";
  }
  Bad(says("is not compatible with") ? "version gate" : "login",
      result == ClientSession::kCredentialsMissing ? "no user name or password"
                                                   : "code " + std::to_string(result),
      advice);
  return ExitCodeOfSession(result);
}

bool Doctor::TryCallback(const std::string& address, bool biDirectional) {
  const std::string way =
      biDirectional
          ? "callback over the client's own connection"
          : "callback to " + (address.empty() ? std::string("the default address") : address);
  if (IsLinkLocal(address)) {
    Report({way, Status::kNote, "not tried: a link-local address is good on one link alone", ""});
    return false;
  }
  long milliseconds = 0;
  m_reasons.Take();
  const bool reached =
      TroubleshootConnection::ORBInitAndTestCallback(biDirectional, address, milliseconds, false);
  const std::string reasons = m_reasons.Take();
  if (!reached || (biDirectional && reasons.find("a connection of its own") != std::string::npos)) {
    Report({way, Status::kNote, reasons.empty() ? "the server did not call back" : reasons, ""});
    return false;
  }
  if (!m_foundWay) {
    m_foundWay = true;
    m_address = address;
    m_biDirectional = biDirectional;
  }
  Good(way, std::to_string(milliseconds) + " ms there and back");
  return true;
}

int Doctor::ExamineCallbacks() {
  // A trial goes by settings that it stores for a moment.
  const std::string scope = "Test" + std::to_string(getpid());
  for (const char* const value : {"0", static_cast<const char*>(nullptr)}) {
    const vq::StoreResult stored = vq::StoreSetting(
        scope, "-BiDirPolicy", value != nullptr ? std::optional<std::string>(value) : std::nullopt,
        vq::SettingsLayer::kOwn);
    if (stored.error.empty()) continue;
    Bad("callbacks", "not tried, for the settings cannot be stored: " + stored.error,
        "Make " + stored.file + " writable, or set VQ_CONFIG_DOMAINS to a directory that is.");
    return kNoCallback;
  }
  std::vector<IPAddressInfo*> addresses;
  unsigned int preferred = 0;
  TroubleshootConnection::IdentifyIPAddresses(addresses, preferred);
  std::vector<std::string> texts;
  for (IPAddressInfo* const address : addresses) {
    texts.push_back(address->ipAddress);
    delete address;
  }
  if (texts.empty()) texts.emplace_back();  // a machine that has only the loopback address
  for (const std::string& address : texts) TryCallback(address, false);
  TryCallback("", true);
  if (m_foundWay) return kSuccess;
  Bad("callbacks", "the server reaches this client in no way",
      "Open a port of this host for the server (--listen iiop://:PORT), or let the server accept "
      "bidirectional connections.");
  return kNoCallback;
}

std::string Doctor::Way() const {
  return m_biDirectional
             ? "calls back over the client's own connection"
             : "calls back to " + (m_address.empty() ? "the default address" : m_address);
}

std::string Doctor::Store() {
  m_needed.emplace_back("-BiDirPolicy", m_biDirectional ? "1" : "0");
  for (const auto& [name, value] : m_needed) {
    const vq::StoreResult stored =
        vq::StoreSetting("default", name, value, vq::SettingsLayer::kOwn);
    if (!stored.error.empty()) return stored.error;
  }
  if (!TroubleshootConnection::ORBConfigure(m_address, m_biDirectional, false)) {
    return m_reasons.Take();
  }
  const std::string endpoint = "hostname_in_ior=" + m_address;
  for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, 0, nullptr)) {
    const auto needed = std::find_if(m_needed.rbegin(), m_needed.rend(),
                                     [&](const auto& pair) { return pair.first == setting.name; });
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

}  // namespace vqclient
