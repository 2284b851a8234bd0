// TAO's connections with two additions: one that died while idle is replaced before anything is
// sent, and a peer that vanished is detected (-ORBTcpKeepAlive, -ORBTcpUserTimeout).
//
//   using Protocol = CheckedProtocol<TAO_IIOP_Protocol_Factory, CheckedConnector>;
//   AddService<Protocol>(services, kProtocol, settings);
#ifndef VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H
#define VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H

#include <chrono>
#include <memory>
#include <utility>

#include <ace/Service_Config.h>
#include <ace/Service_Gestalt.h>
#include <ace/Service_Object.h>
#include <tao/SystemException.h>
#include <tao/Transport.h>
#include <tao/Transport_Connector.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Puts a service of ours among those of one ORB, under a name that TAO's directives use.
template <class Service>
void AddService(ACE_Service_Gestalt& services, const char* name, const OrbSettings& settings) {
  static thread_local const OrbSettings* current = nullptr;
  static const ACE_Static_Svc_Descriptor descriptor{
      name, ACE_SVC_OBJ_T,
      [](ACE_Service_Object_Exterminator* exterminator) -> ACE_Service_Object* {
        if (exterminator != nullptr) {
          *exterminator = [](void* service) { delete static_cast<ACE_Service_Object*>(service); };
        }
        return new Service(*current);
      },
      ACE_Service_Type::DELETE_THIS | ACE_Service_Type::DELETE_OBJ, 0};
  current = &settings;
  services.process_directive(descriptor);
}

// Counts a time limit of TAO's down over several steps; null is no limit.
class Countdown {
 public:
  explicit Countdown(ACE_Time_Value* left);
  bool Update() const;  // false, with ETIME, when the time is over

 private:
  using Clock = std::chrono::steady_clock;
  ACE_Time_Value* const m_left;
  Clock::time_point m_end;
};

// A connector of TAO's, which does all the work, with checks around it. Thread safety: any thread,
// as in TAO.
class CheckedConnector : public TAO_Connector {
 public:
  CheckedConnector(std::unique_ptr<TAO_Connector> connector, const OrbSettings& settings)
      : TAO_Connector(connector->tag()), m_settings(settings), m_connector(std::move(connector)) {}

  int open(TAO_ORB_Core* core) override { return m_connector->open(core); }
  int close() override { return m_connector->close(); }
  TAO_Transport* connect(TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor,
                         ACE_Time_Value* timeout) override;
  TAO_Profile* corbaloc_scan(const char* reference, std::size_t& size) override {
    return m_connector->corbaloc_scan(reference, size);
  }
  TAO_Profile* create_profile(TAO_InputCDR& stream) override {
    return HasEmptyList(stream) ? nullptr : m_connector->create_profile(stream);
  }
  int check_prefix(const char* endpoint) override { return m_connector->check_prefix(endpoint); }
  char object_key_delimiter() const override { return m_connector->object_key_delimiter(); }

 protected:
  // A connection by the connector within, new or idle.
  virtual TAO_Transport* Connect(TAO_Connector& connector,
                                 TAO::Profile_Transport_Resolver* resolver,
                                 TAO_Transport_Descriptor_Interface* descriptor,
                                 ACE_Time_Value* timeout, bool& isNew) {
    TAO_Transport* const transport = connector.connect(resolver, descriptor, timeout);
    isNew = transport != nullptr && transport->first_request();
    return transport;
  }

  // Only the connector within is asked for these, by itself; what remains are calls for reference
  // forms from before corbaloc.
  TAO_Profile* make_profile() override { throw CORBA::NO_IMPLEMENT(); }
  int set_validate_endpoint(TAO_Endpoint*) override { return -1; }
  TAO_Transport* make_connection(TAO::Profile_Transport_Resolver*,
                                 TAO_Transport_Descriptor_Interface&, ACE_Time_Value*) override {
    return nullptr;
  }
  int cancel_svc_handler(TAO_Connection_Handler*) override { return -1; }

  const OrbSettings m_settings;

 private:
  // Whether a profile has an empty list of TAO's own form. TAO reads beyond one.
  static bool HasEmptyList(const TAO_InputCDR& profile);

  const std::unique_ptr<TAO_Connector> m_connector;
};

// TAO's factory of a protocol, whose connectors are `Connector`s.
template <class Factory, class Connector>
class CheckedProtocol : public Factory {
 public:
  explicit CheckedProtocol(const OrbSettings& settings) : m_settings(settings) {}
  TAO_Connector* make_connector() override {
    std::unique_ptr<TAO_Connector> connector(Factory::make_connector());
    if (connector == nullptr) return nullptr;
    return new Connector(std::move(connector), m_settings);
  }

 private:
  const OrbSettings m_settings;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H
