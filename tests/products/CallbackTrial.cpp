// Logs in, lets the server call back the session's own ORB, and tells over which connection it did;
// try_products.py runs it.
//
//   callback_trial USER PASSWORD [-ORB options...]
//
// Exits with 0 when the server called back, having printed "server's" or "own": the connection that
// the server opened to this process, or the one that this process opened to the server. Exits with
// 1 otherwise, having printed what it was told.

#include <iostream>
#include <string>

#include <support/orb/ORBCommon.h>
#include <tests/connectivity/ProcessTraces.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/session/GlobalFuncs.h>

namespace {

// Whether somebody is connected to a port that this process listens on.
bool IsConnectedTo() {
  const std::set<int> ports = vq::test::ProcessTraces::Now().ports;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int file = std::stoi(entry.path().filename());
    sockaddr_in own{};
    sockaddr_storage peer{};
    socklen_t ownSize = sizeof own;
    socklen_t peerSize = sizeof peer;
    if (::getpeername(file, reinterpret_cast<sockaddr*>(&peer), &peerSize) == 0 &&
        ::getsockname(file, reinterpret_cast<sockaddr*>(&own), &ownSize) == 0 &&
        (own.sin_family == AF_INET || own.sin_family == AF_INET6) &&
        ports.contains(ntohs(own.sin_port))) {
      return true;
    }
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  std::string message;
  bool called = false;
  if (GL_Login(argv[1], argv[2], "central", 600, message, CLIENT_GUI, E_GSR, argc, argv) == 1) {
    long milliseconds = -1;
    called = TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), message, milliseconds, 3000);
    if (called) message = IsConnectedTo() ? "server's" : "own";
    GL_LogOut(true);
  }
  std::cout << message << '\n';
  exit_vqclient_common();
  return called ? 0 : 1;
}
