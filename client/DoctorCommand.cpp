// vqclient doctor: finds step by step why a connection or a callback fails, prints what to do next,
// and can store settings with which callbacks work.

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <string_view>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/Login.h>
#include <client/NamingConnection.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/ReferenceAddress.h>

namespace vqclient {
namespace {

struct Status {
  const char *name, *mark, *colour;
};
constexpr Status kGood{"good", "[good] ", "\033[32m"};
constexpr Status kNote{"note", "[note] ", "\033[33m"};
constexpr Status kBad{"bad", "[BAD]  ", "\033[31m"};

constexpr std::chrono::milliseconds kTcpLimit{5000};
constexpr int kCallLimit = 10000;  // milliseconds

// What to do when `what` cannot be reached at its host and port.
std::string AdviceFor(vq::orb::Reach reach, const std::string& host, const std::string& what) {
  switch (reach) {
    case vq::orb::Reach::kNotResolvable:
      return "This host cannot resolve the name '" + host +
             "': correct it, or add it to the DNS or to /etc/hosts.";
    case vq::orb::Reach::kRefused:
      return "No program listens on that port: start " + what + ", or correct the port.";
    case vq::orb::Reach::kReached:
      return "The port accepts connections, but the call fails: " + what +
             " hangs or refuses it, or another program uses the port. Look at its log, restart it, "
             "or correct the port.";
    default:
      return "Check that the host is up and that no firewall blocks the port.";
  }
}

// A text with each line after the first indented.
std::string Indented(const std::string& text) {
  return Replaced(text, "\n", "\n          ");
}

// Whether this is an IPv6 address that is valid on one network link only.
bool IsLinkLocal(const std::string& host) {
  const std::string start = host.substr(0, 3);  // fe80::/10
  return start >= "fe8" && start <= "feb" && host.find(':') != std::string::npos;
}

std::string Text(const vq::orb::ReferenceEndpoint& endpoint) {
  return endpoint.host + " port " + std::to_string(endpoint.port) + (endpoint.tls ? " (TLS)" : "");
}

// Prints the finding of a step, and for kBad the advice. Returns whether it is not bad.
bool Report(const std::string& step, const Status& status, const std::string& detail,
            const std::string& advice = "") {
  const bool isBad = &status == &kBad;
  const char* const plain = std::getenv("NO_COLOR");
  const bool hasColours = isatty(STDOUT_FILENO) == 1 && (plain == nullptr || *plain == '\0');
  const std::string mark =
      hasColours ? status.colour + std::string(status.mark) + "\033[0m" : status.mark;
  std::string text = step + ": " + Indented(detail) + '\n';
  nlohmann::json entry{
      {"step", step}, {"good", &status == &kGood}, {"status", status.name}, {"detail", detail}};
  if (isBad) {
    text += "   next:  " + Indented(advice) + '\n';
    entry["advice"] = advice;
  }
  PrintJson(entry, -1);
  if (!Form().json && (isBad || !Form().quiet)) {
    std::cout << mark;
    PrintText(text);
  }
  std::cout << std::flush;
  return !isBad;
}

bool Good(const std::string& step, const std::string& detail) {
  return Report(step, kGood, detail);
}

class Doctor {
 public:
  explicit Doctor(CommandLine& line) : m_line(line), m_kind(GL_ResolveServerID(line.kind)) {}

  // Runs the steps and prints their findings; ends where later steps could only fail, too. Returns
  // the exit code of the first failure, 0 without one.
  int Examine() {
    if (!ExamineSettings() || !ExamineNamingService()) return kOrbNotUp;
    if (!ExamineRegistration() || !ExamineAddresses() || !ExamineServer()) return kNoServer;
    if (const int code = ExamineLogin(); code != kSuccess) return code;
    return ExamineCallbacks();
  }

  // After Examine: how the server called back; empty when it did not. Only with a way may Store be
  // called.
  const std::string& Way() const { return m_way; }

  bool IsStored() const { return m_isOwn && m_needed.empty(); }

