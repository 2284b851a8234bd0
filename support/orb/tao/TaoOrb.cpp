#include <support/orb/tao/TaoOrb.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <exception>
#include <string_view>

#include <ace/Log_Msg.h>
#include <ace/Log_Msg_Callback.h>
#include <ace/Log_Record.h>
#include <tao/Messaging/Messaging.h>
#include <tao/ORB_Core.h>
#include <tao/Service_Context_Handler.h>
#include <tao/Service_Context_Handler_Registry.h>
#include <tao/TimeBaseC.h>
#include <tao/debug.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/tao/TaoOptions.h>
#include <support/orb/tao/TaoReplyCheck.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// Enough to follow connections; from 5 on TAO prints what the messages hold, which includes
// passwords.
constexpr unsigned kTraceOn = 2;

// Takes ACE's lines, which would go to standard error.
class LogLines : public ACE_Log_Msg_Callback {
 public:
  void log(ACE_Log_Record& record) override {
    std::string_view line(record.msg_data());
    while (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty()) VQ_LOG(diagModule, TAO_debug_level > 0 ? 6 : 2) << line;
  }
};

// ACE keeps where its lines go for each thread.
void LogHere() {
  static auto* const lines = new LogLines;
  ACE_Log_Msg* const log = ACE_Log_Msg::instance();
  log->clr_flags(ACE_Log_Msg::STDERR | ACE_Log_Msg::LOGGER);
  log->set_flags(ACE_Log_Msg::MSG_CALLBACK);
  log->msg_callback(lines);
}

void Release(CORBA::PolicyList& policies) {
  for (CORBA::ULong i = 0; i < policies.length(); ++i) policies[i]->destroy();
}

// New threads leave signals to those of the application.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_former);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t m_former{};
};

}  // namespace

CORBA::ORB_ptr StartTao(const std::string& name, std::vector<std::string> arguments) {
  LogHere();
  TAO_debug_level = diagModule.IsActive(TDiag::kTrace) ? kTraceOn : 0;
  // ORB_init takes what it knows out of its argument vector.
  arguments.insert(arguments.begin(), "vq");
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  // An ORB of the same name may still be ending, and would be returned.
  static std::atomic<int> number = 0;
  const std::string id = name + "/" + std::to_string(++number);
  CORBA::ORB_var orb = CORBA::ORB_init(count, pointers.data(), id.c_str());
  CheckReplies(orb.in());
  return orb._retn();
}

void IgnoreOfferedConnections(CORBA::ORB_ptr orb) {
  // What handles the service context with which a connection is offered; nothing else is in there.
  TAO_Service_Context_Registry& handlers = orb->orb_core()->service_context_registry();
  delete handlers[IOP::BI_DIR_IIOP];
  handlers = TAO_Service_Context_Registry();
}

CORBA::Policy_ptr TimePolicy(CORBA::ORB_ptr orb, CORBA::PolicyType type,
                             std::chrono::milliseconds time) {
  CORBA::Any value;
  value <<= static_cast<TimeBase::TimeT>(TaoTime(time));
  return orb->create_policy(type, value);
}

CORBA::Object_ptr WithPolicy(CORBA::Object_ptr object, CORBA::Policy_ptr policy) {
  CORBA::PolicyList policies;
  policies.length(1);
  policies[0] = CORBA::Policy::_duplicate(policy);
  CORBA::Object_var result = object->_set_policy_overrides(policies, CORBA::ADD_OVERRIDE);
  policy->destroy();
  return result._retn();
}

void LimitCalls(CORBA::ORB_ptr orb, std::chrono::milliseconds connect,
                std::chrono::milliseconds call) {
  CORBA::PolicyList policies;
  policies.length(2);
  policies[0] = TimePolicy(orb, TAO::CONNECTION_TIMEOUT_POLICY_TYPE, connect);
  policies[1] = TimePolicy(orb, Messaging::RELATIVE_RT_TIMEOUT_POLICY_TYPE, call);
  const CORBA::Object_var object = orb->resolve_initial_references("ORBPolicyManager");
  const CORBA::PolicyManager_var manager = CORBA::PolicyManager::_narrow(object.in());
  manager->set_policy_overrides(policies, CORBA::ADD_OVERRIDE);
  Release(policies);
}

// The last that leaves destroys an ORB that nobody waits for: one of its threads, or who shuts it
// down, which must have ended before.
struct TaoThreads::Shared {
  std::atomic<int> users = 0;
  std::atomic<bool> destroys = false;

  void Leave(CORBA::ORB_ptr orb) {
    if (--users > 0 || !destroys) return;
    try {
      orb->destroy();
    } catch (const CORBA::Exception& e) {
      VQ_LOG(diagModule, 1) << "The ORB does not end in order: " << e;
    }
  }
};

void TaoThreads::Start(CORBA::ORB_ptr orb, int count) {
  const SignalsBlocked blocked;
  m_shared = std::make_shared<Shared>();
  m_shared->users = count;
  for (int i = 0; i < count; ++i) {
    m_threads.emplace_back([own = CORBA::ORB_var(CORBA::ORB::_duplicate(orb)), shared = m_shared] {
      LogHere();
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
  orb->shutdown(!later);
  for (std::thread& thread : m_threads) later ? thread.detach() : thread.join();
  m_threads.clear();
  if (later) {
    m_shared->Leave(orb);
  } else {
    orb->destroy();
  }
}

}  // namespace vq::orb
