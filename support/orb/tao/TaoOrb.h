// The start of an ORB of TAO's, for clients and servers, and the threads that serve it.
//
//   CORBA::ORB_var orb = StartTao("GUI:1", settings, arguments, Unencrypted::kLookUps);
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
#include <support/orb/tao/TaoCalls.h>

namespace vq::orb {

// Starts a new ORB, also where the process has one of that name. `arguments` are those for TAO.
// Raises CORBA::SystemException, and std::invalid_argument for TLS settings that cannot be used and
// for too many open files. The first ORB gives TLS its settings, which the others share.
//
// Until the last of these ORBs ends, TAO and ACE write no log of their own, which would go to
// stderr. The application's ACE log is not touched, unless this library's log is at level 6: then
// all of ACE's log goes there meanwhile.
CORBA::ORB_ptr StartTao(const std::string& name, const OrbSettings& settings,
                        const std::vector<std::string>& arguments, Unencrypted allowed,
                        bool isFirst);

// A policy that contains a time. The caller owns it.
CORBA::Policy_ptr TimePolicy(CORBA::ORB_ptr orb, CORBA::PolicyType type,
                             std::chrono::milliseconds time);

// The threads that take calls for one ORB.
//
// Thread safety: one thread at a time, which may be one of these threads.
class TaoThreads {
 public:
  void Start(CORBA::ORB_ptr orb, int count);
  bool AreRunning() const { return !m_threads.empty(); }

  // Destroys the ORB and returns when the threads have ended. Called by one of them, in a call that
  // it serves, or without `wait`, it returns at once, and the last thread destroys the ORB.
  void End(CORBA::ORB_ptr orb, bool wait);

 private:
  struct Shared;
  class Leaving;
  static Leaving& leaving;  // never destroyed

  std::vector<std::thread> m_threads;
  std::shared_ptr<Shared> m_shared;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOORB_H
