#include <support/orb/tao/TaoOrb.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/select.h>

#include <ace/Log_Category.h>
#include <ace/Log_Msg.h>
#include <ace/Log_Msg_Backend.h>
#include <ace/Log_Record.h>
#include <ace/Service_Config.h>
#include <ace/Service_Gestalt.h>
#include <tao/IIOP_Factory.h>
#include <tao/Messaging/Messaging.h>
#include <tao/ORB_Core.h>
#include <tao/Service_Context_Handler.h>
#include <tao/Service_Context_Handler_Registry.h>
#include <tao/TAO_Singleton_Manager.h>
#include <tao/TimeBaseC.h>
#include <tao/debug.h>
#include <tao/default_resource.h>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/NoSignals.h>
#include <support/orb/CorbaText.h>
#include <support/orb/tao/TaoConnector.h>
#include <support/orb/tao/TaoOptions.h>
#include <support/orb/tao/TaoTls.h>
#include <support/os_toolkit/os_file_system.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// Shows connections. From 5 on TAO prints the content of messages, with passwords.
constexpr unsigned kTraceOn = 2;

// Runs a step at the end of a scope, also after an exception.
template <class Step>
struct AtEnd {
  explicit AtEnd(Step given) : step(given) {}
  ~AtEnd() { step(); }
  Step step;
};

// Takes ACE's lines in place of stderr.
class LogLines : public ACE_Log_Msg_Backend {
 public:
  int open(const ACE_TCHAR*) override { return 0; }
  int reset() override { return 0; }
  int close() override { return 0; }
  ssize_t log(ACE_Log_Record& record) override {
    std::string_view line(record.msg_data());
    while (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty()) VQ_LOG(diagModule, 6) << line;
    return static_cast<ssize_t>(line.size());
  }
};

// Controls ACE's log while ORBs of this library are up. The end of the last one restores it.
class AceLog {
 public:
  void Take() {
    const std::lock_guard lock(m_mutex);
    if (m_users++ > 0) return;
    m_debugLevel = TAO_debug_level;
    m_isTraced = diagModule.IsActive(TDiag::kTrace);
    if (m_isTraced) {
      static auto* const lines = new LogLines;
      TAO_debug_level = kTraceOn;
      ACE_Log_Msg* const ace = ACE_Log_Msg::instance();
      m_flags = ace->flags();
      m_backend = ACE_Log_Msg::msg_backend(lines);
      ace->clr_flags(ACE_Log_Msg::STDERR | ACE_Log_Msg::LOGGER);
      ace->set_flags(ACE_Log_Msg::CUSTOM);
    } else if (TAO_debug_level == 0) {  // Otherwise the application traces TAO.
      for (ACE_Log_Category* category :
           {&ACE_Log_Category::ace_lib(), &TAO_log_category, TlsLog()}) {
        if (category == nullptr) continue;
        m_masks.emplace_back(category, category->priority_mask(0));
      }
    }
  }

  void Return() {
    const std::lock_guard lock(m_mutex);
    if (--m_users > 0) return;
    TAO_debug_level = m_debugLevel;
    if (m_isTraced) {
      ACE_Log_Msg* const ace = ACE_Log_Msg::instance();
      ace->clr_flags(ACE_Log_Msg::CUSTOM);
      ace->set_flags(m_flags);
      ACE_Log_Msg::msg_backend(m_backend);
    }
    for (const auto& [category, mask] : m_masks) category->priority_mask(mask);
    m_masks.clear();
  }

 private:
  std::mutex m_mutex;
  int m_users = 0;
  bool m_isTraced = false;
  unsigned m_debugLevel = 0;
  u_long m_flags = 0;
  ACE_Log_Msg_Backend* m_backend = nullptr;
  std::vector<std::pair<ACE_Log_Category*, u_long>> m_masks;
};
auto& aceLog = *new AceLog;  // never destroyed: ORBs may end late

