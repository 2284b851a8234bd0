#include "Doctor.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include <nlohmann/json.hpp>

#include <support/orb/ORBCommon.h>

#include "ExitCodes.h"
#include "TcpProbe.h"

namespace vqclient {
namespace {

constexpr std::chrono::milliseconds kTcpLimit{5000};

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

}  // namespace

Doctor::Doctor(CommandLine& line) : m_line(line), m_session(line) {
  m_sink = TDiag::Instance()->AddCallbackSink([this](const TDiagLine& logged) {
    if (logged.level > 1) return;
    if (!m_reasons.empty()) m_reasons += '\n';
    m_reasons += logged.text;
  });
}

Doctor::~Doctor() {
  TDiag::Instance()->RemoveSink(m_sink);
}

std::string Doctor::TakeReasons() {
  return std::exchange(m_reasons, {});
}

bool Doctor::Report(Finding finding) {
  if (m_line.json) {
    nlohmann::json entry{
        {"step", finding.step}, {"good", finding.good}, {"detail", finding.detail}};
    if (!finding.good) entry["advice"] = finding.advice;
    std::cout << entry << std::endl;
  } else {
    std::cout << (finding.good ? "[good] " : "[BAD]  ") << finding.step << ": "
              << Indented(finding.detail) << '\n';
    if (!finding.good) std::cout << "   next:  " << Indented(finding.advice) << '\n';
    std::cout << std::flush;
  }
  m_findings.push_back(std::move(finding));
  return m_findings.back().good;
}

int Doctor::Examine() {
  if (!ExamineSettings() || !ExamineNamingService()) return kOrbNotUp;
  if (!ExamineRegistration() || !ExamineAddress() || !ExamineServer()) return kNoServer;
  if (const int code = ExamineLogin(); code != kSuccess) return code;
  return ExamineCallbacks();
}

bool Doctor::ExamineSettings() {
  std::vector<const char*> arguments;
  for (const std::string& argument : m_line.orb) arguments.push_back(argument.c_str());
  std::string set;
  for (const vq::Setting& setting :
       vq::ReportSettings(CLIENT_CLI, static_cast<int>(arguments.size()), arguments.data())) {
    if (setting.group != "ORB") continue;
    if (!setting.name.starts_with('-')) {
      return Report({"settings", false, setting.value,
                     "Correct it where it is set; vqclient config show lists every setting with "
                     "its origin."});
    }
    if (setting.origin == "built in") continue;
    set += "\n" + setting.name + " = " + setting.value + " (" + setting.origin + ")";
  }
  return Report({"settings", true, set.empty() ? "all built in" : "in force:" + set, ""});
}

bool Doctor::ExamineNamingService() {
  ConnectionSettings::Get()->SetClientID(CLIENT_CLI);
  std::vector<char*> arguments;
  for (std::string& argument : m_line.orb) arguments.push_back(argument.data());
  TakeReasons();
  if (GL_InitializeCORBA(static_cast<int>(arguments.size()), arguments.data())) {
    return Report({"naming service", true, "it answers", ""});
  }
  return Report({"naming service", false, TakeReasons(),
                 "Start the naming service, open its port in the firewall, or correct "
                 "-ORBInitRef (or --naming HOST:PORT)."});
}

bool Doctor::ExamineRegistration() {
  const std::string name = "'" + m_line.server + "' of kind " + KindName(m_line);
  try {
    CORBA::Object_var object =
        ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", false);
    return Report({"registration", true, "the naming service knows server " + name, ""});
  } catch (const CosNaming::NamingContext::NotFound&) {
    return Report({"registration", false, "the naming service knows no server " + name,
                   "Check the server's name and kind; if they are right, start the server."});
  } catch (const CORBA::Exception& e) {
    return Report({"registration", false, std::string("the naming service fails: ") + e._name(),
                   "Try again; if it stays so, restart the naming service."});
  }
}

bool Doctor::ExamineAddress() {
  CORBA::Object_var object =
      ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", false);
  std::string host;
  std::string port;
  TakeReasons();
  if (!TroubleshootConnection::GetNetworkInterface4Server(object.in(), host, port, m_line.kind)) {
    return Report({"address", false, "the server's reference has no address: " + TakeReasons(),
                   "Restart the server, so that it registers anew."});
  }
  if (port == "0") return Report({"address", true, host + ", TLS only", ""});
  if (const std::string error = TcpProbe(host, port, kTcpLimit); !error.empty()) {
    return Report({"address", false, host + " port " + port + " cannot be reached: " + error,
                   "Check that the server runs on that host, that this machine resolves its name, "
                   "and that a firewall lets the port through."});
  }
  return Report({"address", true, host + " port " + port + " takes connections", ""});
}

bool Doctor::ExamineServer() {
  try {
    CORBA::Object_var object =
        ORBCommon<1>::Get()->Bind(m_line.server, KindName(m_line), "UsersManager", true);
    return Report({"server", true, "it answers", ""});
  } catch (const CORBA::Exception& e) {
    return Report({"server", false, std::string("it does not answer: ") + e._name(),
                   "Something else listens on that port, the server was restarted without "
                   "registering, or TLS settings differ. Restart the server and look at -SSL "
                   "settings on both sides; -v shows the whole log."});
  }
}

int Doctor::ExamineLogin() {
  TakeReasons();
  const int result = m_session.Login();
  if (result == 1 || result == 50) {
    Report({"login", true, "accepted as " + ConnectionSettings::Get()->getUserName(), ""});
    return kSuccess;
  }
  const bool gate = m_session.Message().find("is not compatible with") != std::string::npos;
  Report({gate ? "version gate" : "login", false,
          result == ClientSession::kCredentialsMissing ? "no user name or password"
                                                       : "code " + std::to_string(result),
          gate ? "Install the client that belongs to the server, or name the server's version in "
                 "min-accepted-servers.txt."
               : "The message above tells the user's part of it; the log (-v) the rest."});
  return ExitCodeOfSession(result);
}

bool Doctor::TryCallback(const std::string& address, bool biDirectional) {
  const std::string way =
      biDirectional
          ? "callback over the client's own connection"
          : "callback to " + (address.empty() ? std::string("the default address") : address);
  long milliseconds = 0;
  TakeReasons();
  if (!TroubleshootConnection::ORBInitAndTestCallback(biDirectional, address, milliseconds,
                                                      false)) {
    const std::string reasons = TakeReasons();
    return Report({way, false, reasons.empty() ? "the server did not call back" : reasons,
                   "Use a way that works; if none does, open a port of this machine for the "
                   "server, or let the server accept bidirectional connections."});
  }
  if (!m_foundWay) {
    m_foundWay = true;
    m_address = address;
    m_biDirectional = biDirectional;
  }
  return Report({way, true, std::to_string(milliseconds) + " ms there and back", ""});
}

int Doctor::ExamineCallbacks() {
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
  return m_foundWay ? kSuccess : kNoCallback;
}

std::string Doctor::Way() const {
  return m_biDirectional
             ? "calls back over the client's own connection"
             : "calls back to " + (m_address.empty() ? "the default address" : m_address);
}

bool Doctor::WriteWay() const {
  return TroubleshootConnection::ORBConfigure(m_address, m_biDirectional, false);
}

}  // namespace vqclient
