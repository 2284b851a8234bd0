// What a client's ORB and a server's have in common in TAO: their start, the threads that serve
// them, and limits on calls.
//
//   CORBA::ORB_var orb = StartTao("GUI:1", arguments);
//   TaoThreads threads;
//   threads.Start(orb.in(), 1);
//   threads.End(orb.in(), true);
#ifndef VQ_SUPPORT_ORB_TAO_TAOORB_H
#define VQ_SUPPORT_ORB_TAO_TAOORB_H

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Initialises an ORB, whatever others of that name the process has. Raises CORBA::SystemException.
// Until the last of them ends, TAO and ACE write no log of their own: it would go to stderr. The
// application's ACE log is not touched, unless this system's own trace is on, which takes over all
// of ACE's log meanwhile.
CORBA::ORB_ptr StartTao(const std::string& name, const OrbSettings& settings,
                        std::vector<std::string> arguments);

// Destroys it. Raises CORBA::SystemException.
void EndTao(CORBA::ORB_ptr orb);

// Keeps this ORB from calls over connections that others opened to it. Without that an ORB of TAO's
// believes whoever connects to it which server is at the other end, once the process has the
// library for bidirectional use.
void IgnoreOfferedConnections(CORBA::ORB_ptr orb);

// Limits on connecting and on a whole call, of everything that goes out from this ORB.
void LimitCalls(CORBA::ORB_ptr orb, std::chrono::milliseconds connect,
                std::chrono::milliseconds call);

// A policy that holds a time. The caller owns it.
CORBA::Policy_ptr TimePolicy(CORBA::ORB_ptr orb, CORBA::PolicyType type,
                             std::chrono::milliseconds time);

// The same object under that policy, which ends here. The caller owns the result.
CORBA::Object_ptr WithPolicy(CORBA::Object_ptr object, CORBA::Policy_ptr policy);

// The threads that take calls for one ORB.
//
// Thread contract: one thread at a time, which may be one of these threads.
class TaoThreads {
 public:
  void Start(CORBA::ORB_ptr orb, int count);
  bool AreRunning() const { return !m_threads.empty(); }

  // Ends and destroys the ORB, and returns when the threads have ended. When it is called by one of
  // them, in a call that it serves, or without `wait`, they end later and destroy the ORB then.
  void End(CORBA::ORB_ptr orb, bool wait);

 private:
  struct Shared;
  std::vector<std::thread> m_threads;
  std::shared_ptr<Shared> m_shared;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOORB_H
