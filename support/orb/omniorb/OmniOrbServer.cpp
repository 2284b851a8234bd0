#include <support/orb/OrbServer.h>

#include <cstdio>
#include <string_view>

#include <omniORB4/omniORB.h>

#include <support/orb/omniorb/OmniOrbTransport.h>

namespace vq::orb {
namespace {

using Options = std::vector<OmniOrbOption>;

std::string Port(int port) {
  return port == 0 ? "" : std::to_string(port);
}

Options ProductOptions(const ServerOptions& options, const OrbSettings& settings) {
  const ListenEndpoint& endpoint = settings.listenEndpoint;
  Options product = {
      {"endPoint", kTcp + endpoint.host + ":" + Port(endpoint.port)},
      {"giopMaxMsgSize", "268435456"},  // a snapshot of 200,000 grants passes
      // A limit for connecting would replace that of a call, even a shorter one.
      {"clientConnectTimeOutPeriod", "0"},
      {"clientCallTimeOutPeriod", "60000"},  // of calls back to clients that are gone
      {"acceptBiDirectionalGIOP", options.bidirectional ? "1" : "0"},
      {"serverTransportRule", options.bidirectional ? "* unix,tcp,ssl,bidir" : "* unix,tcp,ssl"},
      {"connectionWatchImmediate", options.bidirectional ? "1" : "0"}};
  std::string publish = kTcp + endpoint.publishedHost + ":";
  if (settings.tls.IsOn()) {
    product.emplace_back("endPoint", kTls + endpoint.host + ":" + Port(endpoint.tlsPort));
    publish += std::string(",") + kTls + endpoint.publishedHost + ":";
  }
  if (!endpoint.publishedHost.empty()) product.emplace_back("endPointPublish", publish);
  for (const std::string& ref : settings.initialRefs) product.emplace_back("InitRef", ref);
  return product;
}

// Without the line about TLS that omniORB prints at each start without certificates.
void Print(const char* message) {
  if (std::string_view(message).find("SSL transport disabled") == std::string_view::npos) {
    std::fputs(message, stderr);
  }
}

// omniORB's threads take calls as soon as a POA is active.
class OmniOrbServer : public ServerOrb {
 public:
  explicit OmniOrbServer(CORBA::ORB_ptr orb) : m_orb(orb) {}
  ~OmniOrbServer() override {
    try {
      OmniOrbServer::Stop();
    } catch (const CORBA::Exception&) {  // There is nothing left to do.
    }
  }

  CORBA::ORB_ptr Orb() override { return m_orb.in(); }
  void Serve() override {}
  void Stop() override {
    if (CORBA::is_nil(m_orb.in())) return;
    const CORBA::ORB_var orb = m_orb._retn();
    orb->shutdown(true);
    orb->destroy();
  }

 private:
  CORBA::ORB_var m_orb;
};

}  // namespace

std::unique_ptr<ServerOrb> StartServerOrb(const ServerOptions& options) {
  omniORB::setLogFunction(Print);
  omniORB::traceTime = false;  // omniORB reads the time in a way that is not thread-safe
  const OrbSettings settings = ServerSettings(options);
  std::vector<std::string> arguments = {"server"};
  arguments.insert(arguments.end(), options.rest.begin(), options.rest.end());
  return std::make_unique<OmniOrbServer>(
      InitOmniOrb(settings, ProductOptions(options, settings), arguments));
}

CORBA::Object_ptr WithCallLimit(CORBA::Object_ptr object, std::chrono::milliseconds time) {
  omniORB::setClientCallTimeout(object, static_cast<CORBA::ULong>(time.count()));
  return CORBA::Object::_duplicate(object);
}

}  // namespace vq::orb
