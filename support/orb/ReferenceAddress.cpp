#include <support/orb/ReferenceAddress.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <system_error>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <support/orb/ListenEndpoint.h>
#include <support/orb/OrbProduct.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_file_system.h>

namespace vq::orb {
namespace {

// The error number of one attempt to connect; 0 when it succeeds.
int TryToConnect(const addrinfo& address, std::chrono::steady_clock::time_point end) {
  const Descriptor probe(
      ::socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!probe.IsOpen()) return errno;
  if (::connect(probe.Get(), address.ai_addr, address.ai_addrlen) == 0) return 0;
  if (errno != EINPROGRESS) return errno;
  pollfd events{probe.Get(), POLLOUT, 0};
  int found = 0;
  do {  // A signal interrupts it.
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return ETIMEDOUT;
    found = ::poll(&events, 1, static_cast<int>(left.count()));
  } while (found == 0 || (found < 0 && errno == EINTR));
  if (found < 0) return errno;
  int error = 0;
  socklen_t size = sizeof error;
  ::getsockopt(probe.Get(), SOL_SOCKET, SO_ERROR, &error, &size);
  return error;
}

constexpr std::uint32_t kIiopProfile = 0;
constexpr std::uint32_t kAlternateAddress = 3;  // a component with a further host and port
constexpr std::uint32_t kTlsPort = 20;          // a component with the port for TLS
// host:port has room for 255 characters; a longer one is not an address.
constexpr std::size_t kLongestAddress = 255;

// Raised where a reference, or a part of it, has another form.
struct Malformed {};

// Reads a CDR encapsulation: a byte order, then numbers aligned to their size, counted from the
// encapsulation's first byte. Every read checks what is left.
class CdrReader {
 public:
  explicit CdrReader(std::string_view bytes) : m_bytes(bytes) {
    const auto order = Number<std::uint8_t>();
    if (order > 1) throw Malformed();
    m_littleEndian = order == 1;
  }

  template <class Unsigned>
  Unsigned Number() {
    constexpr std::size_t kSize = sizeof(Unsigned);
    m_position = (m_position + kSize - 1) / kSize * kSize;
    const std::string_view bytes = Take(kSize);
    Unsigned value = 0;
    for (std::size_t i = 0; i < kSize; ++i) {
      const auto byte = static_cast<std::uint8_t>(bytes[m_littleEndian ? kSize - 1 - i : i]);
      value = static_cast<Unsigned>(std::uint64_t{value} << 8U | byte);
    }
    return value;
  }

  std::string_view Octets() { return Take(Number<std::uint32_t>()); }

  std::string Text() {
    const std::string_view text = Octets();
    if (!text.ends_with('\0')) throw Malformed();
    return std::string(text.substr(0, text.size() - 1));
  }

 private:
  std::string_view Take(std::size_t size) {
    if (m_position > m_bytes.size() || m_bytes.size() - m_position < size) throw Malformed();
    m_position += size;
    return m_bytes.substr(m_position - size, size);
  }

