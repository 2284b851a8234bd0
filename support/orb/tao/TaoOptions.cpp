#include <support/orb/tao/TaoOptions.h>

#include <algorithm>

namespace vq::orb {
namespace {

// Lines of the service configuration's language.
std::vector<std::string> LoadProtocol(const TlsSettings& tls) {
  if (!tls.IsOn()) {
    const std::string protocol = kProtocol;
    return {"static " + protocol + " \"\"",
            "static Resource_Factory \"-ORBProtocolFactory " + protocol + "\""};
  }
  const std::string protocol = kTlsProtocol;
  const std::string mode = tls.verifyPeer ? "SERVER_AND_CLIENT" : "NONE";
  return {
      // SSLIOP gives this ORB a list of initializers of its own, which hides the process's list:
      // the
      // policies of time-outs and of bidirectional use would be unknown.
      R"(static Messaging_Loader "")",
      R"(static BiDirGIOP_Loader "")",
      "static " + protocol + " \"-SSLAuthenticate " + mode + "\"",
      "static Resource_Factory \"-ORBProtocolFactory " + protocol + "\"",
  };
}

}  // namespace

std::string TaoEndpoint(const ListenEndpoint& endpoint, bool tls) {
  std::string text = (tls ? "ssliop://" : "iiop://") + UriHost(endpoint.host);
  if (endpoint.port != 0) text += ":" + std::to_string(endpoint.port);
  char separator = '/';
  const auto add = [&](const std::string& option) {
    text += separator + option;
    separator = '&';
  };
  if (endpoint.portSpan > 0) add("portspan=" + std::to_string(endpoint.portSpan));
  if (endpoint.tlsPort != 0) add("ssl_port=" + std::to_string(endpoint.tlsPort));
  if (!endpoint.publishedHost.empty()) add("hostname_in_ior=" + endpoint.publishedHost);
  return text;
}

std::vector<std::string> TaoArguments(const OrbSettings& settings) {
  std::vector<std::string> arguments{
      "-ORBListenEndpoints",
      TaoEndpoint(settings.listenEndpoint, settings.tls.IsOn()),
      // A reference names addresses, which a server can use without resolving the client's name.
      "-ORBDottedDecimalAddresses",
      "1",
      // Texts pass as the bytes that they are.
      "-ORBNegotiateCodesets",
      "0",
  };
  if (!settings.biDirectional) {
    // Who waits for an answer reads it, and closes a connection where none comes in time; else
    // every later call would wait behind it. Calls that come back over the connection exclude this.
    arguments.insert(arguments.end(),
                     {"-ORBSvcConfDirective",
                      "static Client_Strategy_Factory \"-ORBClientConnectionHandler RW "
                      "-ORBTransportMuxStrategy EXCLUSIVE\""});
  }
  for (const std::string& directive : LoadProtocol(settings.tls)) {
    arguments.insert(arguments.end(), {"-ORBSvcConfDirective", directive});
  }
  for (const std::string& ref : settings.initialRefs) {
    arguments.insert(arguments.end(), {"-ORBInitRef", ref});
  }
  return arguments;
}

std::vector<std::string> TaoConfigurationArguments(const std::vector<std::string>& given) {
  // Each ORB has a configuration of its own.
  std::vector<std::string> arguments{"-ORBGestalt", "LOCAL"};
  if (std::find(given.begin(), given.end(), "-ORBSvcConf") == given.end()) {
    arguments.insert(arguments.end(), {"-ORBSvcConf", "/dev/null"});
  }
  return arguments;
}

std::uint64_t TaoTime(std::chrono::milliseconds time) {
  return static_cast<std::uint64_t>(time.count()) * 10'000;
}

std::string TaoMinorText(std::string_view information) {
  // OMG's own codes: described as 'No usable profile in IOR.', where the descriptions are built in.
  constexpr std::string_view kDescribed = "described as '";
  if (const std::size_t at = information.find(kDescribed); at != std::string_view::npos) {
    const std::size_t start = at + kDescribed.size();
    const std::size_t end = information.rfind("', completed");
    if (end == std::string_view::npos || end < start || information[start] == '*') return {};
    return std::string(information.substr(start, end - start));
  }
  const std::size_t minor = information.find("minor code = ");
  if (minor == std::string_view::npos) return {};
  const std::size_t open = information.find('(', minor);
  const std::size_t close = information.rfind("), completed");
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
  return std::string(information.substr(open + 1, close - open - 1));
}

}  // namespace vq::orb
