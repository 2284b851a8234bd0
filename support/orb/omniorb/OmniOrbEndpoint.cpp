#include <support/orb/omniorb/OmniOrbEndpoint.h>

#include <memory>

#include <support/orb/omniorb/OmniOrbConnection.h>
#include <support/orb/omniorb/OmniOrbWatcher.h>

namespace vq::orb {
namespace {

using omni::giopConnection;

// An omniORB endpoint whose connections are checked.
class Endpoint : public Watcher, public omni::giopEndpoint {
 public:
  explicit Endpoint(omni::giopEndpoint* endpoint) : m_endpoint(endpoint) {}

  const char* type() const override { return m_endpoint->type(); }
  const char* address() const override { return m_endpoint->address(); }
  const omni::orbServer::EndpointList* addresses() const override {
    return m_endpoint->addresses();
  }
  CORBA::Boolean publish(const omni::orbServer::PublishSpecs& specs, CORBA::Boolean allSpecs,
                         CORBA::Boolean allEndpoints,
                         omni::orbServer::EndpointList& published) override {
    return m_endpoint->publish(specs, allSpecs, allEndpoints, published);
  }
  CORBA::Boolean Bind() override { return m_endpoint->Bind(); }
  void Poke() override { m_endpoint->Poke(); }
  giopConnection* AcceptAndMonitor(giopConnection::notifyReadable_t tell, void* cookie) override {
    TellTo(tell, cookie);
    giopConnection* const accepted =
        m_endpoint->AcceptAndMonitor(Tell, static_cast<Watcher*>(this));
    return accepted != nullptr ? new CheckedConnection(*accepted) : nullptr;
  }
  void Shutdown() override {
    m_endpoint.release()->Shutdown();  // It deletes itself.
    delete this;
  }

 private:
  std::unique_ptr<omni::giopEndpoint> m_endpoint;
};

constexpr const char* kTransport = "checked";

// Creates such endpoints for names that begin with kTransport.
class Transport : public omni::giopTransportImpl {
 public:
  Transport() : giopTransportImpl(kTransport) {}

  omni::giopEndpoint* toEndpoint(const char* name) override {
    omni::giopEndpoint* const endpoint = omni::giopEndpoint::str2Endpoint(name);
    return endpoint != nullptr ? new Endpoint(endpoint) : nullptr;
  }
  omni::giopAddress* toAddress(const char* name) override {
    return omni::giopAddress::str2Address(name);
  }
  CORBA::Boolean isValid(const char* name) override {
    return omni::giopEndpoint::strIsValidEndpoint(name);
  }
  CORBA::Boolean addToIOR(const char* name, omni::IORPublish* published) override {
    return omni::giopEndpoint::addToIOR(name, published);
  }
  const omnivector<const char*>* getInterfaceAddress() override { return nullptr; }
};

}  // namespace

std::string CheckedEndpoint(const std::string& endpoint) {
  static auto* const transport = new Transport;  // registered with omniORB for good
  return std::string(transport->type) + ":" + endpoint;
}

}  // namespace vq::orb
