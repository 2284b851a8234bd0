// omniORB behind the seam of OrbProduct.h.
//
// omniORB has one ORB a process, which all instances share (OmniOrbTransport.h). Each instance has
// its own POA, POA manager and published address, and decides whether its references offer
// bidirectional IIOP.

#include <support/orb/OrbProduct.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <omniORB4/BiDirPolicy.h>
#include <omniORB4/minorCode.h>
#include <omniORB4/omniORB.h>
#include <omniORB4/omniPolicy.h>
#include <omniORB4/omniURI.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/omniorb/OmniOrbCalls.h>
#include <support/orb/omniorb/OmniOrbGuest.h>
#include <support/orb/omniorb/OmniOrbInternals.h>
#include <support/orb/omniorb/OmniOrbMessages.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/omniorb/OmniOrbTls.h>
#include <support/orb/omniorb/OmniOrbTransport.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// The address at the same port and of the same transport, with another host.
std::string WithHost(const std::string& address, const std::string& host) {
  const std::string scheme = address.substr(0, std::string_view(kTcp).size());
  return scheme + UriHost(host) + address.substr(address.rfind(':'));
}

bool IsLoopback(const std::string& address) {
  return address.find(":127.") != std::string::npos || address.find(":[::1]:") != std::string::npos;
}

// The addresses in references to an ORB's objects: for each transport the first of the `open`
// addresses, with the published host if there is one. Loopback is the last choice.
std::vector<std::string> PublishedAddresses(std::vector<std::string> open,
                                            const std::string& publishedHost) {
  std::ranges::stable_sort(open, {}, IsLoopback);
  std::vector<std::string> published;
  for (const std::string_view transport : {kTcp, kTls}) {
    const auto isOfIt = [&](const std::string& address) { return address.starts_with(transport); };
    const auto found = std::ranges::find_if(open, isOfIt);
    if (found == open.end()) continue;
    published.push_back(publishedHost.empty() ? *found : WithHost(*found, publishedHost));
  }
  return published;
}

// An address of the process that a server receives when a connection offers bidirectional IIOP, and
// that reaches nothing from another host. The server calls a reference with this address over that
// connection.
std::string ConnectionMark() {
  const std::vector<std::string> own = OpenEndpoints();
  const auto found = std::ranges::find_if(own, IsLoopback);
  return found != own.end() ? *found : own.empty() ? std::string() : own.front();
}

class OmniOrbInstance : public OrbInstance {
 public:
  OmniOrbInstance(std::string name, OrbSettings settings, const std::vector<std::string>& arguments)
      : m_name(std::move(name)),
        m_biDirectional(settings.biDirectional),
        m_publishedHost(settings.listenEndpoint.publishedHost),
        m_orb(CORBA::ORB::_duplicate(
            OmniOrbTransport::Instance().Acquire(this, settings, arguments))) {
    if (!OmniOrbTransport::Instance().HasOtherUsers(this)) return;
    VQ_LOG(diagModule, 4) << "The ORB " << m_name << " shares the time-outs, the message size, TLS "
                          << "and the initial references of the ORB that is up already";
    m_guest.emplace();
    settings.tls = OmniOrbTransport::Instance().Tls();
    m_guestEndpoint = OmniOrbEndpoint(settings);
  }

  ~OmniOrbInstance() override {
    try {
      // Without a POA, such as after a failed start, no incoming call can delay the wait. A
      // shutdown without waiting runs in a thread that may still run when the process exits.
      OmniOrbInstance::Stop(CORBA::is_nil(m_poa.in()));
    } catch (const CORBA::Exception&) {  // There is nothing left to do.
    } catch (const omniORB::fatalException&) {
    }
  }

  CORBA::ORB_ptr Orb() override { return m_orb.in(); }

  CORBA::Object_ptr NamingService() override {
    return m_orb->resolve_initial_references("NameService");
  }

  PortableServer::POA_ptr ChildPoa() override {
    const std::lock_guard lock(m_mutex);
    if (CORBA::is_nil(m_poa.in())) m_poa = CreatePoa();
    return m_poa.in();
  }

  std::optional<std::chrono::sys_seconds> CertificateExpiry() const override {
    return vq::orb::CertificateExpiry();
  }

  void Stop(bool wait) override {
    if (m_stopped) return;
    m_stopped = true;
    try {
      StopOnce(wait);
    } catch (const omniORB::fatalException& exception) {  // The session is over all the same.
      Report(exception);
    }
  }

