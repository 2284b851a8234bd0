#include <support/orb/omniorb/OmniOrbProfiles.h>

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <omniORB4/CORBA.h>
#include <omniORB4/giopEndpoint.h>
#include <omniORB4/omniIOR.h>
#include <omniORB4/omniInterceptors.h>

#include <support/orb/omniorb/OmniOrbOptions.h>

namespace vq::orb {
namespace {

using omni::giopAddress;
using omni::giopAddressList;

// A reference's other addresses are ignored: no call makes more attempts, and a list of many
// thousands would take omniORB minutes.
constexpr std::size_t kMostAddresses = 16;

void Add(giopAddress* address, giopAddressList& addresses) {
  if (address == nullptr) return;  // without port, or of an unknown transport
  const auto isSame = [&](const giopAddress* known) {
    return std::string_view(known->address()) == address->address();
  };
  if (addresses.size() >= kMostAddresses || std::ranges::any_of(addresses, isSame)) {
    delete address;
  } else {
    addresses.push_back(address);
  }
}

void EraseFrom(giopAddress** first, giopAddressList& addresses) {
  std::for_each(first, addresses.end(), [](const giopAddress* address) { delete address; });
  addresses.erase(first, addresses.end());
}

// omniORB adds an address as often as the reference has it. Each would take a share of the time for
// connecting.
void RemoveRepeated(giopAddressList& addresses) {
  std::unordered_set<std::string_view> known;
  giopAddress** end = addresses.begin();
  for (giopAddress* address : addresses) {
    if (known.insert(address->address()).second) {
      *end++ = address;
    } else {
      delete address;
    }
  }
  addresses.erase(end, addresses.end());
}

void AddProfile(const IIOP::ProfileBody& profile, giopAddressList& addresses) {
  Add(giopAddress::fromTcpAddress(profile.address), addresses);
  for (CORBA::ULong i = 0; i < profile.components.length(); ++i) {
    const IOP::TaggedComponent& component = profile.components[i];
    cdrEncapsulationStream data(component.component_data.get_buffer(),
                                component.component_data.length(), true);
    IIOP::Address address;
    if (component.tag == IOP::TAG_ALTERNATE_IIOP_ADDRESS) {
      address.host = data.unmarshalRawString();
      address.port <<= data;
      Add(giopAddress::fromTcpAddress(address), addresses);
    } else if (component.tag == IOP::TAG_SSL_SEC_TRANS) {
      CORBA::UShort supported = 0;
      CORBA::UShort required = 0;
      supported <<= data;
      required <<= data;
      address.port <<= data;
      address.host = profile.address.host;
      Add(giopAddress::fromSslAddress(address), addresses);
    }
  }
}

bool IsSameObject(const IIOP::ProfileBody& one, const IIOP::ProfileBody& other) {
  const CORBA::Octet* const key = one.object_key.get_buffer();
  const CORBA::Octet* const another = other.object_key.get_buffer();
  return std::equal(key, key + one.object_key.length(), another,
                    another + other.object_key.length());
}

CORBA::Boolean AddFurtherProfiles(omni::omniInterceptors::decodeIOR_T::info_T& info) {
  const IOP::TaggedProfileList& profiles = info.ior.iopProfiles();
  const CORBA::Long selected = info.ior.addr_selected_profile_index();
  if (!info.has_iiop_body || selected < 0) return true;
  giopAddressList& addresses = info.ior.getIORInfo()->addresses();
  RemoveRepeated(addresses);
  for (CORBA::ULong i = 0; i < profiles.length(); ++i) {
    if (profiles[i].tag != IOP::TAG_INTERNET_IOP || i == static_cast<CORBA::ULong>(selected)) {
      continue;
    }
    IIOP::ProfileBody further;
    try {
      IIOP::unmarshalProfile(profiles[i], further);
      if (IsSameObject(further, info.iiop)) AddProfile(further, addresses);
    } catch (const CORBA::Exception&) {  // malformed; the other profiles still count
    }
  }
  // An object that listens for TLS only has port 0 in its profile. An attempt to connect to it
  // would take a share of the time for connecting.
  RemoveAddresses(addresses, [](std::string_view address) { return address.ends_with(":0"); });
  if (addresses.size() > kMostAddresses) {  // Those with TLS may be the only ones that are used.
    std::stable_partition(addresses.begin(), addresses.end(), [](const giopAddress* address) {
      return std::string_view(address->address()).starts_with(kTls);
    });
    EraseFrom(addresses.begin() + kMostAddresses, addresses);
  }
  return true;
}

}  // namespace

void RemoveAddresses(giopAddressList& addresses, bool (*isUnwanted)(std::string_view)) {
  EraseFrom(std::stable_partition(
                addresses.begin(), addresses.end(),
                [&](const giopAddress* address) { return !isUnwanted(address->address()); }),
            addresses);
}

void InstallProfiles() {
  omniORB::getInterceptors()->decodeIOR.add(AddFurtherProfiles);
}

}  // namespace vq::orb
