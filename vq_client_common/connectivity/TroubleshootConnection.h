// Tests whether the server can call this client back, and stores the settings that work.
//
// Terms. A *callback* is a call from the server to an object of the client. The server uses the
// address that the client *publishes* in the object's reference. On a host with several networks,
// or behind address translation, the address that the ORB chooses may be useless. *Bidirectional
// IIOP* means that the server calls back over the connection that the client opened. A *trial* lets
// the server call back once, with a given address, with or without bidirectional IIOP. An *IP mask*
// is the beginning of the client's own address, such as "10.1.".
//
//   std::string error;
//   long milliseconds = 0;
//   if (TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, milliseconds, 5000)) {
//     Show("The server reaches this client.");
//   }
//
//   std::vector<IPAddressInfo*> list;
//   unsigned int first = 0;
//   TroubleshootConnection::IdentifyIPAddresses(list, first);
//   const std::vector<std::unique_ptr<IPAddressInfo>> addresses(list.begin(), list.end());
//   for (const auto& info : addresses) {
//     const std::string& address = info->ipAddress;
//     if (TroubleshootConnection::ORBInitAndTestCallback(false, address, milliseconds, false)) {
//       TroubleshootConnection::ORBConfigure(address, false, false);
//       break;
//     }
//   }
//
// A trial needs a logged-in session. docs/decisions/0004-one-orb-a-process.md describes what the
// ORB of a trial shares with that of the session.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H

#include <cstdint>
#include <string>
#include <vector>

#include <support/Export.h>
#include <support/orb/Corba.h>
#include <vq_client_common/session/ServerId.h>

class QCSOrbCommon;

// One address of this host that a client can publish to servers. The library sets the two strings;
// the other members are for the client program.
struct IPAddressInfo {
  std::string ipAddress;       // such as "10.1.2.3"
  std::string hostName;        // from the resolver; the address again where it has no name
  bool isTested = false;       // set by the client program: it has made a trial
  std::int32_t roundTrip = 0;  // set by the client program: the duration in milliseconds
};

// The operations around callbacks; none raises an exception.
//
// Thread safety: no lock. Only one operation may run at a time, and no operation of the session
// during a trial.
class VQ_CLIENT_COMMON_API TroubleshootConnection {
 public:
  // Appends this host's addresses, without loopback addresses; the caller owns the objects.
  // `defaultIndex` becomes the index of the first one, and is unchanged when there is none. The
  // host names come from the resolver, which can take 10 seconds. Once it has taken 2, and within a
  // vq::CallDeadline, an address stands for its name. A failure is logged at level 1 and appends
  // nothing.
  static void IdentifyIPAddresses(std::vector<IPAddressInfo*>& list, unsigned int& defaultIndex);

  // Makes one trial with its own ORB, which publishes `address`. An empty `address` lets the
  // ORB choose; with `isMask` it is an IP mask. `biDir`: whether to use bidirectional IIOP. True
  // when the server called back; `roundTripMs` is then the duration. False, with `roundTripMs`
  // unchanged, otherwise; GL_GetFailureCause (GlobalFuncs.h) returns the reason, also when with
  // `biDir` the server called back over a new connection.
  //
  // The trial writes a scope to the configuration domain and removes it at the end. A failure to
  // write is logged at level 1, and the trial uses the settings nevertheless.
  static bool ORBInitAndTestCallback(bool biDir, const std::string& address, long& roundTripMs,
                                     bool isMask);

  // Lets the session's server call back an object of `orb` within `timeout` milliseconds, such as
  // that of `ORBCommon<1>::Get()`. True when it did; `roundTripMs` is then the duration. False
  // otherwise, also for a null `orb`; `error` is then the reason for the user, and is unchanged
  // after a CORBA user exception.
  static bool TestCallback(QCSOrbCommon* orb, std::string& error, long& roundTripMs, long timeout);

  // Changes an endpoint (ORBEndpoint.h) to publish `hostInIOR` and to listen on every interface.
  // Invalid parts of the endpoint are removed; a string that cannot be parsed at all is unchanged.
  static void TransformEndpoint(std::string& endpoint, const std::string& hostInIOR);

  // Writes these settings to every scope of the configuration domain. Clients use them after their
  // next start. False when the domain cannot be loaded. True does not show that the settings were
  // saved: a failure to save is only logged, at level 2.
  static bool ORBConfigure(const std::string& address, bool biDir, bool isMask);

  // The milliseconds that the server has for its call in ORBInitAndTestCallback; 5000 until set.
  static long GetTimeout4TestCallback() { return m_lTimeout4CB; }
  static void SetTimeout4TestCallback(long timeout) { m_lTimeout4CB = timeout; }

  // Host and port that a reference contains; no remote call is made. False, with `host` and `port`
  // unchanged, for a nil reference and one without an address; the reason is logged at level 1. An
  // IPv6 address is split at its first colon. `serverId` is not used.
  static bool GetNetworkInterface4Server(CORBA::Object_ptr server, std::string& host,
                                         std::string& port, SERVER_ID serverId);

 private:
  static long m_lTimeout4CB;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H
