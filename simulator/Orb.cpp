#include <simulator/Orb.h>

#include <filesystem>
#include <string>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vq::sim {

PortableServer::POA_ptr CreatePoa(CORBA::ORB_ptr orb, const char* name, const OrbOptions& options,
                                  const CORBA::PolicyList& policies) {
  CORBA::Object_var object = orb->resolve_initial_references("RootPOA");
  PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
  CORBA::PolicyList all(policies);
  if (options.bidirectional) {
    CORBA::Any both;
    both <<= BiDirPolicy::BOTH;
    all.length(all.length() + 1);
    all[all.length() - 1] = orb->create_policy(BiDirPolicy::BIDIRECTIONAL_POLICY_TYPE, both);
  }
  PortableServer::POAManager_var manager = root->the_POAManager();
  PortableServer::POA_var poa = root->create_POA(name, manager.in(), all);
  manager->activate();
  return poa._retn();
}

namespace {

struct Socket {
  int file;
  int port;        // its own
  bool listening;  // or connected
};

// This process's TCP sockets.
std::vector<Socket> Sockets() {
  std::vector<Socket> sockets;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int file = std::stoi(entry.path().filename());
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    if (getsockname(file, reinterpret_cast<sockaddr*>(&address), &size) != 0) continue;
    int listening = 0;
    size = sizeof(listening);
    if (getsockopt(file, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) != 0) continue;
    if (address.ss_family != AF_INET && address.ss_family != AF_INET6) continue;
    // The port is at the same place in both kinds of address.
    const in_port_t port = reinterpret_cast<const sockaddr_in&>(address).sin_port;
    sockets.push_back({file, ntohs(port), listening != 0});
  }
  return sockets;
}

}  // namespace

void DropConnections() {
  const std::vector<Socket> sockets = Sockets();
  for (const Socket& listener : sockets) {
    if (!listener.listening) continue;
    for (const Socket& socket : sockets) {
      if (!socket.listening && socket.port == listener.port) shutdown(socket.file, SHUT_RDWR);
    }
  }
}

}  // namespace vq::sim
