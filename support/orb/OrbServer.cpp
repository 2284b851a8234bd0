#include <support/orb/OrbServer.h>

#include <stdexcept>

namespace vq::orb {

OrbSettings ServerSettings(const ServerOptions& options) {
  OrbSettings settings;
  std::string error;
  const auto endpoint = ParseListenEndpoint(options.endpoint, error);
  if (!endpoint) throw std::invalid_argument("endpoint " + options.endpoint + ": " + error);
  if (options.tls.IsOn() && options.tls.certificate.empty()) {
    throw std::invalid_argument(std::string("a server with TLS needs ") + kTlsCertificate);
  }
  settings.listenEndpoint = *endpoint;
  settings.biDirectional = options.bidirectional;
  settings.tls = options.tls;
  if (!options.naming.empty()) settings.initialRefs.push_back("NameService=" + options.naming);
  return settings;
}

}  // namespace vq::orb
