#include <support/orb/FailureCause.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <support/orb/CorbaText.h>
#include <support/orb/ListenEndpoint.h>
#include <support/orb/ReferenceAddress.h>
#include <support/os_toolkit/os_file_system.h>

namespace vq::orb {
namespace {

std::string& Cause() {
  thread_local std::string cause;
  return cause;
}

constexpr std::chrono::milliseconds kProbeLimit{1000};

// The error number of one attempt to connect; 0 when it succeeds.
int TryToConnect(const addrinfo& address, std::chrono::milliseconds limit) {
  const Descriptor probe(
      ::socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!probe.IsOpen()) return errno;
  int error = ::connect(probe.Get(), address.ai_addr, address.ai_addrlen) == -1 ? errno : 0;
  if (error == EINPROGRESS) {
    pollfd waiting{probe.Get(), POLLOUT, 0};
    socklen_t length = sizeof error;
    if (::poll(&waiting, 1, static_cast<int>(limit.count())) != 1) {
      error = ETIMEDOUT;
    } else if (::getsockopt(probe.Get(), SOL_SOCKET, SO_ERROR, &error, &length) == -1) {
      error = errno;
    }
  }
  return error;
}

std::string PlaceText(const ReferenceEndpoint& endpoint) {
  return UriHost(endpoint.host) + ":" + std::to_string(endpoint.port);
}

// Why no connection to the endpoint comes about; empty when one does.
std::string WhyNoConnection(const ReferenceEndpoint& endpoint) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int unresolved =
      ::getaddrinfo(endpoint.host.c_str(), std::to_string(endpoint.port).c_str(), &hints, &found);
  if (unresolved != 0) {
    return "the host " + endpoint.host + " cannot be resolved: " + ::gai_strerror(unresolved);
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, ::freeaddrinfo);
  const auto end = std::chrono::steady_clock::now() + kProbeLimit;
  int error = ETIMEDOUT;
  for (const addrinfo* next = found; next != nullptr; next = next->ai_next) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() <= 0) break;
    error = TryToConnect(*next, left);
    if (error == 0) return "";
  }
  if (error == ECONNREFUSED) return "connection refused at " + PlaceText(endpoint);
  return "no connection to " + PlaceText(endpoint) + ": " + std::generic_category().message(error);
}

std::string CauseOf(const CORBA::Exception& exception, CORBA::Object_ptr target) {
  const std::vector<ReferenceEndpoint> endpoints = EndpointsOf(target);
  if (endpoints.empty()) return ExceptionText(exception);
  const std::string place = PlaceText(endpoints.front());
  if (dynamic_cast<const CORBA::TIMEOUT*>(&exception) != nullptr) {
    return "no answer from " + place + " within the time-out";
  }
  if (dynamic_cast<const CORBA::TRANSIENT*>(&exception) != nullptr ||
      dynamic_cast<const CORBA::COMM_FAILURE*>(&exception) != nullptr) {
    const std::string why = WhyNoConnection(endpoints.front());
    if (!why.empty()) return why;
  }
  return place + ": " + ExceptionText(exception);
}

}  // namespace

void NoteCause(std::string cause) noexcept {
  Cause() = std::move(cause);
}

std::string TakeCause() noexcept {
  return std::exchange(Cause(), {});
}

void NoteFailedCall(const CORBA::Exception& exception, CORBA::Object_ptr target) noexcept {
  try {
    std::string cause = TakeCause();
    NoteCause(cause.empty() ? CauseOf(exception, target) : std::move(cause));
  } catch (const std::exception&) {
    // No memory for an explanation: the failure itself is reported all the same.
  }
}

}  // namespace vq::orb
