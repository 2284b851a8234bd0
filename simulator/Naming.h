// Puts a server into the naming service and takes it out again.
//
// A server is the context {id server name, kind server kind} below the root; its services are bound
// in it as {id service, kind ""}.
//
//   Naming naming(orb);
//   naming.Register("central", "GSR", {{"UsersManager", users}});
//   naming.Unregister();
//
// Thread contract: one thread at a time.
#ifndef VQ_SIMULATOR_NAMING_H
#define VQ_SIMULATOR_NAMING_H

#include <map>
#include <string>
#include <vector>

#include <support/orb/Corba.h>

namespace vq::sim {

class Naming {
 public:
  // Asks the ORB for the naming service. Raises CORBA exceptions when it is not there.
  explicit Naming(CORBA::ORB_ptr orb);

  // Binds services of one server. A name that is there already, left by a process that died, is
  // taken over. Raises CORBA exceptions.
  void Register(const std::string& server, const std::string& kind,
                const std::map<std::string, CORBA::Object_var>& services);
  // Takes out what Register put in, unless another process has taken a name over since; then the
  // contexts that are empty. Raises nothing: a naming service that is gone has forgotten already.
  void Unregister() noexcept;

 private:
  struct Entry {
    CosNaming::Name contextName;
    CosNaming::NamingContext_var context;
    std::map<std::string, CORBA::Object_var> services;
  };
  static void Unbind(const Entry& entry);
  void Remove(const Entry& entry);

  CosNaming::NamingContext_var m_root;
  std::vector<Entry> m_entries;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_NAMING_H
