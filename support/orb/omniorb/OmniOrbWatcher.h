// The watch over idle connections, by which omniORB's threads notice calls that arrive.
//
// These threads watch omniORB's own connection objects. A Watcher gives omniORB the object that was
// added for one of them, such as a CheckedConnection.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBWATCHER_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBWATCHER_H

#include <chrono>

#include <omniORB4/CORBA.h>
#include <omniORB4/giopEndpoint.h>

namespace vq::orb {

class Watcher {
 public:
  static void Add(omni::giopConnection& known, omni::giopConnection& connection);
  static void Remove(omni::giopConnection& known);
  // The same, and waits until omniORB no longer uses the connection. No lock of omniORB is held.
  static void RemoveAndWait(omni::giopConnection& known);

 protected:
  void TellTo(omni::giopConnection::notifyReadable_t tell, void* cookie) {
    m_tell = tell;
    m_cookie = cookie;
  }

  // omniORB calls it without a lock, also when another thread ends the connection.
  static void Tell(void* watcher, omni::giopConnection* known);

 private:
  omni::giopConnection::notifyReadable_t m_tell = nullptr;
  void* m_cookie = nullptr;
};

// The watcher of the bidirectional connections of one transport that this process opened.
omni::giopActiveCollection& WatcherOfOpened(omni::giopActiveCollection& opened);

// For the end of the process: ends the threads that watch opened connections. Returns when none
// watches any more, within a second for each transport.
void StopWatching();

// ThreadSanitizer knows locks with a limit by the system's clock only.
inline std::chrono::system_clock::time_point InASecond() {
  return std::chrono::system_clock::now() + std::chrono::seconds(1);
}

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBWATCHER_H
