// Finds out why a server cannot call this client back, and what to do about it.
//
// Terms. A *callback* is a call from the server to an object of the client. For it the server needs
// an address that the client *publishes* in the object's reference; on a machine with several
// networks, or behind address translation, the one that the ORB picks may be of no use.
// *Bidirectional* means that the server calls back over the connection that the client opened, so
// that nothing needs to reach the client. A *trial* lets the server call back once, with one choice
// of address and of bidirectional. An *IP mask* is the text with which the wanted own address
// begins, such as "10.1.".
//
//   std::vector<IPAddressInfo*> addresses;  // the caller deletes them
//   unsigned int best = 0;
//   TroubleshootConnection::IdentifyIPAddresses(addresses, best);
//   long milliseconds = 0;
//   if (TroubleshootConnection::ORBInitAndTestCallback(false, addresses[best]->ipAddress,
//                                                      milliseconds, false))
//     TroubleshootConnection::ORBConfigure(addresses[best]->ipAddress, false, false);
//
// A trial needs a logged-in session. docs/decisions/0004-one-orb-a-process.md tells what a trial
// shares with the session's ORB and what it has to itself.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H

#include <string>
#include <vector>

#include <support/Export.h>
#include <support/orb/Corba.h>
#include <vq_client_common/connectivity/IPAddressInfo.h>
#include <vq_client_common/session/ServerId.h>

class QCSOrbCommon;

// Thread contract: no lock. One operation at a time, and no session operation during a trial. No
// operation raises.
class VQ_CLIENT_COMMON_API TroubleshootConnection {
 public:
  // Appends this machine's addresses, those that lead back to itself left out; the caller owns
  // them. `defaultIndex` becomes the index of the first one appended, and stays as it is when there
  // is none. The host names come from the resolver, which may take its time. A failure is logged at
  // level 1 and appends nothing.
  static void IdentifyIPAddresses(std::vector<IPAddressInfo*>& list, unsigned int& defaultIndex);

  // One trial with a private ORB that publishes `address`; an empty address leaves the choice to
  // the ORB, with `isMask` it is an IP mask. True when the server called back; `roundTripMs` is
  // then the time that took. False leaves `roundTripMs` as it is; the reason is in the log. Nothing
  // of the trial is left behind in the configuration domain or in the process. The session may call
  // its servers before and after, not during a trial. A failure to save the trial's settings is
  // logged at level 1; they are tried all the same.
  static bool ORBInitAndTestCallback(bool biDir, const std::string& address, long& roundTripMs,
                                     bool isMask);

  // Lets the server of the session call back an object of `orb`, within `timeout` milliseconds.
  // True when it did; `roundTripMs` is then set. Otherwise `error` may say why, for a user.
  static bool TestCallback(QCSOrbCommon* orb, std::string& error, long& roundTripMs, long timeout);

  // Makes an endpoint publish `hostInIOR` and listen on every interface. Refused parts of the
  // endpoint are dropped; a text that cannot be taken apart at all stays as it is.
  static void TransformEndpoint(std::string& endpoint, const std::string& hostInIOR);

  // Writes a choice to the configuration domain, for every scope of it; clients use it from their
  // next start on. False when the domain cannot be loaded. A failure to save goes unnoticed.
  static bool ORBConfigure(const std::string& address, bool biDir, bool isMask);

  // The milliseconds that ORBInitAndTestCallback gives the server for its call; 5000 until set.
  static long GetTimeout4TestCallback() { return m_lTimeout4CB; }
  static void SetTimeout4TestCallback(long timeout) { m_lTimeout4CB = timeout; }

  // Where the object behind a reference listens, read from the reference: no call is made. False
  // for null, nil and a reference without an address; the reason is logged at level 1, and `host`
  // and `port` stay as they are.
  static bool GetNetworkInterface4Server(CORBA::Object_ptr server, std::string& host,
                                         std::string& port, SERVER_ID serverId);

 private:
  static long m_lTimeout4CB;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_TROUBLESHOOTCONNECTION_H
