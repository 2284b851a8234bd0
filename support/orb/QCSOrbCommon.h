// One ORB of the process, addressed by number: 1 for the session, 2 for a trial connection.
//
// Terms. The *configuration domain* is the file of settings in named scopes
// (support/configuration); an ORB named GUI reads the scope "GUI" over the scope "default". A
// *server* appears in the naming service as the context {id server name, kind server kind}; its
// *services* are bound in that context as {id service, kind ""}.
//
//   QCSOrbCommon* orb = ORBCommon<1>::Get();
//   if (orb->InitCorba(argc, argv, "GUI")) {
//     try {
//       CORBA::Object_var object = orb->Bind("central", "GSR", "UsersManager", true);
//     } catch (const CORBA::Exception&) {
//       Show("The server cannot be reached.");
//     }
//     orb->DestroyOrb(true);
//   }
//
// Settings and their precedence: OrbSettings.h.
#ifndef VQ_SUPPORT_ORB_QCSORBCOMMON_H
#define VQ_SUPPORT_ORB_QCSORBCOMMON_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <support/Export.h>
#include <support/orb/Corba.h>

namespace vq::orb {
class NamingService;
class OrbInstance;
struct OrbSettings;
struct ResolvedSetting;
enum class OrbRole;
}  // namespace vq::orb

// Thread safety: only one thread at a time may call the start-up and shut-down operations, with no
// other call in progress. In between, Bind, GetChildPoa and the getters may be called from any
// thread.
class VQ_CLIENT_COMMON_API QCSOrbCommon {
 public:
  // The number of this ORB, from 1.
  virtual int GetId() const = 0;
  virtual ~QCSOrbCommon();

  bool IsInitialized() const;  // true from a successful start until DestroyOrb

  // Start the ORB of a client that is called back, or of a pure client, which opens no port until
  // it asks for a POA. `argv` may be null when `argc` is 0; its strings are copied. The naming
  // service must answer, or the ORB is not started. False when a setting is malformed, the
  // configuration domain cannot be read, a port cannot be opened or the naming service does not
  // answer; the reason is logged at level 1. Raises nothing but std::bad_alloc.
  bool InitCorba(int argc, char** argv, const char* name);
  bool InitCorba4Client(int argc, char** argv, const char* name);

  // The object of a service, by one look-up in the naming service. With `probe` the server is asked
  // at once whether the object exists, and a server that does not answer raises here; without it
  // the naming service's reference is returned as it is. The caller owns the reference. Raises
  // CosNaming::NamingContext exceptions and CORBA::SystemException, and CORBA::BAD_INV_ORDER while
  // the ORB is not initialized.
  CORBA::Object_ptr Bind(const std::string& server, const std::string& kind,
                         const std::string& service, bool probe);

  // The naming service's root context; no call is made, and the cause of an earlier failure is
  // forgotten. Borrowed. Raises CORBA::BAD_INV_ORDER while the ORB is not initialized.
  CosNaming::NamingContext_ptr GetNamingRoot();

  // Ends the ORB; does nothing when it is not running. With `wait` it returns when calls in
  // progress and the ORB's threads have ended. A later start makes a new ORB.
  void DestroyOrb(bool wait);

  // -1 when the certificate in use expires within `days` days, 0 otherwise, also when no
  // certificate is in use.
  int CheckCertificateExpiration(int days) const;

  // When the certificate in use expires; nothing when none is in use.
  std::optional<std::chrono::sys_seconds> CertificateExpiry() const;

  // The POA for this ORB's servants, activated. Borrowed. Raises CORBA::SystemException.
  PortableServer::POA_ptr GetChildPoa();

  // Requests a pool of threads for calls from servers. Takes effect at the next start, in ORB
  // products that have that choice.
  void SetUseThreadPool(bool use) { m_useThreadPool = use; }
  bool GetUseThreadPool() const { return m_useThreadPool; }

  // The settings that apply, in a fixed order; empty while the ORB is not initialized.
  const std::vector<vq::orb::ResolvedSetting>& GetSettings() const;

  // Destroys the ORB object of that number, ending its ORB first. An unknown number is ignored.
  static void DeleteOrbById(int id);

  QCSOrbCommon(const QCSOrbCommon&) = delete;
  QCSOrbCommon& operator=(const QCSOrbCommon&) = delete;

 protected:
  QCSOrbCommon();

  // The one object of that number, made with `factory` on first use.
  static QCSOrbCommon* GetOrbById(int id, QCSOrbCommon* (*factory)());

  // The start-up common to both roles; `name` is the ORB's own name, such as "GUI:1".
  virtual bool InitAlways(int argc, char** argv, const char* name);

 private:
  bool ReadSettings(int argc, char** argv, const std::string& scope,
                    std::vector<std::string>& productArguments);
  const vq::orb::OrbSettings& NamingSettings() const;
  bool ReachNamingService();

  std::unique_ptr<vq::orb::OrbSettings> m_settings;
  std::unique_ptr<vq::orb::OrbInstance> m_instance;
  std::unique_ptr<vq::orb::NamingService> m_naming;
  vq::orb::OrbRole m_role;
  bool m_useThreadPool = false;
};

#endif  // VQ_SUPPORT_ORB_QCSORBCOMMON_H