// The services of one ORB. TAO reads no configuration file, and by that leaves ACE's log alone,
// unless an argument names one.
ACE_Intrusive_Auto_Ptr<ACE_Service_Gestalt> MakeServices(const OrbSettings& settings,
                                                         bool isFirst) {
  ACE_Intrusive_Auto_Ptr<ACE_Service_Gestalt> services(
      new ACE_Service_Gestalt(ACE_Service_Gestalt::MAX_SERVICES / 4, true));
  const ACE_Service_Config_Guard guard(services.get());
  TAO_Singleton_Manager::instance()->init();  // which the services use; ORB_init is still to come
  services->process_directive(ace_svc_desc_TAO_Default_Resource_Factory);
  AddService<CheckedProtocol<TAO_IIOP_Protocol_Factory, CheckedConnector>>(*services, kProtocol,
                                                                           settings);
  PrepareTls(settings, *services, isFirst);
  AddReplyWait(*services, settings);
  for (const std::string& directive : TaoDirectives(settings)) {
    services->process_directive(directive.c_str());
  }
  return services;
}

// Without this an ORB of TAO's uses connections that others opened to it for calls, to whichever
// server they name, once the process has the library for bidirectional IIOP.
void IgnoreOfferedConnections(CORBA::ORB_ptr orb) {
  // The only handler in there is that of the service context with which a connection is offered.
  TAO_Service_Context_Registry& handlers = orb->orb_core()->service_context_registry();
  delete handlers[IOP::BI_DIR_IIOP];
  handlers = TAO_Service_Context_Registry();
}

// ACE waits with select(), which writes beyond its memory for a higher descriptor.
void CheckDescriptors() {
  constexpr int kNeeded = 50;
  const Descriptor next(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (next.Get() < FD_SETSIZE - kNeeded) return;
  throw std::invalid_argument("the program has about " + std::to_string(next.Get()) +
                              " open files; TAO can use descriptors up to " +
                              std::to_string(FD_SETSIZE - 1));
}

// Limits on connecting and on a whole call, for everything that this ORB sends.
void LimitCalls(CORBA::ORB_ptr orb, std::chrono::milliseconds connect,
                std::chrono::milliseconds call) {
  CORBA::PolicyList policies;
  policies.length(2);
  policies[0] = TimePolicy(orb, TAO::CONNECTION_TIMEOUT_POLICY_TYPE, connect);
  policies[1] = TimePolicy(orb, Messaging::RELATIVE_RT_TIMEOUT_POLICY_TYPE, call);
  const CORBA::Object_var object = orb->resolve_initial_references("ORBPolicyManager");
  const CORBA::PolicyManager_var manager = CORBA::PolicyManager::_narrow(object.in());
  manager->set_policy_overrides(policies, CORBA::ADD_OVERRIDE);
}

void EndTao(CORBA::ORB_ptr orb) {
  const AtEnd after([] { aceLog.Return(); });
  orb->destroy();
}

}  // namespace

