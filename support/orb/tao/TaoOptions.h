// The settings as options of TAO: pure functions, which do not need TAO.
//
//   TaoArguments(settings)  -> {"-ORBListenEndpoints", "iiop://", "-ORBInitRef", ...}
//   TaoDirectives(settings) -> {"static Resource_Factory \"-ORBProtocolFactory ...\"", ...}
//
// Time-outs, bidirectional IIOP and TLS are not arguments in TAO, but policies (TaoOrb.cpp) and the
// state of its TLS library (TaoTls.h).
#ifndef VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H
#define VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// The names of the protocols among TAO's services: IIOP (TaoConnector.h) and TLS (TaoTls.h).
inline constexpr char kProtocol[] = "VQ_IIOP_Factory";
inline constexpr char kTlsProtocol[] = "VQ_SSLIOP_Factory";

// What ORB_init gets, each option before its value.
std::vector<std::string> TaoArguments(const OrbSettings& settings);

// The arguments with which TAO takes its services from TaoDirectives alone and opens no ACE log,
// unless `given`, the arguments of the command line, configures services. Without them TAO loads
// what a file svc.conf in the current directory names.
std::vector<std::string> TaoConfigurationArguments(const std::vector<std::string>& given);

// The configuration of the ORB's services, in the language of TAO's svc.conf.
std::vector<std::string> TaoDirectives(const OrbSettings& settings);

// A time in the unit of the messaging policies, 100 nanoseconds.
std::uint64_t TaoTime(std::chrono::milliseconds time);

// The description of a minor code in TAO's text for an exception: "failed to connect;
// ECONNREFUSED". Empty when there is none.
std::string TaoMinorText(std::string_view information);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOOPTIONS_H
