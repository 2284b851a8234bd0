#include <simulator/Orb.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <support/orb/ListenEndpoint.h>

namespace vq::sim {

// ---- what differs between ORB products ----------------------------------------------------------

namespace {

using Options = std::vector<std::pair<std::string, std::string>>;

Options ProductOptions(const OrbOptions& options) {
  std::string error;
  const auto endpoint = orb::ParseListenEndpoint(options.endpoint, error);
  if (!endpoint) throw std::invalid_argument("endpoint " + options.endpoint + ": " + error);
  Options product = {
      {"endPoint", "giop:tcp:" + endpoint->host + ":" +
                       (endpoint->port == 0 ? "" : std::to_string(endpoint->port))},
      {"giopMaxMsgSize", "268435456"},  // a snapshot of 200,000 grants passes
      // A limit on connecting would take the place of a call's own, also where that is shorter.
      {"clientConnectTimeOutPeriod", "0"},
      {"clientCallTimeOutPeriod", "60000"},  // of calls back to clients that are gone
      {"acceptBiDirectionalGIOP", options.bidirectional ? "1" : "0"},
      {"serverTransportRule", options.bidirectional ? "* unix,tcp,ssl,bidir" : "* unix,tcp,ssl"},
      {"connectionWatchImmediate", options.bidirectional ? "1" : "0"}};
  if (!endpoint->publishedHost.empty()) {
    product.emplace_back("endPointPublish", "giop:tcp:" + endpoint->publishedHost + ":");
  }
  if (!options.naming.empty()) product.emplace_back("InitRef", "NameService=" + options.naming);
  return product;
}

// The product says at each start without certificates that TLS is off; that is no news.
void Print(const char* message) {
  if (std::string_view(message).find("SSL transport disabled") == std::string_view::npos) {
    std::fputs(message, stderr);
  }
}

}  // namespace

CORBA::ORB_ptr StartOrb(const OrbOptions& options) {
  omniORB::setLogFunction(Print);
  omniORB::traceTime = false;  // asked for in a way that is not safe with threads
  const Options product = ProductOptions(options);
  const std::unique_ptr<const char*[][2]> table(new const char*[product.size() + 1][2]);
  table[product.size()][0] = table[product.size()][1] = nullptr;
  for (std::size_t i = 0; i < product.size(); ++i) {
    table[i][0] = product[i].first.c_str();
    table[i][1] = product[i].second.c_str();
  }
  std::vector<std::string> copies = {"vq_simulator"};
  copies.insert(copies.end(), options.rest.begin(), options.rest.end());
  std::vector<char*> arguments;
  for (std::string& copy : copies) arguments.push_back(copy.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  return CORBA::ORB_init(count, arguments.data(), "omniORB4", table.get());
}

void LimitCalls(CORBA::Object_ptr object, std::chrono::milliseconds time) {
  omniORB::setClientCallTimeout(object, static_cast<CORBA::ULong>(time.count()));
}

// ---- the same for all of them -------------------------------------------------------------------

PortableServer::POA_ptr CreatePoa(CORBA::ORB_ptr orb, const char* name, const OrbOptions& options,
                                  const CORBA::PolicyList& policies) {
  CORBA::Object_var object = orb->resolve_initial_references("RootPOA");
  PortableServer::POA_var root = PortableServer::POA::_narrow(object);
  CORBA::PolicyList all(policies);
  if (options.bidirectional) {
    CORBA::Any both;
    both <<= BiDirPolicy::BOTH;
    all.length(all.length() + 1);
    all[all.length() - 1] = orb->create_policy(BiDirPolicy::BIDIRECTIONAL_POLICY_TYPE, both);
  }
  PortableServer::POAManager_var manager = root->the_POAManager();
  PortableServer::POA_var poa = root->create_POA(name, manager, all);
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
    in_port_t port = 0;
    if (address.ss_family == AF_INET) {
      port = reinterpret_cast<const sockaddr_in&>(address).sin_port;
    } else if (address.ss_family == AF_INET6) {
      port = reinterpret_cast<const sockaddr_in6&>(address).sin6_port;
    } else {
      continue;
    }
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

int ListeningPort() {
  const std::vector<Socket> sockets = Sockets();
  const auto found = std::find_if(sockets.begin(), sockets.end(),
                                  [](const Socket& socket) { return socket.listening; });
  return found == sockets.end() ? 0 : found->port;
}

}  // namespace vq::sim
