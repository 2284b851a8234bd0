#include <support/orb/OrbServer.h>

#include <cstdio>
#include <string_view>
#include <utility>

#include <omniORB4/omniORB.h>

#include <support/orb/omniorb/OmniOrbTls.h>

namespace vq::orb {
namespace {

using Options = std::vector<std::pair<std::string, std::string>>;

std::string Port(int port) {
  return port == 0 ? "" : std::to_string(port);
}

Options ProductOptions(const ServerOptions& options, const OrbSettings& settings) {
  const ListenEndpoint& endpoint = settings.listenEndpoint;
  Options product = {
      {"endPoint", "giop:tcp:" + endpoint.host + ":" + Port(endpoint.port)},
      {"giopMaxMsgSize", "268435456"},  // a snapshot of 200,000 grants passes
      // A limit on connecting would take the place of a call's own, also where that is shorter.
      {"clientConnectTimeOutPeriod", "0"},
      {"clientCallTimeOutPeriod", "60000"},  // of calls back to clients that are gone
      {"acceptBiDirectionalGIOP", options.bidirectional ? "1" : "0"},
      {"serverTransportRule", options.bidirectional ? "* unix,tcp,ssl,bidir" : "* unix,tcp,ssl"},
      {"connectionWatchImmediate", options.bidirectional ? "1" : "0"}};
  std::string publish = "giop:tcp:" + endpoint.publishedHost + ":";
  if (settings.tls.IsOn()) {
    product.emplace_back("endPoint", "giop:ssl:" + endpoint.host + ":" + Port(endpoint.tlsPort));
    publish += ",giop:ssl:" + endpoint.publishedHost + ":";
  }
  if (!endpoint.publishedHost.empty()) product.emplace_back("endPointPublish", publish);
  for (const std::string& ref : settings.initialRefs) product.emplace_back("InitRef", ref);
  return product;
}

// The product says at each start without certificates that TLS is off; that is no news.
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
    } catch (const CORBA::Exception&) {  // Nobody is left to tell.
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
  omniORB::traceTime = false;  // asked for in a way that is not safe with threads
  const OrbSettings settings = ServerSettings(options);
  OmniOrbTls::Prepare(settings);
  const Options product = ProductOptions(options, settings);
  const std::unique_ptr<const char*[][2]> table(new const char*[product.size() + 1][2]);
  table[product.size()][0] = table[product.size()][1] = nullptr;
  for (std::size_t i = 0; i < product.size(); ++i) {
    table[i][0] = product[i].first.c_str();
    table[i][1] = product[i].second.c_str();
  }
  std::vector<std::string> copies = {"server"};
  copies.insert(copies.end(), options.rest.begin(), options.rest.end());
  std::vector<char*> arguments;
  for (std::string& copy : copies) arguments.push_back(copy.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  try {
    return std::make_unique<OmniOrbServer>(
        CORBA::ORB_init(count, arguments.data(), "omniORB4", table.get()));
  } catch (const CORBA::Exception&) {
    OmniOrbTls::Abandon();  // Only an ORB that started lets go of it.
    throw;
  }
}

CORBA::Object_ptr WithCallLimit(CORBA::Object_ptr object, std::chrono::milliseconds time) {
  omniORB::setClientCallTimeout(object, static_cast<CORBA::ULong>(time.count()));
  return CORBA::Object::_duplicate(object);
}

CORBA::Object_ptr NamingWithCallLimit(CORBA::Object_ptr context, std::chrono::milliseconds time) {
  return WithCallLimit(context, time);
}

}  // namespace vq::orb
