#include <support/orb/tao/TaoTls.h>

#include <stdexcept>

#include <support/diagnostics/TDiag.h>
#include <support/orb/Tls.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

}  // namespace

void PrepareTls(const OrbSettings& settings, ACE_Service_Gestalt&, bool) {
  CheckTls(settings);
  if (!settings.tls.IsOn()) return;
  throw std::invalid_argument(
      "-SSLCACertificate or -SSLCertificate is set, and this library was built without TAO's TLS "
      "library SSLIOP");
}

void AllowNaming(CORBA::ORB_ptr, const OrbSettings&) {}

int PeekTls(TAO_Transport&, void*, int) {
  return -1;
}

ACE_Log_Category* TlsLog() {
  return nullptr;
}

std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings&) {
  VQ_LOG(diagModule, 4)
      << "There is no certificate to look at: this library was built without TAO's "
      << "TLS library SSLIOP";
  return std::nullopt;
}

}  // namespace vq::orb
