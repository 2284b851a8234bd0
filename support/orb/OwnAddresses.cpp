#include <support/orb/OwnAddresses.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>

#include <ace/INET_Addr.h>
#include <ace/Sock_Connect.h>

namespace vq::orb {
namespace {

// The system lacks such a call or interface; the addresses found until then are valid.
constexpr int kPartialResult = 129;
constexpr unsigned kLoopback = 0x7F000001;

bool IsLoopback(const ACE_INET_Addr& address) {
  return address.get_type() == AF_INET ? address.get_ip_address() == kLoopback
                                       : address.is_loopback();
}

}  // namespace

int FindOwnAddresses(std::vector<OwnAddress>& addresses) {
  std::size_t count = 0;
  ACE_INET_Addr* found = nullptr;
  const int result = ACE::get_ip_interfaces(count, found);
  const int error = errno;
  const std::unique_ptr<ACE_INET_Addr[]> owner(found);
  if (result != 0 && error != kPartialResult) return error != 0 ? error : EIO;
  for (std::size_t i = 0; found != nullptr && i < count; ++i) {
    std::array<char, 64> text{};
    if (found[i].get_host_addr(text.data(), static_cast<int>(text.size())) == nullptr) continue;
    addresses.push_back({text.data(), IsLoopback(found[i])});
  }
  return 0;
}

std::string HostNameOf(const std::string& address) {
  const ACE_INET_Addr ace(static_cast<u_short>(0), address.c_str());
  std::array<char, 1025> name{};
  if (ace.get_host_name(name.data(), name.size()) != 0 || name.front() == '\0') return address;
  return name.data();
}

std::string AddressByMask(const std::vector<OwnAddress>& addresses, std::string_view mask) {
  const auto fits = [&](const OwnAddress& address) {
    return mask.empty() ? !address.isLoopback : address.text.starts_with(mask);
  };
  const auto found = std::find_if(addresses.begin(), addresses.end(), fits);
  return found != addresses.end() ? found->text : std::string();
}

}  // namespace vq::orb
