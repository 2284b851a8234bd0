// The one omniORB of the process, which all ORB numbers share.
//
// A second ORB_init of omniORB returns the first ORB and ignores its arguments, and destroy() ends
// it for everybody. So its users are counted: the first one initialises it with the complete option
// list, the last one ends it. Its listener is counted in the same way: it opens with the first POA
// and closes with the last, so that a trial in a process that does not listen leaves no open port.
//
//   CORBA::ORB_ptr orb = OmniOrbTransport::Instance().Acquire(this, settings, arguments);
//   ...
//   OmniOrbTransport::Instance().Release(this, true);
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H

#include <mutex>
#include <string>
#include <vector>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: any thread. Acquire and Release change how new references of the whole process
// connect, so no other call is under way during them.
class OmniOrbTransport {
 public:
  // Never destroyed: references may be released after any static object.
  static OmniOrbTransport& Instance();

  // From here on until the user's Release, or until the next user comes, references that are made
  // offer bidirectional use of their connections or not, as these settings say. References made
  // before keep their own connections. `user` tells the users apart. Raises CORBA::SystemException
  // and std::invalid_argument. The result is borrowed.
  CORBA::ORB_ptr Acquire(const void* user, const OrbSettings& settings,
                         const std::vector<std::string>& arguments);

  // The ORB ends with its last user; without `wait` it may end later, but before it starts anew.
  void Release(const void* user, bool wait);

  bool HasOtherUsers(const void* user);

  // The TLS settings in force, which are those of the user that started the transport.
  TlsSettings Tls();

  // Opens the endpoints if they are not open, and returns the root POA, active.
  PortableServer::POA_ptr OpenListener();

  // To be called once for each OpenListener. The last call closes the endpoints and ends the
  // threads that serve them.
  void CloseListener();

  OmniOrbTransport(const OmniOrbTransport&) = delete;
  OmniOrbTransport& operator=(const OmniOrbTransport&) = delete;

 private:
  struct User {
    const void* id;
    bool biDirectional;
  };

  OmniOrbTransport() = default;
  static CORBA::ORB_ptr Initialise(const OrbSettings& settings,
                                   const std::vector<std::string>& arguments);
  void OfferAsLastUser() const;
  void FinishEnding();

  std::mutex m_mutex;
  CORBA::ORB_var m_orb;
  TlsSettings m_tls;
  std::vector<User> m_users;
  int m_listeners = 0;
  bool m_ending = false;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBTRANSPORT_H
