#include <support/orb/tao/TaoConnector.h>

#include <cerrno>
#include <utility>

#include <ace/Event_Handler.h>
#include <ace/Service_Config.h>
#include <tao/IIOP_Factory.h>
#include <tao/IIOP_Transport.h>
#include <tao/Profile.h>
#include <tao/Profile_Transport_Resolver.h>
#include <tao/Stub.h>
#include <tao/Transport.h>

#include <support/orb/PeerSocket.h>
#include <support/orb/tao/TaoOptions.h>

namespace vq::orb {
namespace {

// Idle connections to one place that may turn out dead in one call.
constexpr int kMostConnections = 16;

thread_local const OrbSettings* settingsInForce = nullptr;

// Whether the peer has ended a connection that no call is under way on. Of TLS, and where calls
// come back over it, something else may have arrived; before the first call somebody's greeting.
bool HasEnded(TAO_Transport& transport, int socket, bool takesCalls) {
  const bool isTls = dynamic_cast<TAO_IIOP_Transport*>(&transport) == nullptr;
  return IsDead(socket, isTls, takesCalls || isTls || transport.first_request());
}

// The addresses that TAO tries one after the other. They share the time: it would give all of it to
// the first, and no other is tried when the call's time is over.
CORBA::ULong AddressCount(TAO::Profile_Transport_Resolver& resolver) {
  return resolver.profile()->endpoint_count() * resolver.stub()->base_profiles().profile_count();
}

class Factory : public TAO_IIOP_Protocol_Factory {
 public:
  TAO_Connector* make_connector() override {
    std::unique_ptr<TAO_Connector> connector(TAO_IIOP_Protocol_Factory::make_connector());
    return connector != nullptr ? new CheckedConnector(std::move(connector)) : nullptr;
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

ConnectionSettings::ConnectionSettings(const OrbSettings& settings) {
  settingsInForce = &settings;
}

ConnectionSettings::~ConnectionSettings() {
  settingsInForce = nullptr;
}

CheckedConnector::CheckedConnector(std::unique_ptr<TAO_Connector> connector)
    : TAO_Connector(connector->tag()), m_connector(std::move(connector)) {
  if (settingsInForce == nullptr) return;
  m_takesCalls = settingsInForce->biDirectional;
  m_keepAlive = settingsInForce->tcpKeepAlive;
  m_unacknowledged = settingsInForce->tcpUserTimeout;
}

TAO_Transport* CheckedConnector::connect(TAO::Profile_Transport_Resolver* resolver,
                                         TAO_Transport_Descriptor_Interface* descriptor,
                                         ACE_Time_Value* timeout) {
  ACE_Time_Value share;
  const CORBA::ULong addresses = AddressCount(*resolver);
  if (timeout != nullptr && addresses > 1) {
    share = *timeout * (1.0 / addresses);
    timeout = &share;
  }
  for (int connections = 0; connections < kMostConnections; ++connections) {
    TAO_Transport* const transport = m_connector->connect(resolver, descriptor, timeout);
    if (transport == nullptr && timeout == &share && errno == ETIME) errno = EHOSTUNREACH;
    if (transport == nullptr || !transport->is_connected()) return transport;
    const int socket = transport->event_handler_i()->get_handle();
    WatchPeer(socket, m_keepAlive, m_unacknowledged);
    if (!HasEnded(*transport, socket, m_takesCalls)) return transport;
    transport->close_connection();
    transport->purge_entry();
    transport->remove_reference();
  }
  return nullptr;
}

void RegisterProtocol() {
  static const ACE_Static_Svc_Descriptor kDescriptor = {
      kProtocol, ACE_SVC_OBJ_T, Make, ACE_Service_Type::DELETE_THIS | ACE_Service_Type::DELETE_OBJ,
      0};
  ACE_Service_Config::process_directive(kDescriptor);
}

}  // namespace vq::orb