 private:
  void StopOnce(bool wait) {
    OmniOrbTransport& transport = OmniOrbTransport::Instance();
    if (!transport.HasOtherUsers(this)) EndCalls();
    const bool listens = !CORBA::is_nil(m_poa.in());
    if (listens) DestroyPoa(wait);
    m_poa = PortableServer::POA::_nil();
    m_guest.reset();
    // Without waiting, the end of the ORB closes the endpoints.
    if (listens && (wait || transport.HasOtherUsers(this))) transport.CloseListener();
    transport.Release(this, wait);
  }

  void DestroyPoa(bool wait) {
    try {
      m_poa->destroy(true, wait);
    } catch (const CORBA::BAD_INV_ORDER&) {  // Called by a servant of this POA.
      if (wait) DestroyPoa(false);
    } catch (const CORBA::OBJECT_NOT_EXIST&) {  // The client has destroyed it.
    }
  }

  PortableServer::POA_ptr CreatePoa() {
    PortableServer::POA_var root = OmniOrbTransport::Instance().OpenListener();
    try {
      return CreatePoa(root.in());
    } catch (...) {
      OmniOrbTransport::Instance().CloseListener();
      throw;
    }
  }

  PortableServer::POA_ptr CreatePoa(PortableServer::POA_ptr root) {
    std::vector<std::string> addresses = PublishedAddresses(
        m_guest ? m_guest->Listen(m_guestEndpoint) : OpenEndpoints(), m_publishedHost);
    // First, since a server may use only the first address.
    if (m_guest && m_biDirectional) addresses.insert(addresses.begin(), ConnectionMark());
    omniPolicy::EndPointPublishPolicyValue published;
    published.length(static_cast<CORBA::ULong>(addresses.size()));
    for (CORBA::ULong i = 0; i < published.length(); ++i) published[i] = addresses[i].c_str();

    CORBA::PolicyList policies;
    policies.length(m_biDirectional ? 3 : 2);
    policies[0] = root->create_implicit_activation_policy(PortableServer::IMPLICIT_ACTIVATION);
    policies[1] = omniPolicy::create_endpoint_publish_policy(published);
    if (m_biDirectional) {
      CORBA::Any both;
      both <<= BiDirPolicy::BOTH;
      policies[2] = m_orb->create_policy(BiDirPolicy::BIDIRECTIONAL_POLICY_TYPE, both);
    }
    PortableServer::POA_var poa =
        root->create_POA(m_name.c_str(), PortableServer::POAManager::_nil(), policies);
    PortableServer::POAManager_var manager = poa->the_POAManager();
    manager->activate();
    return poa._retn();
  }

  const std::string m_name;
  const bool m_biDirectional;
  const std::string m_publishedHost;
  CORBA::ORB_var m_orb;
  std::optional<OmniOrbGuest> m_guest;  // if the ORB was up already
  std::string m_guestEndpoint;
  std::mutex m_mutex;
  PortableServer::POA_var m_poa;
  bool m_stopped = false;
};

}  // namespace

// omniORB has its own rules for threads.
std::unique_ptr<OrbInstance> StartOrb(const std::string& name, OrbRole role, bool /*useThreadPool*/,
                                      const OrbSettings& settings,
                                      const std::vector<std::string>& arguments) {
  try {
    auto instance = std::make_unique<OmniOrbInstance>(name, settings, arguments);
    // The first POA opens the endpoints. A bidirectional client needs a POA in either role, for the
    // calls that arrive over its own connections.
    if (role == OrbRole::kClient || settings.biDirectional) instance->ChildPoa();
    return instance;
  } catch (const omniORB::fatalException& exception) {
    VQ_LOG(diagModule, 1) << "omniORB does not start: " << exception.errmsg();
    throw CORBA::INTERNAL(0, CORBA::COMPLETED_NO);
  }
}

std::string MinorCodeName(const CORBA::SystemException& exception) {
  const char* const name = exception.NP_minorString();
  return name != nullptr ? name : "";
}

bool IsMessageTooLarge(const CORBA::SystemException& exception) {
  return CORBA::MARSHAL::_downcast(&exception) != nullptr &&
         (exception.minor() == omni::MARSHAL_MessageSizeExceedLimit ||
          exception.minor() == omni::MARSHAL_MessageSizeExceedLimitOnClient ||
          exception.minor() == omni::MARSHAL_MessageSizeExceedLimitOnServer);
}

std::string StringifyReference(CORBA::Object_ptr object) {
  // ORB_init would start an ORB if there is none, and the session's ORB would then have its
  // options.
  CORBA::String_var text = omni::omniURI::objectToString(object);
  return text.in();
}

std::string_view ProductName() {
  return "omniORB";
}

}  // namespace vq::orb
