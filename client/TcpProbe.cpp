#include "TcpProbe.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace vqclient {
namespace {

// 0, or the errno of the failure.
int TryAddress(const addrinfo& address, std::chrono::milliseconds limit) {
  const int probe = socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (probe == -1) return errno;
  int result = 0;
  if (connect(probe, address.ai_addr, address.ai_addrlen) == -1) {
    result = errno;
    if (result == EINPROGRESS) {
      pollfd waiting{probe, POLLOUT, 0};
      socklen_t length = sizeof result;
      if (poll(&waiting, 1, static_cast<int>(limit.count())) != 1) {
        result = ETIMEDOUT;
      } else if (getsockopt(probe, SOL_SOCKET, SO_ERROR, &result, &length) == -1) {
        result = errno;
      }
    }
  }
  close(probe);
  return result;
}

}  // namespace

ProbeResult TcpProbe(const std::string& host, const std::string& port,
                     std::chrono::milliseconds limit) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (const int result = getaddrinfo(host.c_str(), port.c_str(), &hints, &found); result != 0) {
    return {Reach::kNotResolvable, gai_strerror(result)};
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, freeaddrinfo);
  int error = 0;
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    error = TryAddress(*address, limit);
    if (error == 0) return {Reach::kReached, ""};
  }
  const Reach reach = error == ECONNREFUSED ? Reach::kRefused
                      : error == ETIMEDOUT  ? Reach::kSilent
                                            : Reach::kFailed;
  return {reach, std::generic_category().message(error)};
}

}  // namespace vqclient
