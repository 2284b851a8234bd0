// omniORB behind the seam of OrbProduct.h.
//
// omniORB has one ORB a process: a second ORB_init returns the first and ignores its arguments, and
// destroy() ends it for everybody. So the instances given out here share one transport and count
// themselves: the first start initialises it with the complete option list, the last stop ends it.
// Each instance has a POA and a POA manager of its own.

#include <support/orb/OrbProduct.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <omniORB4/BiDirPolicy.h>
#include <omniORB4/minorCode.h>
#include <omniORB4/omniORB.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/OmniOrbOptions.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// Enough to follow connections and calls; from 30 on omniORB prints what the messages hold, which
// includes passwords.
constexpr CORBA::ULong kTraceOn = 25;
constexpr CORBA::ULong kTraceOff = 1;

void LogLine(const char* text) {
  std::string_view line(text);
  while (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty()) VQ_LOG(diagModule, omniORB::traceLevel > kTraceOff ? 6 : 2) << line;
}

class Transport {
 public:
  // Never destroyed: references may be released after any static object of this file.
  static Transport& Instance() {
    static auto* const transport = new Transport;
    return *transport;
  }

  CORBA::ORB_ptr Acquire(const OrbSettings& settings, const std::vector<std::string>& arguments) {
    const std::lock_guard lock(m_mutex);
    FinishEnding();
    if (m_users == 0) m_orb = Initialise(settings, arguments);
    ++m_users;
    return m_orb.in();
  }

  void Release(bool wait) {
    const std::lock_guard lock(m_mutex);
    if (m_users == 0 || --m_users > 0) return;
    m_ending = true;
    m_orb->shutdown(wait);
    if (wait) FinishEnding();
  }

 private:
  static CORBA::ORB_ptr Initialise(const OrbSettings& settings,
                                   const std::vector<std::string>& arguments) {
    omniORB::setLogFunction(LogLine);
    omniORB::traceLevel = diagModule.IsActive(TDiag::kTrace) ? kTraceOn : kTraceOff;

    const std::vector<OmniOrbOption> options = OmniOrbOptions(settings);
    const std::unique_ptr<const char*[][2]> table(new const char*[options.size() + 1][2]);
    for (std::size_t i = 0; i < options.size(); ++i) {
      table[i][0] = options[i].first.c_str();
      table[i][1] = options[i].second.c_str();
    }
    table[options.size()][0] = nullptr;
    table[options.size()][1] = nullptr;

    // ORB_init takes what it knows out of its argument vector, so it gets copies.
    std::vector<std::string> copies(arguments);
    std::vector<char*> pointers;
    for (std::string& copy : copies) pointers.push_back(copy.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    return CORBA::ORB_init(count, pointers.data(), "omniORB4", table.get());
  }

  // An ORB that was told to end without waiting is destroyed before the next one starts.
  void FinishEnding() {
    if (!m_ending) return;
    m_ending = false;
    m_orb->destroy();
    m_orb = CORBA::ORB::_nil();
  }

  std::mutex m_mutex;
  CORBA::ORB_var m_orb;
  int m_users = 0;
  bool m_ending = false;
};

class OmniOrbInstance : public OrbInstance {
 public:
  OmniOrbInstance(std::string name, const OrbSettings& settings,
                  const std::vector<std::string>& arguments)
      : m_name(std::move(name)),
        m_biDirectional(settings.biDirectional),
        m_orb(CORBA::ORB::_duplicate(Transport::Instance().Acquire(settings, arguments))) {}

  ~OmniOrbInstance() override {
    try {
      OmniOrbInstance::Stop(false);
    } catch (const CORBA::Exception&) {  // Nobody is left to tell.
    }
  }

  CORBA::ORB_ptr Orb() override { return m_orb.in(); }

  PortableServer::POA_ptr ChildPoa() override {
    const std::lock_guard lock(m_mutex);
    if (CORBA::is_nil(m_poa.in())) m_poa = CreatePoa();
    return m_poa.in();
  }

  void Stop(bool wait) override {
    if (m_stopped) return;
    m_stopped = true;
    if (!CORBA::is_nil(m_poa.in())) m_poa->destroy(true, wait);
    m_poa = PortableServer::POA::_nil();
    Transport::Instance().Release(wait);
  }

 private:
  PortableServer::POA_ptr CreatePoa() {
    CORBA::Object_var object = m_orb->resolve_initial_references("RootPOA");
    PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
    PortableServer::POAManager_var rootManager = root->the_POAManager();
    rootManager->activate();

    CORBA::PolicyList policies;
    policies.length(m_biDirectional ? 2 : 1);
    policies[0] = root->create_implicit_activation_policy(PortableServer::IMPLICIT_ACTIVATION);
    if (m_biDirectional) {
      CORBA::Any both;
      both <<= BiDirPolicy::BOTH;
      policies[1] = m_orb->create_policy(BiDirPolicy::BIDIRECTIONAL_POLICY_TYPE, both);
    }
    PortableServer::POA_var poa =
        root->create_POA(m_name.c_str(), PortableServer::POAManager::_nil(), policies);
    PortableServer::POAManager_var manager = poa->the_POAManager();
    manager->activate();
    return poa._retn();
  }

  const std::string m_name;
  const bool m_biDirectional;
  CORBA::ORB_var m_orb;
  std::mutex m_mutex;
  PortableServer::POA_var m_poa;
  bool m_stopped = false;
};

}  // namespace

std::unique_ptr<OrbInstance> StartOrb(const std::string& name, OrbRole role,
                                      const OrbSettings& settings,
                                      const std::vector<std::string>& arguments) {
  auto instance = std::make_unique<OmniOrbInstance>(name, settings, arguments);
  // The endpoints open with the first POA. A bidirectional client needs one for the calls that come
  // back over its own connections, whatever its role.
  if (role == OrbRole::kClient || settings.biDirectional) instance->ChildPoa();
  return instance;
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
  int count = 0;
  CORBA::ORB_var orb = CORBA::ORB_init(count, nullptr);  // the one that is running
  CORBA::String_var text = orb->object_to_string(object);
  return text.in();
}

std::string_view ProductName() {
  return "omniORB";
}

}  // namespace vq::orb
