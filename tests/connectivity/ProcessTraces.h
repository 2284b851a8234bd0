// What a process holds that a trial must not leave behind: threads, sockets and the ports among
// them on which it listens.
//
//   const ProcessTraces before = ProcessTraces::Now();
//   ...
//   EXPECT_TRUE(WaitUntil([&] { return ProcessTraces::Now().AreWithin(before); }));
#ifndef VQ_TESTS_CONNECTIVITY_PROCESSTRACES_H
#define VQ_TESTS_CONNECTIVITY_PROCESSTRACES_H

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <set>
#include <string>

#include <netinet/in.h>
#include <sys/socket.h>

namespace vq::test {

struct ProcessTraces {
  std::ptrdiff_t threads = 0;
  std::set<std::string> sockets;  // "socket:[inode]"
  std::set<int> ports;

  // Nothing beyond what was there before; an idle thread or a connection may have ended meanwhile.
  bool AreWithin(const ProcessTraces& before) const {
    return threads <= before.threads && ports == before.ports &&
           std::includes(before.sockets.begin(), before.sockets.end(), sockets.begin(),
                         sockets.end());
  }

  static ProcessTraces Now() {
    namespace fs = std::filesystem;
    ProcessTraces traces;
    traces.threads = std::distance(fs::directory_iterator("/proc/self/task"), {});
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      const std::string target = fs::read_symlink(entry.path(), gone);
      if (gone || !target.starts_with("socket:")) continue;
      traces.sockets.insert(target);
      const int file = std::stoi(entry.path().filename());
      int listens = 0;
      socklen_t size = sizeof listens;
      sockaddr_in address{};
      if (::getsockopt(file, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) != 0 || listens == 0) {
        continue;
      }
      size = sizeof address;
      ::getsockname(file, reinterpret_cast<sockaddr*>(&address), &size);
      traces.ports.insert(ntohs(address.sin_port));
    }
    return traces;
  }
};

inline std::ostream& operator<<(std::ostream& out, const ProcessTraces& traces) {
  out << traces.threads << " threads;";
  for (const std::string& socket : traces.sockets) out << ' ' << socket;
  for (const int port : traces.ports) out << " listens on " << port;
  return out;
}

}  // namespace vq::test

#endif  // VQ_TESTS_CONNECTIVITY_PROCESSTRACES_H
