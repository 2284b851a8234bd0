#include <support/orb/omniorb/OmniOrbOptions.h>

#include <support/orb/omniorb/OmniOrbCodeSet.h>

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

// With a certificate of its own a client is called over TLS alone.
bool IsTlsListener(const OrbSettings& settings) {
  return !settings.tls.certificate.empty();
}

void AddEndpoints(const OrbSettings& settings, std::vector<OmniOrbOption>& options) {
  for (const std::string& address : OmniOrbEndpoints(settings)) {
    options.emplace_back("endPoint", address);
  }
  const ListenEndpoint& endpoint = settings.listenEndpoint;
  // The published addresses count as the process's own as well; omniORB fills in the port.
  std::string publish = "addr";
  if (!endpoint.publishedHost.empty()) {
    const std::string host = UriHost(endpoint.publishedHost) + ":";
    publish = IsTlsListener(settings) ? "giop:ssl:" + host : "giop:tcp:" + host;
  }
  options.emplace_back("endPointPublish", publish);
}

}  // namespace

std::vector<std::string> OmniOrbEndpoints(const OrbSettings& settings) {
  const ListenEndpoint& endpoint = settings.listenEndpoint;
  const std::string host = UriHost(endpoint.host) + ":";
  if (!IsTlsListener(settings)) return {"giop:tcp:" + host + PortRange(endpoint)};
  return {"giop:ssl:" + host +
          (endpoint.tlsPort != 0 ? std::to_string(endpoint.tlsPort) : PortRange(endpoint))};
}

std::vector<OmniOrbOption> OmniOrbOptions(const OrbSettings& settings) {
  std::vector<OmniOrbOption> options{
      // A limit of omniORB's on connecting would prolong the call; see OmniOrbCalls.
      {"clientConnectTimeOutPeriod", "0"},
      {"clientCallTimeOutPeriod", std::to_string(settings.callTimeout.count())},
      // The address that answered last is tried first. Releases differ in their default.
      {"retainAddressOrder", "1"},
      {"giopMaxMsgSize", std::to_string(settings.maxMessageSize)},
      // A first call goes out as it is, without a message that asks whether the object is there.
      {"verifyObjectExistsAndType", "0"},
      {"nativeCharCodeSet", OmniOrbCodeSet::kName},
  };
  AddEndpoints(settings, options);
  // Whether connections are offered for calls back decides for each reference when it is made, so
  // the rules allow it always. Without the immediate watch such a call waits up to 50 ms.
  options.emplace_back("offerBiDirectionalGIOP", settings.biDirectional ? "1" : "0");
  options.emplace_back("clientTransportRule",
                       settings.tls.IsOn() ? "* ssl,tcp,bidir" : "* unix,tcp,ssl,bidir");
  // Each name is resolved when it is its turn to be connected to: a certificate is compared with
  // the name that was asked for, and a name that does not resolve costs no other address.
  options.emplace_back("resolveNamesForTransportRules", "0");
  options.emplace_back("connectionWatchImmediate", "1");
  // A client is called back rarely: a connection that is idle has no thread of its own, an idle
  // thread ends after a second, and connections that are to be closed are looked for every second.
  options.emplace_back("threadPerConnectionPolicy", "0");
  options.emplace_back("idleThreadTimeout", "1");
  options.emplace_back("scanGranularity", "1");
  // Others that reach the client's port may keep threads busy with messages that do not end, so
  // there are more threads than a process usually has descriptors, each for a limited time.
  options.emplace_back("maxServerThreadPoolSize", "1000");
  options.emplace_back("inConScanPeriod", "30");
  options.emplace_back("serverCallTimeOutPeriod", std::to_string(settings.callTimeout.count()));
  for (const std::string& ref : settings.initialRefs) options.emplace_back("InitRef", ref);
  return options;
}

}  // namespace vq::orb