  // Stores the settings of the way, and the ORB's settings from the command line, the environment
  // and the site of this run; then reads them back. Returns why that failed; empty on success.
  std::string Store() {
    if (!m_address.empty() && m_listenEndpoint.find('[') != std::string::npos) {
      return "-ORBListenEndpoints has an IPv6 address, beside which no other one can be published";
    }
    if (!m_isOwn) m_needed[vq::orb::kBiDirPolicy] = m_biDirectional ? "1" : "0";
    for (const auto& [name, value] : m_needed) {
      const vq::StoreResult stored =
          vq::StoreSetting("default", name, value, vq::SettingsLayer::kOwn);
      if (!stored.error.empty()) return stored.error;
    }
    if (!m_isOwn) {
      if (!TroubleshootConnection::ORBConfigure(m_address, m_biDirectional, false)) {
        return GL_GetFailureCause();
      }
      m_needed.erase(vq::orb::kListenEndpoints);  // ORBConfigure has changed it
    }
    const std::string endpoint = m_address.empty() ? "" : "hostname_in_ior=" + m_address;
    for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, 0, nullptr)) {
      const auto needed = m_needed.find(setting.name);
      const bool isStored = !m_isOwn && setting.name == vq::orb::kListenEndpoints
                                ? setting.value.find(endpoint) != std::string::npos
                                : needed == m_needed.end() || needed->second == setting.value;
      if (!isStored) {
        return setting.name + " is still '" + setting.value + "' (" + setting.origin + ")";
      }
    }
    return "";
  }

 private:
  bool Bad(const std::string& step, const std::string& detail, const std::string& advice) const {
    return Report(step, kBad, detail,
                  IsTimeOver() ? "The time of --max-time is over: allow more." : advice);
  }

  bool IsTimeOver() const {
    const auto end = m_session ? m_line.EndBeforeLogout() : m_line.End();
    return std::chrono::steady_clock::now() >= end;
  }

  // Connects. Each of `count` such trials has its share of the limit, or of half the time left.
  // Leaves `why` as it is on success, and when no time is left.
  vq::orb::Reach Try(const vq::orb::ReferenceEndpoint& place, std::size_t count,
                     std::string& why) const {
    using std::chrono::milliseconds;
    const std::chrono::nanoseconds left = m_line.End() - std::chrono::steady_clock::now();
    if (left.count() <= 0) return vq::orb::Reach::kFailed;
    const auto limit =
        std::min<std::chrono::nanoseconds>(left / 2, kTcpLimit) / static_cast<int>(count);
    return vq::orb::TryToReach(place, std::chrono::duration_cast<milliseconds>(limit), why);
  }

  bool ExamineSettings() {
    std::string set;
    for (const vq::Setting& setting : m_line.Report()) {
      if (setting.group != "ORB") continue;
      if (!setting.name.starts_with('-')) {
        return Bad("settings", setting.value,
                   "Correct it where it is set: vqclient config show prints the origins.");
      }
      if (setting.name == vq::orb::kInitRef) m_namingReference = setting.value;
      if (setting.name == vq::orb::kListenEndpoints) m_listenEndpoint = setting.value;
      m_tls |= (setting.name == vq::orb::kTlsCa || setting.name == vq::orb::kTlsCertificate) &&
               !setting.value.empty();
      if (setting.origin == "built in") continue;
      set += "\n" + setting.name + " = " + setting.value + " (" + setting.origin + ")";
      if (setting.origin == "command line" || setting.origin.starts_with("environment") ||
          setting.origin.ends_with(", " + std::string(kSiteScope) + m_line.site)) {
        m_needed[setting.name] = setting.value;
      }
    }
    return Good("settings", set.empty() ? "all built in" : "in effect:" + set);
  }

