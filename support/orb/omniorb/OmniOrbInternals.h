// What this library needs of omniORB and omniORB offers no public way to.
//
// Everything in it uses headers of omniORB4/internal, which may change with any version. Tried with
// omniORB 4.2.5 and 4.3.3. The TLS context is in OmniOrbSslContext.h.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBINTERNALS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBINTERNALS_H

#include <set>
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

// Whether references made from here on offer bidirectional use of their connections. omniORB
// compares this with what it was when a connection was made, and makes a connection of its own for
// a reference that asks for the other kind. Its option is read by ORB_init alone.
void OfferBiDirectional(bool offer);

// How this process can be reached on the endpoints that are open ("giop:tcp:10.0.0.1:5000"), and
// the addresses that it publishes.
std::vector<std::string> OpenEndpoints();

// Closes them, which omniORB itself does only when the ORB ends. No POA is there. The next root POA
// opens them anew.
void CloseEndpoints();

// The two ends of a connection, which no other open connection of the process has. For what an
// interceptor or omniORB itself has of it.
template <class Ends>
std::string ConnectionName(Ends& connection) {
  return std::string(connection.myaddress()) + " " + connection.peeraddress();
}

// Closes the outgoing connections with these names in order. No call is under way on them.
void CloseConnections(const std::set<std::string>& names);

// Where one request goes. All of it is borrowed from the request.
struct CallTarget {
  const char* address;    // as the reference has it: "giop:tcp:host.site:5000"
  const char* peer;       // of the connection: "giop:tcp:10.0.0.1:5000"; null before there is one
  const char* operation;  // null for a question where the object is
  omniObjRef* object;     // that the call was made on, before it was forwarded
};
CallTarget TargetOf(omni::GIOP_C& call);

// Whether the caller of this process's object uses a connection that this process opened.
bool IsOverOwnConnection(omni::GIOP_S& request);

// A listening server beside omniORB's own, which takes its ports, its incoming connections and its
// threads with it when it goes. The root POA is there. No call of the process is under way while it
// starts and while it ends.
class ListeningServer {
 public:
  // Opens endpoints in omniORB's own form. Raises CORBA::INITIALIZE when one cannot be opened.
  explicit ListeningServer(const std::vector<std::string>& endpoints);
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