  const std::string_view m_bytes;
  std::size_t m_position = 0;
  bool m_littleEndian = false;
};

// The bytes of a reference, from its "IOR:" and hexadecimal digits.
std::string BytesOf(std::string_view ior) {
  constexpr std::string_view kPrefix = "IOR:";
  if (!ior.starts_with(kPrefix) || ior.size() % 2 != 0) throw Malformed();
  std::string bytes;
  for (std::size_t at = kPrefix.size(); at < ior.size(); at += 2) {
    const auto byte = WholeNumber<std::uint8_t>(ior.substr(at, 2), 16);
    if (!byte) throw Malformed();
    bytes += static_cast<char>(*byte);
  }
  return bytes;
}

// The first part of a profile for IIOP.
struct ProfileHead {
  std::uint8_t minor;  // of the version
  std::string host;
  std::uint16_t port;
};

ProfileHead ReadHead(CdrReader& profile) {
  if (profile.Number<std::uint8_t>() != 1) throw Malformed();  // the major version
  return {profile.Number<std::uint8_t>(), profile.Text(), profile.Number<std::uint16_t>()};
}

// The address in a component of a profile whose first address is `endpoint`, if there is one.
std::optional<ReferenceEndpoint> FurtherEndpoint(std::uint32_t tag, std::string_view content,
                                                 ReferenceEndpoint endpoint) {
  if (tag != kAlternateAddress && tag != kTlsPort) return std::nullopt;
  try {
    CdrReader component(content);
    if (tag == kAlternateAddress) {
      endpoint.host = component.Text();
    } else {
      endpoint.tls = true;
      component.Number<std::uint16_t>();  // which options of TLS the server supports,
      component.Number<std::uint16_t>();  // and which it requires
    }
    endpoint.port = component.Number<std::uint16_t>();
  } catch (const Malformed&) {  // The other components still count.
    endpoint.port = 0;
  }
  return endpoint.port != 0 ? std::optional(endpoint) : std::nullopt;
}

void ReadEndpoints(std::string_view content, int number,
                   std::vector<ReferenceEndpoint>& endpoints) {
  CdrReader profile(content);
  const ProfileHead head = ReadHead(profile);
  if (head.host.empty()) return;
  const ReferenceEndpoint first{.host = head.host, .port = head.port, .profile = number};
  if (first.port != 0) endpoints.push_back(first);
  if (head.minor == 0) return;
  profile.Octets();  // the object's key; the components follow
  for (auto count = profile.Number<std::uint32_t>(); count > 0; --count) {
    const auto tag = profile.Number<std::uint32_t>();
    const auto further = FurtherEndpoint(tag, profile.Octets(), first);
    if (further) endpoints.push_back(*further);
  }
}

// Passes the content of each IIOP profile of a reference to `take`, until that returns false.
template <class Take>
AddressFault ForEachProfile(std::string_view ior, Take take) {
  AddressFault fault = AddressFault::kInvalidStub;
  try {
    const std::string bytes = BytesOf(ior);
    CdrReader reader(bytes);
    const std::string typeId = reader.Text();
    const auto profiles = reader.Number<std::uint32_t>();
    if (typeId.empty() && profiles == 0) return AddressFault::kNil;
    fault = AddressFault::kInvalidProfile;
    for (std::uint32_t i = 0; i < profiles; ++i) {
      const auto tag = reader.Number<std::uint32_t>();
      const std::string_view content = reader.Octets();
      if (tag == kIiopProfile && !take(content)) break;
    }
    return AddressFault::kNone;
  } catch (const Malformed&) {
    return fault;
  }
}

// The reference as a string. Empty for nil, a local object and one of an ORB that has ended.
std::string TextOf(CORBA::Object_ptr object) {
  try {
    return CORBA::is_nil(object) ? "" : StringifyReference(object);
  } catch (const CORBA::Exception&) {
    return {};
  }
}

}  // namespace

std::string_view AddressFaultText(AddressFault fault) {
  constexpr std::array<std::string_view, 5> kTexts{"", "Nil", "Invalid stub", "Invalid profile",
                                                   "Could not put endpoint address in string."};
  return kTexts.at(static_cast<std::size_t>(fault));
}

AddressFault AddressOf(CORBA::Object_ptr object, ReferenceAddress& address) {
  return CORBA::is_nil(object) ? AddressFault::kNil : AddressOfText(TextOf(object), address);
}

AddressFault AddressOfText(std::string_view ior, ReferenceAddress& address) {
  AddressFault result = AddressFault::kInvalidProfile;
  const AddressFault whole = ForEachProfile(ior, [&](std::string_view content) {
    CdrReader profile(content);
    const ProfileHead head = ReadHead(profile);
    const std::string port = std::to_string(head.port);
    const bool fits = !head.host.empty() && head.host.size() + 1 + port.size() <= kLongestAddress;
    result = fits ? AddressFault::kNone : AddressFault::kNoAddress;
    if (fits) address = {head.host, port};
    return false;
  });
  return whole != AddressFault::kNone ? whole : result;
}

std::vector<ReferenceEndpoint> EndpointsOf(CORBA::Object_ptr object) {
  return EndpointsOfText(TextOf(object));
}

std::vector<ReferenceEndpoint> EndpointsOfText(std::string_view ior) {
  std::vector<ReferenceEndpoint> endpoints;
  int number = 0;
  ForEachProfile(ior, [&](std::string_view content) {
    try {
      ReadEndpoints(content, number++, endpoints);
    } catch (const Malformed&) {  // The other profiles still count.
    }
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
    error = TryToConnect(*next, end);
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
