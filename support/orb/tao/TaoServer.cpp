#include <support/orb/OrbServer.h>

#include <support/orb/tao/TaoCalls.h>
#include <support/orb/tao/TaoOrb.h>

#include <tao/Messaging/Messaging.h>

namespace vq::orb {
namespace {

// Calls that may be under way at once, those that wait on purpose included.
constexpr int kThreads = 24;
constexpr std::chrono::milliseconds kUsualLimit{60'000};  // of calls to clients that are gone

class TaoServer : public ServerOrb {
 public:
  explicit TaoServer(CORBA::ORB_ptr orb) : m_orb(orb) {}
  ~TaoServer() override {
    try {
      TaoServer::Stop();
    } catch (const CORBA::Exception&) {  // There is nothing left to do.
    }
  }

  CORBA::ORB_ptr Orb() override { return m_orb.in(); }
  void Serve() override {
    if (!m_threads.AreRunning()) m_threads.Start(m_orb.in(), kThreads);
  }
  void Stop() override {
    if (CORBA::is_nil(m_orb.in())) return;
    const CORBA::ORB_var orb = m_orb._retn();
    m_threads.End(orb.in(), true);
  }

 private:
  CORBA::ORB_var m_orb;
  TaoThreads m_threads;
};

}  // namespace

std::unique_ptr<ServerOrb> StartServerOrb(const ServerOptions& options) {
  OrbSettings settings = ServerSettings(options);
  settings.connectTimeout = settings.callTimeout = kUsualLimit;
  // A server registers its names unencrypted.
  return std::make_unique<TaoServer>(
      StartTao("server", settings, options.rest, Unencrypted::kAnyCall, true));
}

CORBA::Object_ptr WithCallLimit(CORBA::Object_ptr object, std::chrono::milliseconds time) {
  const CORBA::ORB_var orb = object->_get_orb();
  CORBA::PolicyList policies;
  policies.length(1);
  policies[0] = TimePolicy(orb.in(), Messaging::RELATIVE_RT_TIMEOUT_POLICY_TYPE, time);
  return object->_set_policy_overrides(policies, CORBA::ADD_OVERRIDE);
}

}  // namespace vq::orb
