// One listen-endpoint string of the ORB, the value of "-ORBListenEndpoints" in the configuration
// domain, taken apart, changed and put together again.
//
//   iiop:// hostname [ ":" port ] [ "/" option { "&" option } ] [ ";" extra ]
//
//   ssl_port=n          listen for TLS on that port as well
//   portspan=n          try n ports from the port on; comes after ssl_port
//   hostname_in_ior=h   publish h in references instead of the address listened on
//   reuse_addr=0|1      whether a port that was in use a moment ago may be taken again
//
// For example:
//
//   ORBEndpoint endpoint("iiop://host:5000/ssl_port=5001");
//   endpoint.setHostInIOR("10.0.0.1", true);
//   endpoint.toString();  // "iiop://:5000/ssl_port=5001&hostname_in_ior=10.0.0.1&reuse_addr=0"
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H

#include <cstdint>
#include <string>

#include <support/Export.h>

// Thread contract: a plain value; one thread an object.
class VQ_CLIENT_COMMON_API ORBEndpoint {
 public:
  // 0 where absent.
  struct PortOptions {
    std::int32_t port = 0;      // for IIOP
    std::int32_t sslPort = 0;   // for TLS
    std::int32_t portSpan = 0;  // how many ports to try from `port` on
  };

  // All texts empty, all numbers 0. That is not the default endpoint: the reuse address is 0, so
  // toString writes "iiop:///reuse_addr=0".
  ORBEndpoint() = default;

  // Parses a text that holds "iiop://" anywhere, as fromString does; any other text, the empty one
  // included, is logged at level 2 and leaves the object empty. Raises as fromString.
  explicit ORBEndpoint(const std::string& text);

  // Takes over what `text` says; what it does not say stays as it was. The empty text changes
  // nothing. Returns false when a part was refused: that part is logged at level 2, the others are
  // stored all the same. Raises std::out_of_range ("invalid string position") for a text that is
  // shorter than "iiop://", and for one with a ";" that at most five characters follow.
  bool fromString(const std::string& text);

  // The endpoint as a text. A reuse address of 0 is written, any other is not; numbers that are 0
  // and texts that are empty are left out.
  std::string toString() const;

  // Whether the object says nothing that an endpoint does not do by itself: no port, no names, and
  // a reuse address other than 0. The port span is not looked at.
  bool isDefault() const;

  // The host to listen on; empty for every interface. Any text is taken, and written as it is.
  std::string getHostname() const { return m_hostname; }
  void setHostname(const std::string& hostname) { m_hostname = hostname; }

  std::string getHostInIOR() const { return m_hostInIOR; }  // empty: as listened on
  // Replaces the published host; with `clearHostname` the endpoint also listens on every interface.
  void setHostInIOR(const std::string& host, bool clearHostname);

  // The numbers of ports, as parsed or set; nothing is checked.
  PortOptions getPortOptions() const { return m_portOptions; }
  void setPortOptions(PortOptions options) { m_portOptions = options; }

  // Whether a port that was in use a moment ago may be taken again: 0 for no, any other for yes.
  int getReuseAddr() const { return m_reuseAddr; }
  void setReuseAddr(int reuse) { m_reuseAddr = reuse; }

 private:
  bool identifyFlag(const std::string& option);

  std::int32_t m_reuseAddr = 0;
  std::string m_hostname;
  std::string m_hostInIOR;
  std::string m_extra;
  PortOptions m_portOptions;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H