  // The configured address of the naming service; without a host when there is none.
  vq::orb::ReferenceEndpoint NamingAddress() const {
    constexpr std::string_view kStart = "NameService=corbaloc:";
    vq::orb::ReferenceEndpoint place;
    const std::size_t start = m_namingReference.find(kStart);
    if (start == std::string::npos) return place;
    std::string address = m_namingReference.substr(start + kStart.size());
    address.resize(std::min(address.find_first_of("/ "), address.size()));
    address.erase(0, address.rfind(',') + 1);  // Of several the last was asked last.
    address.erase(0, address.find(':') + 1);   // no protocol
    address.erase(0, address.find('@') + 1);   // no version
    place.port = 2809;                         // of an address without one
    const std::size_t colon = address.find(':', address.starts_with('[') ? address.find(']') : 0);
    if (colon != std::string::npos) {
      std::from_chars(&address[colon + 1], address.data() + address.size(), place.port);
    }
    place.host = address.substr(0, colon);
    if (place.host.starts_with('[')) place.host = place.host.substr(1, place.host.size() - 2);
    return place;
  }

  bool ExamineNamingService() {
    try {
      m_naming.emplace(m_line, kCallLimit, kOrbNotUp);
      return Good("naming service", "it answers");
    } catch (const Failure&) {  // the cause is more precise
    }
    const auto [cause, advice] = SplitCause(GL_GetFailureCause());
    if (!advice.empty()) return Bad("naming service", cause, advice);
    if (SettingNamedIn(cause) != nullptr) {
      return Bad("settings", cause,
                 "Correct that setting: vqclient config show prints the origins.");
    }
    const vq::orb::ReferenceEndpoint place = NamingAddress();
    if (place.host.empty()) {
      return Bad("naming service", cause,
                 "Give its address in the form HOST:PORT: --naming HOST:PORT.");
    }
    std::string why = cause;
    const vq::orb::Reach reach = Try(place, 1, why);
    return Bad("naming service", why, AdviceFor(reach, place.host, "the naming service"));
  }

  bool ExamineRegistration() {
    try {
      std::string reason;
      if (m_line.server.empty()) m_line.server = m_naming->OnlyServer(m_line.kind, reason);
      if (m_line.server.empty()) {
        return Bad("registration", reason, "Name one that vqclient servers lists: --server NAME.");
      }
      m_server = ORBCommon<1>::Get()->Bind(m_line.server, m_kind, "UsersManager", false);
      return Good("registration", "the naming service knows server " + ServerName());
    } catch (const CosNaming::NamingContext::NotFound&) {
      return Bad(
          "registration", "the naming service knows no server " + ServerName(),
          "Compare name and kind with the list of vqclient servers. If they are right, start or "
          "restart the server: it registers when it starts.");
    } catch (const CORBA::Exception& e) {
      return Bad("registration", "the naming service fails: " + CauseOf(e),
                 "Try again; if it fails again, restart the naming service.");
    }
  }

  bool ExamineAddresses() {
    const std::vector<vq::orb::ReferenceEndpoint> all = vq::orb::EndpointsOf(m_server.in());
    std::vector<vq::orb::ReferenceEndpoint> usable;
    std::copy_if(all.begin(), all.end(), std::back_inserter(usable),
                 [&](const vq::orb::ReferenceEndpoint& endpoint) { return endpoint.tls == m_tls; });
    if (all.empty()) {
      return Bad("address", "the server's reference has no address",
                 "Restart the server: it registers when it starts.");
    }
    if (usable.empty()) {
      return m_tls ? Bad("address", "TLS is enabled here, but the server has no TLS endpoint",
                         "Give the server a TLS endpoint, or unset ca and certificate here.")
                   : Bad("address", "the server accepts TLS connections only",
                         "Enable TLS: --ca FILE, or vqclient config set ca FILE.");
    }
    std::string found;
    std::string advice;
    bool isReached = false;
    for (const vq::orb::ReferenceEndpoint& endpoint : usable) {
      found += found.empty() ? "" : "\n";
      if (IsLinkLocal(endpoint.host) && endpoint.host.find('%') == std::string::npos) {
        found += Text(endpoint) + " is a link-local address, valid on one network link only";
        advice = "Let the server publish another address of its host (hostname_in_ior).";
        continue;
      }
      std::string result = Text(endpoint) + " was not tried: no time is left";
      const vq::orb::Reach reach = Try(endpoint, usable.size(), result);
      if (reach == vq::orb::Reach::kReached) {
        result = Text(endpoint) + " accepts connections";
        isReached = true;
      }
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
      auto [cause, advice] = SplitCause(CauseOf(e));
      if (advice.empty() && m_tls) {
        advice =
            "The server hangs or refuses the call, or requires a client certificate (--certificate "
            "FILE, --key FILE). Look at its log.";
      } else if (advice.empty()) {
        advice = AdviceFor(vq::orb::Reach::kReached, "", "the server");
      }
      return Bad("server", cause, advice);
    }
  }

