// The address of the object behind a reference, read from the reference itself without a call; and
// whether it can be reached there.
//
//   CORBA::Object_var server;   // a reference
//   for (const vq::orb::ReferenceEndpoint& endpoint : vq::orb::EndpointsOf(server.in())) {
//     std::cout << endpoint.host << ' ' << endpoint.port << '\n';
//   }
//
// A reference's string form ("IOR:" and hexadecimal digits) contains a byte order, a type and a
// list of profiles; the first profile for IIOP contains the address. Programs use EndpointsOf and
// TryToReach; the other functions are for the library itself and not exported.
#ifndef VQ_SUPPORT_ORB_REFERENCEADDRESS_H
#define VQ_SUPPORT_ORB_REFERENCEADDRESS_H

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <support/Export.h>
#include <support/orb/Corba.h>

namespace vq::orb {

struct ReferenceAddress {
  std::string host;  // as the reference has it: a name or a number
  std::string port;  // decimal; "0" for an object that listens for TLS only
};

// Why a reference has no address.
enum class AddressFault { kNone, kNil, kInvalidStub, kInvalidProfile, kNoAddress };

// A fault in words, for the log; empty for kNone.
std::string_view AddressFaultText(AddressFault fault);

// Reads the first address from a reference. `address` is set only when the result is kNone.
// `object` may be null or nil.
AddressFault AddressOf(CORBA::Object_ptr object, ReferenceAddress& address);

// Reads the first address from a reference in string form; any string is accepted.
AddressFault AddressOfText(std::string_view ior, ReferenceAddress& address);

// One address at which an object listens.
struct ReferenceEndpoint {
  std::string host;  // a name, or an address without brackets
  int port = 0;      // 0 to 65535
  bool tls = false;  // whether the port expects TLS
  int profile = 0;   // counted from 0
};

// All endpoints in a reference, in its order; empty when none can be read. Makes no call.
VQ_CLIENT_COMMON_API std::vector<ReferenceEndpoint> EndpointsOf(CORBA::Object_ptr object);

// All endpoints in a reference in string form; any string is accepted.
std::vector<ReferenceEndpoint> EndpointsOfText(std::string_view ior);

// "host:port", for a person.
std::string PlaceText(const ReferenceEndpoint& place);

// The result of TryToReach.
enum class Reach { kReached, kNotResolvable, kRefused, kFailed };

// Tries to open a TCP connection to any address of the host, all within `limit`. `why` becomes the
// reason in one line on failure, and is unchanged otherwise.
VQ_CLIENT_COMMON_API Reach TryToReach(const ReferenceEndpoint& place,
                                      std::chrono::milliseconds limit, std::string& why);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_REFERENCEADDRESS_H
