#include <support/orb/PeerSocket.h>

#include <array>
#include <cstdint>
#include <cstring>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace vq::orb {

bool BeginsWithClose(int socket, bool tls) {
  std::array<unsigned char, 12> next{};
  const ssize_t length = ::recv(socket, next.data(), next.size(), MSG_PEEK | MSG_DONTWAIT);
  if (length < static_cast<ssize_t>(next.size())) return false;
  constexpr int kCloseConnection = 5;
  if (!tls) return std::memcmp(next.data(), "GIOP", 4) == 0 && next[7] == kCloseConnection;
  // The bytes may be the middle of a record, a part of which OpenSSL has received.
  constexpr int kLargestAlert = 512;
  const int size = next[3] * 256 + next[4];
  if (next[1] != 3 || next[2] > 3 || size > kLargestAlert) return false;
  // TLS 1.3 encrypts an alert as data: its size identifies it, since no message is so short.
  constexpr int kAlert = 21;
  constexpr int kData = 23;
  constexpr int kHiddenAlertSize = 19;
  return next[0] == kAlert || (next[0] == kData && size == kHiddenAlertSize);
}

bool IsDead(int socket, bool tls, bool takesCalls, bool isWithinMessage) {
  pollfd events{socket, POLLIN | POLLRDHUP, 0};
  if (::poll(&events, 1, 0) <= 0) return false;
  if (!takesCalls || (events.revents & ~POLLIN) != 0) return true;
  return !isWithinMessage && BeginsWithClose(socket, tls);
}

void WatchPeer(int socket, std::chrono::milliseconds keepAlive,
               std::chrono::milliseconds unacknowledged) {
  const auto set = [socket](int level, int name, std::int64_t value) {
    const int number = static_cast<int>(value);
    ::setsockopt(socket, level, name, &number, sizeof number);
  };
  if (keepAlive.count() > 0) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(keepAlive).count();
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, seconds);
    set(IPPROTO_TCP, TCP_KEEPINTVL, (seconds + 2) / 3);
    set(IPPROTO_TCP, TCP_KEEPCNT, 3);
  }
  if (unacknowledged.count() > 0) set(IPPROTO_TCP, TCP_USER_TIMEOUT, unacknowledged.count());
}

}  // namespace vq::orb