  int ExamineLogin() {
    vq::LoginError error;
    try {
      m_session = vq::Session::Open(OptionsOf(m_line), error);
    } catch (const Failure& e) {
      Bad("login", e.what(),
          "Give --user NAME and type the password, or give --password-file FILE.");
      return e.exitCode;
    }
    if (m_session) {
      const std::string message = m_session->Message();
      Good("login", "accepted as " + ConnectionSettings::Get()->getUserName() +
                        (message.empty() ? "" : "\n" + message));
      return kSuccess;
    }
    const auto [cause, next] = SplitCause(error.Cause());
    const vq::LoginResult result = error.Result();
    // A failure with code 0 and without a cause is the server's answer to the registration.
    const char* const advice =
        result == vq::LoginResult::kPasswordExpired ? "Change it: vqclient passwd."
        : result == vq::LoginResult::kAccountLocked
            ? "Ask the site's administrator to unlock the account."
        : result == vq::LoginResult::kNotAuthorized
            ? "Ask the site's administrator for the right to log in."
        : result == vq::LoginResult::kFailed && cause.empty()
            ? "Check user and password, including upper and lower case."
        : next.empty() ? "Look at the server's log; -v prints the log of this client."
                       : next.c_str();
    Bad("login",
        "code " + std::to_string(error.Code()) + ": " + error.what() +
            (cause.empty() ? "" : "\n" + cause),
        advice);
    return ExitCodeOf(result);
  }

  std::string ServerName() const { return "'" + m_line.server + "' of kind " + m_kind; }

  // Whether the site says where to listen, or what to publish. The trials use ports of their own.
  bool HasEndpoint() const { return m_listenEndpoint != "iiop://"; }

  // When this part of what is left of a limit is over; as good as never without one.
  std::chrono::steady_clock::time_point Share(int parts) const {
    const auto now = std::chrono::steady_clock::now();
    return now + (m_line.EndBeforeLogout() - now) / parts;
  }

  // Returns whether the server has called back.
  bool TryOwnSettings() {
    const vq::CallDeadline share(Share(2));
    std::string why;
    long milliseconds = 0;
    const auto test = [&] {
      return TroubleshootConnection::TestCallback(
          ORBCommon<1>::Get(), why, milliseconds,
          TroubleshootConnection::GetTimeout4TestCallback());
    };
    // The server may still have a connection to the client that was at this port before.
    const bool reached = test() || test();
    const std::string cause = GL_GetFailureCause();
    if (!reached) return Report("callback", kNote, cause.empty() ? why : cause), false;
    m_isOwn = true;
    m_way = "with the settings in effect";
    return Good("callback " + m_way, "round trip " + std::to_string(milliseconds) + " ms");
  }

  // Without a limit each of its calls has its own. `toTry` trials, this one included, share what is
  // left of one.
  void TryCallback(const std::string& address, bool biDirectional, std::size_t toTry) {
    const std::string way =
        biDirectional ? "over the client's connection (bidirectional IIOP)"
                      : "to " + (address.empty() ? std::string("the default address") : address);
    const std::string step = "callback " + way;
    if (IsLinkLocal(address)) {
      Report(step, kNote, "not tried: a link-local address is valid on one network link only");
      return;
    }
    if (IsTimeOver()) {
      m_isComplete = false;
      Report(step, kNote, "not tried: no time is left");
      return;
    }
    const vq::CallDeadline share(Share(static_cast<int>(toTry)));
    long milliseconds = 0;
    const bool reached =
        TroubleshootConnection::ORBInitAndTestCallback(biDirectional, address, milliseconds, false);
    // The server may have called back, but over a connection of its own.
    const std::string cause = GL_GetFailureCause();
    if (!reached || (biDirectional && !cause.empty())) {
      Report(step, kNote, cause.empty() ? "the server did not call back" : cause);
      return;
    }
    if (m_way.empty()) {
      m_way = way;
      m_address = address;
      m_biDirectional = biDirectional;
    }
    Good(step, "round trip " + std::to_string(milliseconds) + " ms");
  }

