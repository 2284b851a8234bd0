// TLS in TAO: our settings in the context of OpenSSL that ACE has, one a process, which follows the
// ORB that started last. TLS is a library of TAO's own (SSLIOP), which a site may lack; without it
// TaoNoTls.cpp takes the place of TaoTls.cpp.
//
// With bidirectional IIOP only TLS 1.2 is used: TAO's threads would lose messages of TLS 1.3.
//
// With TLS on, nothing but look-ups goes unencrypted, and only to the naming service, where its
// reference offers no TLS. A look-up gives addresses, and a server at a wrong one has no trusted
// certificate.
//
// Thread safety: the functions are called by the thread that starts the ORB, unless they say
// otherwise.
#ifndef VQ_SUPPORT_ORB_TAO_TAOTLS_H
#define VQ_SUPPORT_ORB_TAO_TAOTLS_H

#include <chrono>
#include <optional>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

class ACE_Log_Category;
class ACE_Service_Gestalt;
class TAO_Transport;

namespace vq::orb {

// Checks the settings, applies them to ACE's context, and adds the protocol kTlsProtocol
// (TaoOptions.h) to the services of an ORB; with TLS off OpenSSL is not touched. Raises
// std::invalid_argument, also where TLS is on and SSLIOP is missing. Unless it is the first ORB,
// the context is in use and stays as it is.
void PrepareTls(const OrbSettings& settings, ACE_Service_Gestalt& services, bool isFirst);

// Allows unencrypted look-ups, where TLS is on and the naming service offers none.
void AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings);

// The next bytes of a TLS connection, which stay unread; waits for them until the call's deadline.
// Returns how many, 0 or less where the connection has ended or failed. On the thread of the call.
int PeekTls(TAO_Transport& transport, void* bytes, int size);

// Nothing when TLS is off or there is no own certificate. Logs that SSLIOP is missing. Any thread
// while the ORB is up.
std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings& settings);

// SSLIOP's log; null without SSLIOP. Any thread.
ACE_Log_Category* TlsLog();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOTLS_H
