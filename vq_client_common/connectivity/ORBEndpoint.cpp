#include <vq_client_common/connectivity/ORBEndpoint.h>

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>

namespace {

TDiagRegister diagModule("ORBEndpoint");

constexpr std::string_view kProtocol = "iiop://";
constexpr std::string_view kPortSpan = "portspan=";
constexpr std::string_view kSslPort = "ssl_port=";
constexpr std::string_view kHostInIOR = "hostname_in_ior=";
constexpr std::string_view kReuseAddr = "reuse_addr=";

}  // namespace

ORBEndpoint::ORBEndpoint(const std::string& text) {
  if (text.find(kProtocol) == std::string::npos) {
    VQ_LOG(diagModule, 2) << "Failed to identify ORBEndpoint from: " << text;
    return;
  }
  fromString(text);
}

bool ORBEndpoint::fromString(const std::string& text) {
  const TDiagFunc diag(diagModule, "ORBEndpoint::fromString");
  if (text.empty()) return true;

  if (text.size() < kProtocol.size()) throw std::out_of_range("invalid string position");
  const std::size_t semicolon = text.find(';');
  // Intentional: the first seven characters are removed whatever they are, and the position of the
  // ";" is that in the whole text. So the body includes the ";" and up to six characters after it,
  // and nothing is left for the extra part. Endpoints in use depend on the result.
  const std::string body = text.substr(kProtocol.size(), semicolon);
  if (semicolon != std::string::npos) {
    if (body.size() < semicolon) throw std::out_of_range("invalid string position");
    VQ_LOG(diag, 4) << "Ignoring extra unidentified Endpoint information: ";
  }

  std::string_view options = body;
  const std::string_view address = vq::Cut(options, '/');
  bool accepted = true;
  const std::size_t colon = address.find(':');
  m_hostname = address.substr(0, colon);
  if (colon != std::string::npos) {
    const std::string_view portText = address.substr(colon + 1);
    const int port = vq::Atoi(portText);
    if (port < 1) {
      VQ_LOG(diag, 2) << portText << " is not a valid port number.";
      accepted = false;
    } else {
      m_portOptions.port = port;
    }
  }

  while (!options.empty()) {
    if (!identifyFlag(std::string(vq::Cut(options, '&')))) accepted = false;
  }
  return accepted;
}

bool ORBEndpoint::identifyFlag(const std::string& option) {
  const TDiagFunc diag(diagModule, "ORBEndpoint::identifyFlag");
  const auto value = [&](std::string_view literal) {
    return vq::Atoi(std::string_view(option).substr(literal.size()));
  };
  if (option.starts_with(kSslPort)) {
    if (const int port = value(kSslPort); port > 0) {
      m_portOptions.sslPort = port;
      return true;
    }
    VQ_LOG(diag, 2) << option << " is not a valid SSL port number.";
  } else if (option.starts_with(kHostInIOR)) {
    m_hostInIOR = option.substr(kHostInIOR.size());
    return true;
  } else if (option.starts_with(kPortSpan)) {
    if (m_portOptions.port == 0 || m_portOptions.sslPort == 0) {
      VQ_LOG(diag, 2) << "It's impossible to use a port range with no base port...";
    } else if (const int span = value(kPortSpan); span > 0) {
      m_portOptions.portSpan = span;
      return true;
    } else {
      VQ_LOG(diag, 2) << option << " is not a valid port span.";
    }
  } else if (option.starts_with(kReuseAddr)) {
    m_reuseAddr = value(kReuseAddr);
    return true;
  } else {
    VQ_LOG(diag, 2) << "Ignoring invalid/unidentified Endpoint option: " << option;
  }
  return false;
}

std::string ORBEndpoint::toString() const {
  std::string text = std::string(kProtocol) + m_hostname;
  if (m_portOptions.port != 0) text += ':' + std::to_string(m_portOptions.port);
  char separator = '/';
  const auto option = [&](bool applies, std::string_view literal, const std::string& value) {
    if (!applies) return;
    text.append(1, separator).append(literal).append(value);
    separator = '&';
  };
  option(m_portOptions.sslPort != 0, kSslPort, std::to_string(m_portOptions.sslPort));
  option(m_portOptions.portSpan != 0, kPortSpan, std::to_string(m_portOptions.portSpan));
  option(!m_hostInIOR.empty(), kHostInIOR, m_hostInIOR);
  option(m_reuseAddr == 0, kReuseAddr, "0");
  return text;
}

bool ORBEndpoint::isDefault() const {
  return m_reuseAddr != 0 && m_portOptions.port == 0 && m_portOptions.sslPort == 0 &&
         m_hostname.empty() && m_hostInIOR.empty();
}

void ORBEndpoint::setHostInIOR(const std::string& host, bool clearHostname) {
  m_hostInIOR = host;
  if (clearHostname) m_hostname.clear();
}