  int ExamineCallbacks() {
    const auto limit = m_line.LimitBeforeLogout();
    if (HasEndpoint() && TryOwnSettings()) return kSuccess;
    // A trial stores its settings in the domain and removes them again.
    const std::string scope = "Test" + std::to_string(getpid());
    for (const std::optional<std::string>& value : {std::optional<std::string>("0"), {}}) {
      const vq::StoreResult stored =
          vq::StoreSetting(scope, vq::orb::kBiDirPolicy, value, vq::SettingsLayer::kOwn);
      if (stored.error.empty()) continue;
      Bad("callbacks", "not tried: settings cannot be stored: " + stored.error,
          "Make " + stored.file + " writable, or set VQ_CONFIG_DOMAINS to a directory that is.");
      return kNoCallback;
    }
    std::vector<IPAddressInfo*> addresses;
    unsigned int preferred = 0;
    TroubleshootConnection::IdentifyIPAddresses(addresses, preferred);
    std::size_t toTry = addresses.size() + 1;
    if (addresses.empty()) TryCallback("", false, toTry + 1);  // only the loopback address exists
    for (const IPAddressInfo* const address : addresses) {
      TryCallback(address->ipAddress, false, toTry--);
      delete address;
    }
    TryCallback("", true, 1);
    if (!m_way.empty()) return kSuccess;
    if (!m_isComplete) {
      Bad("callbacks", "not all of them were tried", "");
      return kRefused;
    }
    Report("callbacks", kBad, "the server cannot call this client back",
           "Open a port of this host for the server (--listen iiop://:PORT), or let the server "
           "accept bidirectional IIOP.");
    return kNoCallback;
  }

  CommandLine& m_line;
  const std::string m_kind;
  std::optional<NamingConnection> m_naming;
  CORBA::Object_var m_server;
  std::optional<vq::Session> m_session;         // on the ORB of m_naming, and ends before it
  std::map<std::string, std::string> m_needed;  // settings to store, by name
  std::string m_namingReference;
  std::string m_listenEndpoint;
  bool m_tls = false;
  bool m_isOwn = false;      // the way is that of the settings in effect
  bool m_isComplete = true;  // whether each callback was tried for which there is a way
  std::string m_way;         // for display; empty until the server has called back
  std::string m_address;
  bool m_biDirectional = false;
};

// Asks on stdin; only y or yes is a yes.
bool Agrees(CommandLine& line, const std::string& question) {
  const CommandLine::StoppedClock stopped(line);
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  return std::getline(std::cin, answer) && (answer == "y" || answer == "yes");
}

int Run(CommandLine& line, bool fix) {
  Doctor doctor(line);
  const int code = doctor.Examine();
  if (!fix) return code;
  if (doctor.Way().empty()) {
    PrintError("Nothing is written: the server cannot call this client back.");
    return code;
  }
  if (doctor.IsStored()) {
    PrintLine("Nothing needs to be written: clients already use these settings.");
    return code;
  }
  if (!Agrees(line, "Write to the configuration domain that the server calls back " + doctor.Way() +
                        "?")) {
    PrintError("Nothing is written.");
    return code;
  }
  const std::string error = doctor.Store();
  if (!error.empty()) throw Failure(kRefused, "The settings cannot be written: " + error);
  PrintLine("Written. Clients use it when they start the next time.");
  return code;
}

}  // namespace

void AddDoctorCommand(CLI::App& program, CommandLine& line) {
  auto fix = std::make_shared<bool>(false);
  line.AddCommand(program, "doctor", "Find out why a connection or a callback fails", false,
                  [fix](CommandLine& given) { return Run(given, *fix); })
      ->add_flag("--fix", *fix, "Store the settings with which a callback worked, after asking");
}

}  // namespace vqclient
