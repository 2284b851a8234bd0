// Connections as this library wants them of TAO: one that died while it was idle is replaced before
// anything is sent, and a peer that vanished is noticed.
//
//   RegisterProtocol();   // before ORB_init with "static VQ_IIOP_Factory ..."
//   const ConnectionSettings scope(settings);
//   CORBA::ORB_var orb = ORB_init(...);
#ifndef VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H
#define VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H

#include <chrono>
#include <memory>

#include <tao/SystemException.h>
#include <tao/Transport_Connector.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// The connectors that this thread makes meanwhile, as it starts an ORB, are for that ORB.
class ConnectionSettings {
 public:
  explicit ConnectionSettings(const OrbSettings& settings);
  ~ConnectionSettings();
  ConnectionSettings(const ConnectionSettings&) = delete;
  ConnectionSettings& operator=(const ConnectionSettings&) = delete;
};

// A connector of TAO's, which does everything, with the checks around it. Thread safety: as TAO has
// it, any thread.
class CheckedConnector : public TAO_Connector {
 public:
  explicit CheckedConnector(std::unique_ptr<TAO_Connector> connector);

  int open(TAO_ORB_Core* core) override { return m_connector->open(core); }
  int close() override { return m_connector->close(); }
  TAO_Transport* connect(TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor,
                         ACE_Time_Value* timeout) override;
  TAO_Profile* corbaloc_scan(const char* reference, std::size_t& size) override {
    return m_connector->corbaloc_scan(reference, size);
  }
  TAO_Profile* create_profile(TAO_InputCDR& stream) override {
    return m_connector->create_profile(stream);
  }
  int check_prefix(const char* endpoint) override { return m_connector->check_prefix(endpoint); }
  char object_key_delimiter() const override { return m_connector->object_key_delimiter(); }

 protected:
  // The connector within calls its own; those that remain are of reference forms from before
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
  bool m_takesCalls = false;
  std::chrono::milliseconds m_keepAlive{0};
  std::chrono::milliseconds m_unacknowledged{0};
};

// Makes IIOP with these connections known to TAO under the name of kProtocol (TaoOptions.h). By the
// thread that starts an ORB; again does nothing.
void RegisterProtocol();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOCONNECTOR_H