CORBA::ORB_ptr StartTao(const std::string& name, const OrbSettings& settings,
                        const std::vector<std::string>& arguments, Unencrypted allowed,
                        bool isFirst) {
  CheckDescriptors();
  std::vector<std::string> all{"vq"};
  for (const auto& some :
       {TaoConfigurationArguments(arguments), TaoArguments(settings), arguments}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  // ORB_init takes what it knows out of its argument vector.
  std::vector<char*> pointers;
  for (std::string& argument : all) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  // An ORB of the same name may still be ending, and would be returned.
  static std::atomic<int> number = 0;
  const std::string id = name + "/" + std::to_string(++number);
  aceLog.Take();
  CORBA::ORB_var orb;
  try {
    {
      const auto services = MakeServices(settings, isFirst);
      const ACE_Service_Config_Guard guard(services.get());
      orb = CORBA::ORB_init(count, pointers.data(), id.c_str());
    }
    CheckCalls(orb.in(), allowed);
    if (!settings.biDirectional) IgnoreOfferedConnections(orb.in());
    LimitCalls(orb.in(), settings.connectTimeout, settings.callTimeout);
    AllowNaming(orb.in(), settings);
    return orb._retn();
  } catch (...) {
    CORBA::is_nil(orb.in()) ? aceLog.Return() : EndTao(orb.in());
    throw;
  }
}

CORBA::Policy_ptr TimePolicy(CORBA::ORB_ptr orb, CORBA::PolicyType type,
                             std::chrono::milliseconds time) {
  CORBA::Any value;
  value <<= static_cast<TimeBase::TimeT>(TaoTime(time));
  return orb->create_policy(type, value);
}

// The last to leave destroys an ORB that nobody waits for: one of its threads, or the thread that
// shuts it down.
struct TaoThreads::Shared {
  std::atomic<int> users = 0;
  std::atomic<bool> destroys = false;
  std::vector<std::thread> threads;  // of an ORB that has ended

  void Leave(CORBA::ORB_ptr orb) {
    if (--users > 0 || !destroys) return;
    try {
      EndTao(orb);
    } catch (const CORBA::Exception& e) {
      VQ_LOG(diagModule, 1) << "The ORB does not end in order: " << e;
    }
  }
};

// The threads of ORBs that ended without waiting. At the end of the process they are awaited,
// before ACE destroys what they use.
class TaoThreads::Leaving {
 public:
  void Add(std::shared_ptr<Shared> shared) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_all, [](const auto& one) {
      if (one->users == 0) Join(*one);
      return one->users == 0;
    });
    m_all.push_back(std::move(shared));
    [[maybe_unused]] static const bool isHooked = std::atexit([] { leaving.JoinAll(); }) == 0;
  }

 private:
  static void Join(Shared& shared) {
    for (std::thread& thread : shared.threads) {
      thread.get_id() == std::this_thread::get_id() ? thread.detach() : thread.join();
    }
    shared.threads.clear();
  }
  void JoinAll() {
    const std::lock_guard lock(m_mutex);
    for (const auto& one : m_all) Join(*one);
    m_all.clear();
  }

  std::mutex m_mutex;
  std::vector<std::shared_ptr<Shared>> m_all;
};

TaoThreads::Leaving& TaoThreads::leaving = *new Leaving;

void TaoThreads::Start(CORBA::ORB_ptr orb, int count) {
  const NoSignals none;  // The new threads leave them to those of the application.
  m_shared = std::make_shared<Shared>();
  m_shared->users = count;
  for (int i = 0; i < count; ++i) {
    m_threads.emplace_back([own = CORBA::ORB_var(CORBA::ORB::_duplicate(orb)), shared = m_shared] {
      try {
        own->run();
      } catch (const CORBA::BAD_INV_ORDER&) {  // The ORB ended before this thread was there.
      } catch (const CORBA::Exception& e) {
        VQ_LOG(diagModule, 1) << "A thread that takes calls ends: " << e;
      } catch (const std::exception& e) {
        VQ_LOG(diagModule, 1) << "A thread that takes calls ends: " << e.what();
      }
      shared->Leave(own.in());
    });
  }
}

void TaoThreads::End(CORBA::ORB_ptr orb, bool wait) {
  const bool isOwn = std::any_of(m_threads.begin(), m_threads.end(), [](const std::thread& thread) {
    return thread.get_id() == std::this_thread::get_id();
  });
  const bool later = m_shared != nullptr && (isOwn || !wait);
  if (later) {
    ++m_shared->users;
    m_shared->destroys = true;
  }
  try {
    orb->shutdown(!later);
  } catch (const CORBA::BAD_INV_ORDER&) {  // In a call that another thread serves: the ORB goes on.
    for (std::thread& thread : m_threads) thread.detach();
    m_threads.clear();
    throw;
  }
  if (later) {
    m_shared->threads = std::move(m_threads);
    leaving.Add(m_shared);
  } else {
    for (std::thread& thread : m_threads) thread.join();
  }
  m_threads.clear();
  if (later) {
    m_shared->Leave(orb);
  } else {
    EndTao(orb);
  }
}

}  // namespace vq::orb
