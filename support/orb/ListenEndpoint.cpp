#include <support/orb/ListenEndpoint.h>

#include <cstdint>

#include <fmt/format.h>

#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>

namespace vq::orb {
namespace {

constexpr std::string_view kProtocol = "iiop://";

bool ParseNumber(std::string_view text, int& value) {
  const auto number = WholeNumber<std::uint16_t>(text);
  value = number.value_or(0);
  return number.has_value();
}

bool ApplyOption(std::string_view option, ListenEndpoint& endpoint) {
  const std::size_t equals = option.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view name = option.substr(0, equals);
  const std::string_view value = option.substr(equals + 1);
  int reuse = 0;
  if (name == "hostname_in_ior") {
    endpoint.publishedHost = value;
    return !value.empty();
  }
  if (name == "portspan") return ParseNumber(value, endpoint.portSpan);
  if (name == "ssl_port") return ParseNumber(value, endpoint.tlsPort);
  return name == "reuse_addr" && ParseNumber(value, reuse);
}

}  // namespace

std::string UriHost(const std::string& host) {
  return host.find(':') != std::string::npos && !host.starts_with('[') ? "[" + host + "]" : host;
}

std::optional<ListenEndpoint> ParseListenEndpoint(std::string_view text, std::string& error) {
  ListenEndpoint endpoint;
  if (text.empty()) return endpoint;
  if (!text.starts_with(kProtocol)) {
    error = "the listen endpoint '" + std::string(text) + "' does not begin with 'iiop://'";
    return std::nullopt;
  }
  const auto refuse = [&](std::string_view part, const char* why) {
    error = fmt::format("'{}' in '{}' is not a {}", part, text, why);
    return std::nullopt;
  };
  std::string_view options = text.substr(kProtocol.size());
  std::string_view rest = Cut(options, '/');

  // The port follows the last colon; an IPv6 address in brackets holds colons of its own.
  const std::size_t colon = rest.rfind(':');
  const std::size_t bracket = rest.rfind(']');
  if (colon != std::string_view::npos && (bracket == std::string_view::npos || colon > bracket)) {
    const std::string_view port = rest.substr(colon + 1);
    if (!port.empty() && !ParseNumber(port, endpoint.port)) return refuse(port, "port number");
    rest = rest.substr(0, colon);
  }
  endpoint.host = rest;

  while (!options.empty()) {
    const std::string_view option = Cut(options, '&');
    if (!ApplyOption(option, endpoint)) return refuse(option, "listen endpoint option");
  }
  if (endpoint.portSpan > 0 && endpoint.port == 0) {
    error = "'" + std::string(text) + "' has a port span and no port to start from";
    return std::nullopt;
  }
  if (endpoint.portSpan > 1 && endpoint.port + endpoint.portSpan > 65535) {  // omniORB would wrap
    error = "'" + std::string(text) + "' has a port span that does not end before port 65535";
    return std::nullopt;
  }
  return endpoint;
}

}  // namespace vq::orb
