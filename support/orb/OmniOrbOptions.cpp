#include <support/orb/OmniOrbOptions.h>

namespace vq::orb {
namespace {

std::string PortRange(const ListenEndpoint& endpoint) {
  if (endpoint.port == 0) return {};
  std::string range = std::to_string(endpoint.port);
  if (endpoint.portSpan > 1) {
    range += "-" + std::to_string(endpoint.port + endpoint.portSpan - 1);
  }
  return range;
}

void AddEndpoints(const ListenEndpoint& endpoint, std::vector<OmniOrbOption>& options) {
  options.emplace_back("endPoint", "giop:tcp:" + endpoint.host + ":" + PortRange(endpoint));
  if (endpoint.tlsPort != 0) {
    options.emplace_back("endPoint",
                         "giop:ssl:" + endpoint.host + ":" + std::to_string(endpoint.tlsPort));
  }
  // omniORB fills in the port that it listens on.
  if (!endpoint.publishedHost.empty()) {
    options.emplace_back("endPointPublish", "giop:tcp:" + endpoint.publishedHost + ":");
    if (endpoint.tlsPort != 0) {
      options.emplace_back("endPointPublish", "giop:ssl:" + endpoint.publishedHost + ":");
    }
  } else {
    options.emplace_back("endPointPublish", "addr");
  }
}

}  // namespace

std::vector<OmniOrbOption> OmniOrbOptions(const OrbSettings& settings) {
  std::vector<OmniOrbOption> options{
      {"clientConnectTimeOutPeriod", std::to_string(settings.connectTimeout.count())},
      {"clientCallTimeOutPeriod", std::to_string(settings.callTimeout.count())},
      {"giopMaxMsgSize", std::to_string(settings.maxMessageSize)},
  };
  AddEndpoints(settings.listenEndpoint, options);
  if (settings.biDirectional) {
    // Without the immediate watch a call that comes back over our own connection waits up to 50 ms.
    options.emplace_back("offerBiDirectionalGIOP", "1");
    options.emplace_back("clientTransportRule", "* unix,tcp,ssl,bidir");
    options.emplace_back("connectionWatchImmediate", "1");
  } else {
    options.emplace_back("offerBiDirectionalGIOP", "0");
    options.emplace_back("clientTransportRule", "* unix,tcp,ssl");
    options.emplace_back("connectionWatchImmediate", "0");
  }
  for (const std::string& ref : settings.initialRefs) options.emplace_back("InitRef", ref);
  return options;
}

}  // namespace vq::orb
