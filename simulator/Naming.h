// Registers a server in the naming service and removes it again.
//
// A server is the context {id server name, kind server kind} below the root; its services are bound
// in it as {id service, kind ""}.
//
//   Naming naming(orb);
//   naming.Register("central", "GSR", {{"UsersManager", users}});
//   naming.Unregister();
#ifndef VQ_SIMULATOR_NAMING_H
#define VQ_SIMULATOR_NAMING_H

#include <map>
#include <string>
#include <vector>

#include <support/orb/Corba.h>

namespace vq::sim {

class Naming {
 public:
  // Gets the naming service from the ORB. Raises CORBA exceptions when it does not answer.
  explicit Naming(CORBA::ORB_ptr orb);

  // Binds services of one server. An existing name, of a process that died, is replaced. Raises
  // CORBA exceptions.
  void Register(const std::string& server, const std::string& kind,
                const std::map<std::string, CORBA::Object_var>& services);
  // Removes the names of Register, unless another process has replaced one since; then the contexts
  // that are empty. Raises nothing: a naming service that has ended has no names left.
  void Unregister() noexcept;

 private:
  struct Entry {
    CosNaming::Name contextName;
    CosNaming::NamingContext_var context;
    std::map<std::string, CORBA::Object_var> services;
  };
  void Remove(const Entry& entry);

  CosNaming::NamingContext_var m_root;
  std::vector<Entry> m_entries;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_NAMING_H
