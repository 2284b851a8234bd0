// Documents that try to make a parser swell, recurse or fetch.
//
//   vq::test::ExpectHarmless(directory, "P", "<P><K>", "</K></P>",
//                            [&](const std::string& text) { return !document.Parse(text); });
#ifndef VQ_TESTS_HOSTILEXML_H
#define VQ_TESTS_HOSTILEXML_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <tests/fixture/TemporaryDirectory.h>

namespace vq::test {

// Notices when a parser fetches what a document names: a file, or a page of a server, which hangs
// up at once. Thread safety: one thread at a time.
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

inline std::string Repeated(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

// Well-formed documents with the root element `root` and, between `before` and `after`, the content
// that does the harm: each is refused, soon, without fetching anything.
template <class Refuses>
void ExpectHarmless(const TemporaryDirectory& directory, const std::string& root,
                    const std::string& before, const std::string& after, Refuses refuses) {
  FetchWatch watch(directory);
  // Each entity is ten of the one before.
  const auto levels = [](const std::string& kind, const std::string& text,
                         const std::string& call) {
    std::string entities = "[<!ENTITY " + kind + "e0 '" + text + "'>";
    for (int i = 1; i < 12; ++i) {
      entities += "<!ENTITY " + kind + "e" + std::to_string(i) + " '" +
                  Repeated(call + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return entities;
  };
  const std::string wide = "[<!ENTITY e '" + Repeated("x", 200'000) + "'>]";
  const std::string everywhere = "[<!ATTLIST d a CDATA '" + Repeated("x", 100'000) + "'>]";
  const std::string file = "SYSTEM '" + watch.FileUrl() + "'";
  const std::string page = "SYSTEM '" + watch.HttpUrl() + "'";
  const std::pair<std::string, std::string> cases[] = {
      {levels("", "xxxxxxxxxxxxxxxx", "&e") + "]", "&e11;"},
      {levels("", "xxxxxxxxxxxxxxxx", "&e") + "]", "<a b='&e11;'/>"},
      {wide, Repeated("&e;", 100'000)},
      {levels("% ", " ", "&#37;e") + "%e11;]", "&x;"},
      {everywhere, Repeated("<d/>", 20'000)},
      {"[<!ENTITY x '&x;'>]", "&x;"},
      {"[<!ENTITY x " + file + ">]", "&x;"},
      {"[<!ENTITY x " + page + ">]", "&x;"},
      {"[<!ENTITY % p " + file + "> %p;]", "&x;"},
      {file, "&x;"},
      {page, "&x;"},
      {"", Repeated("<d>", 100'000) + Repeated("</d>", 100'000)}};
  for (const auto& [type, content] : cases) {
    const std::string doctype = type.empty() ? "" : "<!DOCTYPE " + root + " " + type + ">";
    const std::clock_t start = std::clock();
    EXPECT_TRUE(refuses(doctype + before + content + after)) << type.substr(0, 120);
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
    EXPECT_FALSE(watch.Fetched()) << type.substr(0, 120);
  }
}

}  // namespace vq::test

#endif  // VQ_TESTS_HOSTILEXML_H
