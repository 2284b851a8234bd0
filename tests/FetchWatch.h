// Notices when a parser fetches what a document names: a file, or a page of a server.
//
//   vq::test::FetchWatch watch(directory);
//   Parse("<!DOCTYPE P SYSTEM '" + watch.FileUrl() + "'>...");
//   EXPECT_FALSE(watch.Fetched());
//
// Thread contract: one thread at a time. A thread of its own takes the server's calls and hangs up,
// so that a parser that calls does not wait for an answer.
#ifndef VQ_TESTS_FETCHWATCH_H
#define VQ_TESTS_FETCHWATCH_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include <tests/fixture/TemporaryDirectory.h>

namespace vq::test {

class FetchWatch {
 public:
  explicit FetchWatch(const TemporaryDirectory& directory)
      : m_path(directory.Write("outside.txt", "<!ENTITY x 'fetched'>")),
        m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
        m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (::inotify_add_watch(m_inotify, m_path.c_str(), IN_OPEN) == -1 ||
        ::bind(m_listener, generic, size) != 0 || ::listen(m_listener, 1) != 0 ||
        ::getsockname(m_listener, generic, &size) != 0) {
      throw std::runtime_error("no watch");
    }
    m_port = ntohs(address.sin_port);
    m_server = std::thread([this] {
      for (int call; (call = ::accept(m_listener, nullptr, nullptr)) != -1; ::close(call)) {
        m_called = true;
      }
    });
  }
  ~FetchWatch() {
    ::shutdown(m_listener, SHUT_RDWR);
    m_server.join();
    ::close(m_inotify);
    ::close(m_listener);
  }
  FetchWatch(const FetchWatch&) = delete;
  FetchWatch& operator=(const FetchWatch&) = delete;

  std::string FileUrl() const { return "file://" + m_path; }
  std::string HttpUrl() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/x.dtd"; }

  // Whether the file was opened or the server was called since the last time this was asked.
  bool Fetched() {
    char events[4096];
    const bool opened = ::read(m_inotify, events, sizeof events) > 0;
    return m_called.exchange(false) || opened;
  }

 private:
  std::string m_path;
  int m_inotify;
  int m_listener;
  int m_port = 0;
  std::atomic<bool> m_called{false};
  std::thread m_server;
};

}  // namespace vq::test

#endif  // VQ_TESTS_FETCHWATCH_H
