// TAO behind the seam of OrbProduct.h.
//
// Each instance is an ORB of its own, with its own connections, endpoints and threads. Time-outs,
// TLS and initial references are those of the ORB that was there before, as with every product: a
// trial during a session uses the session's own.

#include <support/orb/OrbProduct.h>

#include <mutex>
#include <utility>
#include <vector>

#include <support/diagnostics/TDiag.h>
#include <support/orb/tao/TaoCalls.h>
#include <support/orb/tao/TaoOptions.h>
#include <support/orb/tao/TaoOrb.h>
#include <support/orb/tao/TaoTls.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// Threads that take calls where SetUseThreadPool asks for a pool, and with bidirectional IIOP,
// where they also read replies; otherwise there is one.
constexpr int kPool = 4;

// With bidirectional IIOP the ORB's threads read messages of any size.
void WarnOfMessageSize(const OrbSettings& settings) {
  for (const ResolvedSetting& setting : settings.table) {
    if (setting.name != kMaxMessageSize || setting.origin == "built in") continue;
    VQ_LOG(diagModule, 2)
        << "The setting -ORBMaxMessageSize has no effect with TAO and -BiDirPolicy 1";
  }
}

// The settings of the ORBs that are up, the oldest first.
class Running {
 public:
  // The settings to start an ORB with, which counts as up from here on, and whether it is the
  // first.
  OrbSettings Enter(const void* orb, const std::string& name, OrbSettings settings, bool& isFirst) {
    const std::lock_guard lock(m_mutex);
    isFirst = m_all.empty();
    if (!isFirst) {
      VQ_LOG(diagModule, 4) << "The ORB " << name << " shares the time-outs, TLS and the initial "
                            << "references of the ORB that is up already";
      const OrbSettings& first = m_all.front().second;
      settings.connectTimeout = first.connectTimeout;
      settings.callTimeout = first.callTimeout;
      settings.tls = first.tls;
      settings.initialRefs = first.initialRefs;
    }
    m_all.emplace_back(orb, settings);
    return settings;
  }
  void Leave(const void* orb) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_all, [&](const auto& one) { return one.first == orb; });
  }

 private:
  std::mutex m_mutex;
  std::vector<std::pair<const void*, OrbSettings>> m_all;
};
auto& running = *new Running;  // never destroyed: ORBs may end late

class TaoInstance : public OrbInstance {
 public:
  TaoInstance(std::string name, OrbSettings settings, const std::vector<std::string>& arguments,
              bool useThreadPool)
      : m_name(std::move(name)),
        m_settings(running.Enter(this, m_name, std::move(settings), m_isFirst)),
        m_useThreadPool(useThreadPool) {
    try {
      m_orb = StartTao(m_name, m_settings, arguments, Unencrypted::kLookUps, m_isFirst);
      if (m_settings.biDirectional) WarnOfMessageSize(m_settings);
    } catch (...) {
      running.Leave(this);
      throw;
    }
  }

  ~TaoInstance() override {
    try {
      TaoInstance::Stop(true);
    } catch (const CORBA::Exception&) {  // There is nothing left to do.
    }
  }

  CORBA::ORB_ptr Orb() override { return m_orb.in(); }

  CORBA::Object_ptr NamingService() override {
    // TAO would search for one by multicast.
    if (NamingReferences(m_settings).empty()) throw CORBA::ORB::InvalidName();
    return m_orb->resolve_initial_references("NameService");
  }

  PortableServer::POA_ptr ChildPoa() override {
    const std::lock_guard lock(m_mutex);
    if (CORBA::is_nil(m_poa.in())) {
      m_poa = CreatePoa();
      m_threads.Start(m_orb.in(), m_useThreadPool || m_settings.biDirectional ? kPool : 1);
    }
    return m_poa.in();
  }

  std::optional<std::chrono::sys_seconds> CertificateExpiry() const override {
    return vq::orb::CertificateExpiry(m_settings);
  }

  void Stop(bool wait) override {
    if (CORBA::is_nil(m_orb.in())) return;
    const CORBA::ORB_var orb = m_orb._retn();
    m_poa = PortableServer::POA::_nil();
    running.Leave(this);
    m_threads.End(orb.in(), wait);
  }

 private:
  PortableServer::POA_ptr CreatePoa() {
    const CORBA::Object_var object = m_orb->resolve_initial_references("RootPOA");
    const PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
    CORBA::PolicyList policies;
    policies.length(m_settings.biDirectional ? 2 : 1);
    policies[0] = root->create_implicit_activation_policy(PortableServer::IMPLICIT_ACTIVATION);
    if (m_settings.biDirectional) {
      // From here on this ORB offers its connections for calls back.
      CORBA::Any both;
      both <<= BiDirPolicy::BOTH;
      policies[1] = m_orb->create_policy(BiDirPolicy::BIDIRECTIONAL_POLICY_TYPE, both);
    }
    PortableServer::POA_var poa =
        root->create_POA(m_name.c_str(), PortableServer::POAManager::_nil(), policies);
    const PortableServer::POAManager_var manager = poa->the_POAManager();
    manager->activate();
    return poa._retn();
  }

  const std::string m_name;
  bool m_isFirst = true;
  const OrbSettings m_settings;
  const bool m_useThreadPool;
  CORBA::ORB_var m_orb;
  std::mutex m_mutex;
  PortableServer::POA_var m_poa;
  TaoThreads m_threads;
};

}  // namespace

std::unique_ptr<OrbInstance> StartOrb(const std::string& name, OrbRole role, bool useThreadPool,
                                      const OrbSettings& settings,
                                      const std::vector<std::string>& arguments) {
  auto instance = std::make_unique<TaoInstance>(name, settings, arguments, useThreadPool);
  // The endpoints open with the first POA. A client with bidirectional IIOP needs one for the calls
  // over its own connections, whatever its role.
  if (role == OrbRole::kClient || settings.biDirectional) instance->ChildPoa();
  return instance;
}

std::string MinorCodeName(const CORBA::SystemException& exception) {
  // Raised before a call that would be unencrypted, though TLS is on.
  if (dynamic_cast<const CORBA::INV_POLICY*>(&exception) != nullptr) {
    return "TLS is on, and the server offers none";
  }
  return TaoMinorText(exception._info().c_str());
}

bool IsMessageTooLarge(const CORBA::SystemException& exception) {
  return IsTooLarge(exception);
}

std::string StringifyReference(CORBA::Object_ptr object) {
  const CORBA::ORB_var orb = object->_get_orb();
  const CORBA::String_var text = orb->object_to_string(object);
  return text.in();
}

bool CameOverOwnConnection() {
  return true;  // unknown to a servant in TAO
}

std::string_view ProductName() {
  return "TAO";
}

}  // namespace vq::orb
