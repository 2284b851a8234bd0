// Parses, changes and composes a listen endpoint of the ORB, the value of "-ORBListenEndpoints".
//
//   iiop:// hostname [ ":" port ] [ "/" option { "&" option } ] [ ";" extra ]
//
//   ssl_port=n          listen for TLS on that port, too
//   portspan=n          try n ports, beginning with the port; comes after ssl_port
//   hostname_in_ior=h   publish h in references instead of the address of the socket
//   reuse_addr=0|1      whether a port that was just in use may be used again
//
//   ORBEndpoint endpoint("iiop://host:5000/ssl_port=5001");
//   endpoint.setHostInIOR("10.0.0.1", true);
//   endpoint.toString();  // "iiop://:5000/ssl_port=5001&hostname_in_ior=10.0.0.1&reuse_addr=0"
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H

#include <cstdint>
#include <string>

#include <support/Export.h>

// The parts of one listen endpoint.
class VQ_CLIENT_COMMON_API ORBEndpoint {
 public:
  // Port numbers; 0 where absent.
  struct PortOptions {
    std::int32_t port = 0;      // for IIOP
    std::int32_t sslPort = 0;   // for TLS
    std::int32_t portSpan = 0;  // how many ports to try, beginning with `port`
  };

  // All strings empty, all numbers 0. That is not the default endpoint: the reuse address is 0, so
  // toString returns "iiop:///reuse_addr=0".
  ORBEndpoint() = default;

  // Parses a string that contains "iiop://" anywhere, as fromString does. Any other string is
  // logged at level 2, and the object is empty. Raises as fromString.
  explicit ORBEndpoint(const std::string& text);

  // Sets the parts that `text` contains; other parts are unchanged. Returns false when a part is
  // invalid: that part is logged at level 2 and unchanged, the others are set. The empty string
  // changes nothing and returns true. Raises std::out_of_range ("invalid string position") for a
  // text shorter than "iiop://", and for a ";" with at most five characters after it.
  bool fromString(const std::string& text);

  // The endpoint as a string. Numbers that are 0 and empty strings are left out, but for the reuse
  // address: 0 is written, any other value is left out.
  std::string toString() const;

  // Whether no port and no string is set, and the reuse address is not 0. The port span is not
  // tested.
  bool isDefault() const;

  // The host to listen on; empty for every interface. Any string is accepted.
  std::string getHostname() const { return m_hostname; }
  void setHostname(const std::string& hostname) { m_hostname = hostname; }

  // The host to publish in references; empty for the address of the socket.
  std::string getHostInIOR() const { return m_hostInIOR; }
  // Replaces the published host; with `clearHostname` the endpoint listens on every interface, too.
  void setHostInIOR(const std::string& host, bool clearHostname);

  // The port numbers, as parsed or set; the setter checks nothing.
  PortOptions getPortOptions() const { return m_portOptions; }
  void setPortOptions(PortOptions options) { m_portOptions = options; }

  // Whether a port that was just in use may be used again: 0 for no, any other number for yes.
  int getReuseAddr() const { return m_reuseAddr; }
  void setReuseAddr(int reuse) { m_reuseAddr = reuse; }

 private:
  bool identifyFlag(const std::string& option);

  std::int32_t m_reuseAddr = 0;
  std::string m_hostname;
  std::string m_hostInIOR;
  std::string m_extra;  // reserved: always empty
  PortOptions m_portOptions;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_ORBENDPOINT_H
