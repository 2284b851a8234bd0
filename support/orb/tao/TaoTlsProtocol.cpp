#include <support/orb/tao/TaoTlsProtocol.h>

#include <array>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <ace/INET_Addr.h>
#include <ace/Service_Config.h>
#include <orbsvcs/SSLIOP/SSLIOP_Endpoint.h>
#include <orbsvcs/SSLIOP/SSLIOP_Factory.h>
#include <orbsvcs/SecurityLevel2C.h>
#include <tao/IIOP_Endpoint.h>
#include <tao/Profile.h>
#include <tao/Profile_Transport_Resolver.h>
#include <tao/Stub.h>
#include <tao/Transport_Descriptor_Interface.h>

#include <support/orb/Corba.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/TlsVerdict.h>
#include <support/orb/tao/TaoCalls.h>
#include <support/orb/tao/TaoConnector.h>
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

// Where the naming service is; nothing else may be called unencrypted.
struct NamingPlaces {
  std::mutex mutex;
  std::set<std::string> places;

  static NamingPlaces& Instance() {
    static auto* const places = new NamingPlaces;
    return *places;
  }
};

std::string Place(const char* host, int port) {
  return std::string(host) + ":" + std::to_string(port);
}

// The naming service may forward to another reference of its own, but not to another place.
bool IsNaming(const TAO_IIOP_Endpoint& address) {
  const char* const resolved = address.object_addr().get_host_addr();
  NamingPlaces& naming = NamingPlaces::Instance();
  const std::lock_guard lock(naming.mutex);
  return naming.places.contains(Place(address.host(), address.port())) ||
         (resolved != nullptr && naming.places.contains(Place(resolved, address.port())));
}

bool AsksForNoProtection(TAO::Profile_Transport_Resolver& resolver) {
  const CORBA::Policy_var policy = resolver.stub()->get_policy(Security::SecQOPPolicy);
  const SecurityLevel2::QOPPolicy_var protection = SecurityLevel2::QOPPolicy::_narrow(policy.in());
  return !CORBA::is_nil(protection.in()) && protection->qop() == Security::SecQOPNoProtection;
}

// SSLIOP's connector, and no request unencrypted save to the naming service.
class Connector : public CheckedConnector {
 public:
  using CheckedConnector::CheckedConnector;

  TAO_Transport* connect(TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor,
                         ACE_Time_Value* timeout) override {
    auto* const endpoint = dynamic_cast<TAO_SSLIOP_Endpoint*>(descriptor->endpoint());
    const TAO_IIOP_Endpoint* const address =
        endpoint != nullptr ? endpoint->iiop_endpoint() : nullptr;
    if (address == nullptr) return CheckedConnector::connect(resolver, descriptor, timeout);
    const bool offersTls = endpoint->ssl_component().port != 0;
    const std::string place = Place(address->host(), address->port());
    const bool isLookUp = AsksForNoProtection(*resolver);
    if ((!offersTls && !isLookUp) || (isLookUp && !IsNaming(*address))) {
      ReportNoTls(place);
      throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
    }
    NoteUnencrypted(isLookUp ? place : std::string());
    const HostNoted noted(address->host());
    return CheckedConnector::connect(resolver, descriptor, timeout);
  }
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

bool OffersTls(CORBA::Object_ptr object) {
  TAO_Profile* const profile = object->_stubobj()->base_profiles().get_profile(0);
  auto* const endpoint =
      profile != nullptr ? dynamic_cast<TAO_SSLIOP_Endpoint*>(profile->endpoint()) : nullptr;
  return endpoint != nullptr && endpoint->ssl_component().port != 0;
}

void AddNaming(CORBA::Object_ptr naming) {
  NamingPlaces& known = NamingPlaces::Instance();
  const std::lock_guard lock(known.mutex);
  for (const ReferenceEndpoint& endpoint : EndpointsOf(naming)) {
    known.places.insert(Place(endpoint.host.c_str(), endpoint.port));
    const ACE_INET_Addr resolved(static_cast<u_short>(endpoint.port), endpoint.host.c_str());
    if (const char* const host = resolved.get_host_addr()) {
      known.places.insert(Place(host, endpoint.port));
    }
  }
}

void ForgetNaming() {
  NamingPlaces& known = NamingPlaces::Instance();
  const std::lock_guard lock(known.mutex);
  known.places.clear();
}

void FollowConnection(const SSL* connection, int where, int result) {
  if (where == SSL_CB_HANDSHAKE_START && SSL_is_server(connection) == 0 &&
      hostBeingConnected != nullptr && !IsAddress(hostBeingConnected)) {
    // The callback's type has a const that the connection has not.
    SSL_set_tlsext_host_name(const_cast<SSL*>(connection), hostBeingConnected);
  }
  FollowHandshake(connection, where, result);
}

}  // namespace vq::orb
