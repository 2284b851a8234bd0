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

// A client with its own certificate is called back over TLS only.
bool IsTlsListener(const OrbSettings& settings) {
  return !settings.tls.certificate.empty();
}

// omniORB treats a published address as one of the process, too, and adds the port.
std::string PublishedAddress(const OrbSettings& settings) {
  const std::string& host = settings.listenEndpoint.publishedHost;
  if (host.empty()) return "addr";
  return (IsTlsListener(settings) ? kTls : kTcp) + UriHost(host) + ":";
}

}  // namespace

std::string OmniOrbEndpoint(const OrbSettings& settings) {
  const ListenEndpoint& endpoint = settings.listenEndpoint;
  const std::string host = UriHost(endpoint.host) + ":";
  if (!IsTlsListener(settings)) return kTcp + host + PortRange(endpoint);
  return kTls + host +
         (endpoint.tlsPort != 0 ? std::to_string(endpoint.tlsPort) : PortRange(endpoint));
}

std::vector<OmniOrbOption> OmniOrbOptions(const OrbSettings& settings) {
  std::vector<OmniOrbOption> options{
      // The address that answered last is tried first. Releases differ in their default.
      {"retainAddressOrder", "1"},
      // Else a sixth call to a server waits while five are under way.
      {"maxGIOPConnectionPerServer", "100"},
      {"giopMaxMsgSize", std::to_string(settings.maxMessageSize)},
      // Without a message before the first call that asks whether the object exists.
      {"verifyObjectExistsAndType", "0"},
      {"nativeCharCodeSet", kCodeSet},
      {"endPoint", OmniOrbEndpoint(settings)},
      {"endPointPublish", PublishedAddress(settings)},
      // Each reference decides for itself whether it offers bidirectional IIOP, so the rules always
      // allow it. Without the immediate watch a callback waits up to 50 ms.
      {"offerBiDirectionalGIOP", settings.biDirectional ? "1" : "0"},
      {"clientTransportRule", settings.tls.IsOn() ? "* ssl,tcp,bidir" : "* unix,tcp,ssl,bidir"},
      // A host name is resolved only when its address is tried: the certificate is compared with
      // the name, and a name that cannot be resolved does not affect the other addresses.
      {"resolveNamesForTransportRules", "0"},
      {"connectionWatchImmediate", "1"},
      // A client is called back rarely: an idle connection has no thread, an idle thread ends after
      // a second, and connections to close are searched for every second.
      {"threadPerConnectionPolicy", "0"},
      {"idleThreadTimeout", "1"},
      {"scanGranularity", "1"},
      // Others that reach the client's port may keep threads busy with messages that do not end, so
      // there are more threads than a process usually has descriptors, each for a limited time.
      {"maxServerThreadPoolSize", "1000"},
      {"inConScanPeriod", "30"},
      {"serverCallTimeOutPeriod", std::to_string(settings.callTimeout.count())},
  };
  for (const std::string& ref : settings.initialRefs) options.emplace_back("InitRef", ref);
  return options;
}

}  // namespace vq::orb
