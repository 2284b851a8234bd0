// Where an ORB listens for calls, as the setting -ORBListenEndpoints has it. Its form:
//
//   iiop://[host][:port][/option{&option}]
//
//   portspan=n          try n ports, beginning at `port`
//   ssl_port=n          listen for TLS on that port as well
//   hostname_in_ior=h   publish h in references instead of the address listened on
//   reuse_addr=0|1      accepted; ORB products here always set the socket option as they see fit
//
// The functions are for the library itself and not exported.
//
//   std::string error;
//   if (!vq::orb::ParseListenEndpoint("iiop://:5000/hostname_in_ior=gui.site", error)) Show(error);
#ifndef VQ_SUPPORT_ORB_LISTENENDPOINT_H
#define VQ_SUPPORT_ORB_LISTENENDPOINT_H

#include <optional>
#include <string>
#include <string_view>

namespace vq::orb {

// An endpoint in its parts.
struct ListenEndpoint {
  std::string host;           // empty: every interface of the host
  int port = 0;               // 0: any free port
  int portSpan = 0;           // 0: just `port`
  int tlsPort = 0;            // 0: no TLS
  std::string publishedHost;  // empty: as listened on

  // The same in every part.
  bool operator==(const ListenEndpoint&) const = default;
};

// The endpoint in a string; nothing for a string of another form, of which `error` then names the
// wrong part. An empty string is the endpoint "iiop://".
std::optional<ListenEndpoint> ParseListenEndpoint(std::string_view text, std::string& error);

// A host as it is written in an address: an IPv6 address in brackets.
std::string UriHost(const std::string& host);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_LISTENENDPOINT_H
