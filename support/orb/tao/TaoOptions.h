// Our settings in TAO's words: pure functions, without TAO.
//
//   TaoArguments(settings) -> {"-ORBListenEndpoints", "iiop://", "-ORBInitRef", ...}
//
// Time-outs, bidirectional use and TLS are no arguments of TAO's, but policies (TaoProduct.cpp) and
// the state of its TLS library (TaoTls.h).
#ifndef VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H
#define VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// The names of the protocols among TAO's services: IIOP (TaoConnector.h) and TLS
// (TaoTlsProtocol.h).
inline constexpr char kProtocol[] = "VQ_IIOP_Factory";
inline constexpr char kTlsProtocol[] = "VQ_SSLIOP_Factory";

// What ORB_init gets, each option before its value.
std::vector<std::string> TaoArguments(const OrbSettings& settings);

// A listen endpoint in TAO's form: that of the setting, with the protocol's own name for TLS.
std::string TaoEndpoint(const ListenEndpoint& endpoint, bool tls);

// The arguments that keep TAO from reading files that nobody named: without them it loads what a
// file svc.conf in the current directory says. `given` are the arguments of the command line, which
// may name such a file.
std::vector<std::string> TaoConfigurationArguments(const std::vector<std::string>& given);

// A time as the messaging policies have it: in units of 100 nanoseconds.
std::uint64_t TaoTime(std::chrono::milliseconds time);

// The words for a minor code, out of the text that TAO has for an exception: "failed to connect;
// ECONNREFUSED". Empty when there are none.
std::string TaoMinorText(std::string_view information);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H
