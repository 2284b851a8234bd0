#include <support/orb/tao/TaoTlsProtocol.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <ace/Service_Config.h>
#include <orbsvcs/SSLIOP/SSLIOP_Endpoint.h>
#include <orbsvcs/SSLIOP/SSLIOP_Factory.h>
#include <tao/IIOP_Endpoint.h>
#include <tao/Transport_Connector.h>
#include <tao/Transport_Descriptor_Interface.h>

#include <support/orb/Corba.h>
#include <support/orb/TlsVerdict.h>
#include <support/orb/tao/TaoOptions.h>

namespace vq::orb {
namespace {

// The host that this thread connects to; SSLIOP's handshakes are in the connecting call.
thread_local const char* hostBeingConnected = nullptr;

class HostNoted {
 public:
  explicit HostNoted(const char* host) { hostBeingConnected = host; }
  ~HostNoted() { hostBeingConnected = nullptr; }
  HostNoted(const HostNoted&) = delete;
  HostNoted& operator=(const HostNoted&) = delete;
};

bool IsAddress(const char* host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return ::inet_pton(AF_INET, host, bytes.data()) == 1 ||
         ::inet_pton(AF_INET6, host, bytes.data()) == 1;
}

// SSLIOP's connector, which does everything. Thread contract: as TAO has it, any thread.
class Connector : public TAO_Connector {
 public:
  explicit Connector(std::unique_ptr<TAO_Connector> connector)
      : TAO_Connector(connector->tag()), m_connector(std::move(connector)) {}

  int open(TAO_ORB_Core* core) override { return m_connector->open(core); }
  int close() override { return m_connector->close(); }
  TAO_Transport* connect(TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor,
                         ACE_Time_Value* timeout) override {
    auto* const endpoint = dynamic_cast<TAO_SSLIOP_Endpoint*>(descriptor->endpoint());
    const TAO_IIOP_Endpoint* const address =
        endpoint != nullptr ? endpoint->iiop_endpoint() : nullptr;
    if (address == nullptr) return m_connector->connect(resolver, descriptor, timeout);
    const HostNoted noted(address->host());
    try {
      return m_connector->connect(resolver, descriptor, timeout);
    } catch (const CORBA::INV_POLICY&) {
      if (endpoint->ssl_component().port == 0) {
        ReportNoTls(std::string(address->host()) + ":" + std::to_string(address->port()));
      }
      throw;
    }
  }
  TAO_Profile* corbaloc_scan(const char* reference, std::size_t& size) override {
    return m_connector->corbaloc_scan(reference, size);
  }
  TAO_Profile* create_profile(TAO_InputCDR& stream) override {
    return m_connector->create_profile(stream);
  }
  int check_prefix(const char* endpoint) override { return m_connector->check_prefix(endpoint); }
  char object_key_delimiter() const override { return m_connector->object_key_delimiter(); }

 protected:
  // SSLIOP's connector calls its own; those that remain are of reference forms from before
  // corbaloc.
  TAO_Profile* make_profile() override { throw CORBA::NO_IMPLEMENT(); }
  int set_validate_endpoint(TAO_Endpoint*) override { return -1; }
  TAO_Transport* make_connection(TAO::Profile_Transport_Resolver*,
                                 TAO_Transport_Descriptor_Interface&, ACE_Time_Value*) override {
    return nullptr;
  }
  int cancel_svc_handler(TAO_Connection_Handler*) override { return -1; }

 private:
  const std::unique_ptr<TAO_Connector> m_connector;
};

class Factory : public TAO::SSLIOP::Protocol_Factory {
 public:
  TAO_Connector* make_connector() override {
    std::unique_ptr<TAO_Connector> connector(Protocol_Factory::make_connector());
    return connector != nullptr ? new Connector(std::move(connector)) : nullptr;
  }
};

void Delete(void* factory) {
  delete static_cast<ACE_Service_Object*>(factory);
}

ACE_Service_Object* Make(ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) *exterminator = Delete;
  return new Factory;
}

}  // namespace

void RegisterTlsProtocol() {
  static const ACE_Static_Svc_Descriptor kDescriptor = {
      kTlsProtocol, ACE_SVC_OBJ_T, Make,
      ACE_Service_Type::DELETE_THIS | ACE_Service_Type::DELETE_OBJ, 0};
  ACE_Service_Config::process_directive(kDescriptor);
}

void TellHostName(const SSL* connection, int where, int) {
  if (where != SSL_CB_HANDSHAKE_START || SSL_is_server(connection) != 0 ||
      hostBeingConnected == nullptr || IsAddress(hostBeingConnected)) {
    return;
  }
  SSL_set_tlsext_host_name(const_cast<SSL*>(connection), hostBeingConnected);
}

}  // namespace vq::orb
