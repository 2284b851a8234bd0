// The naming service of one ORB: one reference, or one for each of its addresses.
//
//   NamingService naming(instance, settings);
//   naming.Reach();
//   CORBA::Object_var object = naming.Resolve(name);
//
// A call goes to the address that answered last. Where that one does not answer (it refuses, is
// unreachable or silent), the others are tried in turn, within one call time-out in all. A look-up
// may be sent to several addresses, because it changes nothing.
#ifndef VQ_SUPPORT_ORB_NAMINGSERVICE_H
#define VQ_SUPPORT_ORB_NAMINGSERVICE_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

class OrbInstance;

// Thread safety: every operation may be called from any thread.
class NamingService {
 public:
  // Makes no call. Raises as OrbInstance::NamingService, and CORBA::SystemException for a malformed
  // reference.
  NamingService(OrbInstance& instance, const OrbSettings& settings);

  // Raises CORBA::OBJECT_NOT_EXIST when there is no such object, and what the call raises.
  void Reach();

  // The caller owns the result. Raises what the call raises.
  CORBA::Object_ptr Resolve(const CosNaming::Name& name);

  // The one that answered last; borrowed.
  CosNaming::NamingContext_ptr Root() const { return m_roots[m_answering].in(); }

 private:
  void Ask(const std::function<void(CosNaming::NamingContext_ptr)>& call);

  std::vector<CosNaming::NamingContext_var> m_roots;
  std::atomic<std::size_t> m_answering = 0;
  const std::chrono::milliseconds m_timeOut;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_NAMINGSERVICE_H
