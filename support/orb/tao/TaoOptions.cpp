#include <support/orb/tao/TaoOptions.h>

#include <algorithm>

namespace vq::orb {
namespace {

// A listen endpoint in TAO's form: that of the setting, with the protocol's own name for TLS.
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

// What is between the first `before` and the last `after`; empty where one of them is missing.
std::string Between(std::string_view text, std::string_view before, std::string_view after) {
  const std::size_t start = text.find(before);
  if (start == std::string_view::npos) return {};
  text.remove_prefix(start + before.size());
  const std::size_t end = text.rfind(after);
  return end == std::string_view::npos ? std::string() : std::string(text.substr(0, end));
}

}  // namespace

std::vector<std::string> TaoArguments(const OrbSettings& settings) {
  std::vector<std::string> arguments{
      "-ORBListenEndpoints",
      TaoEndpoint(settings.listenEndpoint, settings.tls.IsOn()),
      // References contain addresses, which a server can use without resolving the client's name.
      "-ORBDottedDecimalAddresses",
      "1",
      // Strings pass as the bytes that they are.
      "-ORBNegotiateCodesets",
      "0",
  };
  if (!settings.biDirectional) {
    // Read no further than the end of a message, so that what follows a reply is seen before the
    // connection is used again.
    arguments.insert(arguments.end(), {"-ORBSingleReadOptimization", "0"});
  }
  for (const std::string& ref : settings.initialRefs) {
    arguments.insert(arguments.end(), {"-ORBInitRef", ref});
  }
  return arguments;
}

std::vector<std::string> TaoConfigurationArguments(const std::vector<std::string>& given) {
  std::vector<std::string> arguments{"-ORBGestalt", "CURRENT", "-ORBIgnoreDefaultSvcConfFile"};
  if (std::none_of(given.begin(), given.end(), [](const std::string& argument) {
        return argument.starts_with("-ORBSvcConf");
      })) {
    arguments.emplace_back("-ORBSkipServiceConfigOpen");
  }
  return arguments;
}

std::vector<std::string> TaoDirectives(const OrbSettings& settings) {
  std::vector<std::string> directives;
  if (!settings.biDirectional) {
    // The thread of a call reads the reply (TaoCalls.h), so each call under way needs a connection.
    directives.emplace_back(
        R"(static Client_Strategy_Factory "-ORBTransportMuxStrategy EXCLUSIVE")");
  }
  std::string protocol = kProtocol, options;
  if (settings.tls.IsOn()) {
    // SSLIOP gives this ORB a list of initializers of its own, which hides that of the process: the
    // policies of time-outs and of bidirectional IIOP would be unknown.
    directives.insert(directives.end(),
                      {R"(static Messaging_Loader "")", R"(static BiDirGIOP_Loader "")"});
    protocol = kTlsProtocol;
    // A program that connects and does not begin TLS holds a thread for these seconds.
    options = std::string("-SSLAcceptTimeout 2 -SSLAuthenticate ") +
              (settings.tls.verifyPeer ? "SERVER_AND_CLIENT" : "NONE");
  }
  directives.push_back("static " + protocol + " \"" + options + "\"");
  directives.push_back("static Resource_Factory \"-ORBProtocolFactory " + protocol + "\"");
  return directives;
}

std::uint64_t TaoTime(std::chrono::milliseconds time) {
  return static_cast<std::uint64_t>(time.count()) * 10'000;
}

std::string TaoMinorText(std::string_view information) {
  // OMG's own codes: described as 'No usable profile in IOR.', where the descriptions are built in.
  std::string text = Between(information, "described as '", "', completed");
  if (text.starts_with('*')) return {};
  if (text.empty()) text = Between(information, " (", "), completed");
  // In a cause, advice follows a semicolon (FailureCause.h).
  std::replace(text.begin(), text.end(), ';', ',');
  return text;
}

}  // namespace vq::orb
