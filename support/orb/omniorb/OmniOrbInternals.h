// Operations on omniORB for which it has no public interface.
//
// They use headers of omniORB4/internal, which may change with any version. Tried with
// omniORB 4.2.5 and 4.3.3. The TLS context is in OmniOrbSslContext.h.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBINTERNALS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBINTERNALS_H

#include <string>
#include <vector>

#include <support/orb/Corba.h>

class omniObjRef;

namespace omni {
class GIOP_C;
class GIOP_S;
class giopServer;
}  // namespace omni

namespace vq::orb {

// Sets whether references that are made from now on offer bidirectional IIOP. A connection keeps
// the value that applied when it was opened; omniORB opens another one for a reference with the
// other value. Only ORB_init reads the option for this.
void OfferBiDirectional(bool offer);

// The addresses of the open endpoints ("giop:tcp:10.0.0.1:5000"), and those that the process
// publishes.
std::vector<std::string> OpenEndpoints();

// Before the first POA, which opens the endpoints: forgets all but that one. omniORB's own settings
// may have added others, without TLS and without checks.
void OpenOnly(const std::string& endpoint);

// Closes the open endpoints, which omniORB does only when the ORB ends. There must be no POA. The
// next root POA opens them again.
void CloseEndpoints();

// While it exists, omniORB waits up to ten seconds for each kind of thread that it ends, and not as
// long as between two of its scans, which is a second. A thread that does not end in time uses
// memory that the ORB has freed, and the next ORB does not start.
class LongerEnd {
 public:
  LongerEnd();
  ~LongerEnd();
  LongerEnd(const LongerEnd&) = delete;
  LongerEnd& operator=(const LongerEnd&) = delete;

 private:
  const unsigned int m_usual;
};

// Closes the connections that were opened for a guest, with a CloseConnection message. No call may
// be in progress on them.
void CloseGuestConnections();

// Closes the outgoing connections that take calls, and fails the calls that wait for a reply on
// them. Returns when omniORB has noticed the end of all, within a second: its own end would forget
// the others.
void CloseBiDirectional();

// The destination of one request. All members are borrowed from the request.
struct CallTarget {
  const char* address;    // as the reference has it: "giop:tcp:host.site:5000"
  const char* peer;       // of the connection: "giop:tcp:10.0.0.1:5000"; null without one
  const char* operation;  // null for a LocateRequest
  omniObjRef* object;     // the target of the call before any forward
};
CallTarget TargetOf(omni::GIOP_C& call);

// Whether an incoming call arrived over a connection that this process opened.
bool IsOverOwnConnection(omni::GIOP_S& request);

// A listening server beside omniORB's own. Its end closes its ports and its incoming connections
// and ends its threads. The root POA must exist, and no call of the process may be in progress
// while it starts and while it ends.
class ListeningServer {
 public:
  // Opens an endpoint, given in omniORB's form. Raises CORBA::INITIALIZE when it cannot be opened.
  explicit ListeningServer(const std::string& endpoint);
  ~ListeningServer();
  ListeningServer(const ListeningServer&) = delete;
  ListeningServer& operator=(const ListeningServer&) = delete;

  const std::vector<std::string>& Addresses() const { return m_addresses; }

 private:
  omni::giopServer* m_server;
  std::vector<std::string> m_addresses;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBINTERNALS_H
