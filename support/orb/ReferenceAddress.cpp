#include <support/orb/ReferenceAddress.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <memory>
#include <system_error>
#include <vector>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <support/orb/ListenEndpoint.h>
#include <support/orb/OrbProduct.h>
#include <support/os_toolkit/os_file_system.h>

namespace vq::orb {
namespace {

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

constexpr std::uint32_t kIiopProfile = 0;
constexpr std::uint32_t kAlternateAddress = 3;  // a component with a further host and port
constexpr std::uint32_t kTlsPort = 20;          // a component with the port for TLS
// host:port has room for 255 characters; a longer one is not an address.
constexpr std::size_t kLongestAddress = 255;

// Reads a CDR encapsulation: a byte order, then numbers aligned to their size, counted from the
// encapsulation's first byte. Every read checks what is left.
class CdrReader {
 public:
  CdrReader(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {
    std::uint8_t order = 0;
    m_ok = Octet(order) && order <= 1;
    m_littleEndian = order == 1;
  }

  bool Ok() const { return m_ok; }

  bool Octet(std::uint8_t& value) {
    if (m_position >= m_size) return false;
    value = m_data[m_position++];
    return true;
  }

  bool Short(std::uint16_t& value) {
    std::uint32_t wide = 0;
    if (!Number(2, wide)) return false;
    value = static_cast<std::uint16_t>(wide);
    return true;
  }

  bool Long(std::uint32_t& value) { return Number(4, value); }

  bool Bytes(const std::uint8_t*& data, std::uint32_t& length) {
    if (!Long(length) || length > m_size - m_position) return false;
    data = m_data + m_position;
    m_position += length;
    return true;
  }

  bool Text(std::string& text) {
    const std::uint8_t* data = nullptr;
    std::uint32_t length = 0;
    if (!Bytes(data, length) || length == 0 || data[length - 1] != 0) return false;
    text.assign(reinterpret_cast<const char*>(data), length - 1);
    return true;
  }

 private:
  bool Number(std::size_t width, std::uint32_t& value) {
    const std::size_t aligned = (m_position + width - 1) / width * width;
    if (aligned > m_size || m_size - aligned < width) return false;
    value = 0;
    for (std::size_t i = 0; i < width; ++i) {
      const std::size_t place = m_littleEndian ? width - 1 - i : i;
      value = (value << 8U) | m_data[aligned + place];
    }
    m_position = aligned + width;
    return true;
  }

  const std::uint8_t* m_data;
  std::size_t m_size;
  std::size_t m_position = 0;
  bool m_littleEndian = false;
  bool m_ok = false;
};

bool DecodeHex(std::string_view text, std::vector<std::uint8_t>& bytes) {
  if (text.size() % 2 != 0) return false;
  bytes.resize(text.size() / 2);
  const char* digits = text.data();
  for (std::uint8_t& byte : bytes) {
    const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
    if (error != std::errc() || end != digits + 2) return false;
    digits = end;
  }
  return true;
}

// The first part of a profile for IIOP.
struct ProfileHead {
  std::uint8_t minor = 0;  // of the version
  std::string host;
  std::uint16_t port = 0;
};

bool ReadHead(CdrReader& profile, ProfileHead& head) {
  std::uint8_t major = 0;
  return profile.Ok() && profile.Octet(major) && profile.Octet(head.minor) && major == 1 &&
         profile.Text(head.host) && profile.Short(head.port);
}

AddressFault ReadProfile(const std::uint8_t* data, std::size_t size, ReferenceAddress& address) {
  CdrReader profile(data, size);
  ProfileHead head;
  if (!ReadHead(profile, head)) return AddressFault::kInvalidProfile;
  const std::string port = std::to_string(head.port);
  if (head.host.empty() || head.host.size() + 1 + port.size() > kLongestAddress) {
    return AddressFault::kNoAddress;
  }
  address = {head.host, port};
  return AddressFault::kNone;
}

// The components of a profile, after its first address.
void ReadComponents(CdrReader& profile, std::vector<ReferenceEndpoint>& endpoints,
                    const ReferenceEndpoint& first) {
  const std::uint8_t* data = nullptr;
  std::uint32_t length = 0;
  std::uint32_t count = 0;
  if (!profile.Bytes(data, length) || !profile.Long(count))
    return;  // the object's key, then the components
  for (std::uint32_t i = 0; i < count; ++i) {
    std::uint32_t tag = 0;
    if (!profile.Long(tag) || !profile.Bytes(data, length)) return;
    CdrReader component(data, length);
    ReferenceEndpoint endpoint = first;
    std::uint16_t port = 0;
    std::uint16_t ignored = 0;
    if (tag == kAlternateAddress && component.Ok() && component.Text(endpoint.host) &&
        component.Short(port)) {
      endpoint.port = port;
    } else if (tag == kTlsPort && component.Ok() && component.Short(ignored) &&
               component.Short(ignored) && component.Short(port)) {
      endpoint.port = port;
      endpoint.tls = true;
    }
    if (port != 0) endpoints.push_back(endpoint);
  }
}

void ReadEndpoints(const std::uint8_t* data, std::size_t size, int number,
                   std::vector<ReferenceEndpoint>& endpoints) {
  CdrReader profile(data, size);
  ProfileHead head;
  if (!ReadHead(profile, head) || head.host.empty()) return;
  const ReferenceEndpoint first{.host = head.host, .port = head.port, .profile = number};
  if (first.port != 0) endpoints.push_back(first);
  if (head.minor > 0) ReadComponents(profile, endpoints, first);
}

// Passes the content of each IIOP profile of a reference to `take`, until that returns false.
template <class Take>
AddressFault ForEachProfile(std::string_view ior, Take take) {
  constexpr std::string_view kPrefix = "IOR:";
  std::vector<std::uint8_t> bytes;
  if (!ior.starts_with(kPrefix) || !DecodeHex(ior.substr(kPrefix.size()), bytes)) {
    return AddressFault::kInvalidStub;
  }
  CdrReader reader(bytes.data(), bytes.size());
  std::string typeId;
  std::uint32_t profiles = 0;
  if (!reader.Ok() || !reader.Text(typeId) || !reader.Long(profiles)) {
    return AddressFault::kInvalidStub;
  }
  if (typeId.empty() && profiles == 0) return AddressFault::kNil;
  for (std::uint32_t i = 0; i < profiles; ++i) {
    std::uint32_t tag = 0;
    const std::uint8_t* data = nullptr;
    std::uint32_t length = 0;
    if (!reader.Long(tag) || !reader.Bytes(data, length)) return AddressFault::kInvalidProfile;
    if (tag == kIiopProfile && !take(data, length)) return AddressFault::kNone;
  }
  return AddressFault::kNone;
}

}  // namespace

std::string_view AddressFaultText(AddressFault fault) {
  constexpr std::array<std::string_view, 5> kTexts{"", "Nil", "Invalid stub", "Invalid profile",
                                                   "Could not put endpoint address in string."};
  return kTexts.at(static_cast<std::size_t>(fault));
}

AddressFault AddressOf(CORBA::Object_ptr object, ReferenceAddress& address) {
  if (CORBA::is_nil(object)) return AddressFault::kNil;
  try {
    return AddressOfText(StringifyReference(object), address);
  } catch (const CORBA::Exception&) {  // A local object or one of an ORB that has ended.
    return AddressFault::kInvalidStub;
  }
}

AddressFault AddressOfText(std::string_view ior, ReferenceAddress& address) {
  AddressFault result = AddressFault::kInvalidProfile;
  const AddressFault whole = ForEachProfile(ior, [&](const std::uint8_t* data, std::size_t size) {
    result = ReadProfile(data, size, address);
    return false;
  });
  return whole != AddressFault::kNone ? whole : result;
}

std::vector<ReferenceEndpoint> EndpointsOf(CORBA::Object_ptr object) {
  if (CORBA::is_nil(object)) return {};
  try {
    return EndpointsOfText(StringifyReference(object));
  } catch (const CORBA::Exception&) {  // as in AddressOf
    return {};
  }
}

std::vector<ReferenceEndpoint> EndpointsOfText(std::string_view ior) {
  std::vector<ReferenceEndpoint> endpoints;
  int profile = 0;
  ForEachProfile(ior, [&](const std::uint8_t* data, std::size_t size) {
    ReadEndpoints(data, size, profile++, endpoints);
    return true;
  });
  return endpoints;
}

std::string PlaceText(const ReferenceEndpoint& place) {
  return UriHost(place.host) + ":" + std::to_string(place.port);
}

Reach TryToReach(const ReferenceEndpoint& place, std::chrono::milliseconds limit,
                 std::string& why) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int unresolved =
      ::getaddrinfo(place.host.c_str(), std::to_string(place.port).c_str(), &hints, &found);
  if (unresolved != 0) {
    why = "the host " + place.host + " cannot be resolved: " + ::gai_strerror(unresolved);
    return Reach::kNotResolvable;
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, ::freeaddrinfo);
  const auto end = std::chrono::steady_clock::now() + limit;
  int error = ETIMEDOUT;
  for (const addrinfo* next = found; next != nullptr; next = next->ai_next) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() <= 0) break;
    error = TryToConnect(*next, left);
    if (error == 0) return Reach::kReached;
  }
  if (error == ECONNREFUSED) {
    why = "connection refused at " + PlaceText(place);
    return Reach::kRefused;
  }
  why = "no connection to " + PlaceText(place) + ": " + std::generic_category().message(error);
  return Reach::kFailed;
}

}  // namespace vq::orb
