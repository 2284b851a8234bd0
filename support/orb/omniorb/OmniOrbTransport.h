// The one omniORB of the process, which all ORB numbers share.
//
// A second ORB_init of omniORB returns the first ORB and ignores its arguments, and destroy() ends
// the ORB for all users. So the users are counted: the first one initialises it with the complete
// option list, the last one ends it. Its listener is counted in the same way: it opens with the
// first POA and closes with the last, so that a trial in a process that does not listen leaves no
// open port.
//
//   CORBA::ORB_ptr orb = OmniOrbTransport::Instance().Acquire(this, settings, arguments);
//   ...
//   OmniOrbTransport::Instance().Release(this, true);
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H

#include <mutex>
#include <string>
#include <vector>

#include <sys/types.h>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/omniorb/OmniOrbOptions.h>

namespace vq::orb {

// ORB_init with these options and arguments, and with the TLS context of the settings. Raises
// CORBA::SystemException, and std::invalid_argument as PrepareTls.
CORBA::ORB_ptr InitOmniOrb(const OrbSettings& settings, const std::vector<OmniOrbOption>& options,
                           std::vector<std::string> arguments);

// Thread safety: any thread may call the operations. Acquire and Release change how new references
// of the whole process connect, so no other call may be in progress meanwhile.
class OmniOrbTransport {
 public:
  // Never destroyed: references may be released after any static object.
  static OmniOrbTransport& Instance();

  // Adds a user, identified by `user`, and starts the ORB for the first one. Until the user's
  // Release or the next Acquire, these settings decide whether new references offer bidirectional
  // IIOP; earlier references keep their own connections. Raises CORBA::SystemException, and
  // std::invalid_argument as PrepareTls or while an ORB of other code is up. The result is
  // borrowed.
  CORBA::ORB_ptr Acquire(const void* user, const OrbSettings& settings,
                         const std::vector<std::string>& arguments);

  // Removes a user; the last one ends the ORB. Without `wait` the ORB may end later, but before the
  // next start.
  void Release(const void* user, bool wait);

  bool HasOtherUsers(const void* user);

  // The TLS settings that apply: those of the user that started the ORB.
  TlsSettings Tls();

  // Opens the endpoints if they are not open. Returns the root POA, activated.
  PortableServer::POA_ptr OpenListener();

  // Call it once for each OpenListener. The last call closes the endpoints and ends their threads.
  void CloseListener();

  OmniOrbTransport(const OmniOrbTransport&) = delete;
  OmniOrbTransport& operator=(const OmniOrbTransport&) = delete;

 private:
  struct User {
    const void* id;
    bool biDirectional;
  };

  OmniOrbTransport() = default;
  CORBA::ORB_ptr Initialise(const OrbSettings& settings, const std::vector<std::string>& arguments);
  static void LeaveAtExit();
  void OfferAsLastUser() const;
  void FinishEnding();

  std::mutex m_mutex;
  CORBA::ORB_var m_orb;
  TlsSettings m_tls;
  std::vector<User> m_users;
  int m_listeners = 0;
  bool m_ending = false;
  bool m_failed = false;  // a start; omniORB may seem to run since
  pid_t m_process = 0;    // that started the ORB
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H
