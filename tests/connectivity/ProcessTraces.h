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
           std::ranges::includes(before.sockets, sockets);
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
      ::getsockopt(file, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size);
      sockaddr_in address{};
      size = sizeof address;
      if (listens != 0) ::getsockname(file, reinterpret_cast<sockaddr*>(&address), &size);
      if (listens != 0) traces.ports.insert(ntohs(address.sin_port));
    }
    return traces;
  }

  std::string Text() const {
    std::string text = std::to_string(threads) + " threads;";
    for (const std::string& socket : sockets) text += " " + socket;
    for (const int port : ports) text += " listens on " + std::to_string(port);
    return text;
  }
};

}  // namespace vq::test

#endif  // VQ_TESTS_CONNECTIVITY_PROCESSTRACES_H
