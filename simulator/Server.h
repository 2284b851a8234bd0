// One server kind of the simulator: its POAs, its servants, and the references to its services.
#ifndef VQ_SIMULATOR_SERVER_H
#define VQ_SIMULATOR_SERVER_H

#include <map>
#include <string>

#include <simulator/Callbacks.h>
#include <simulator/Orb.h>
#include <simulator/World.h>
#include <support/orb/Corba.h>
#include <vq_idl/AuthorizationC.h>

namespace vq::sim {

class Server {
 public:
  // Makes the services "UsersManager", "SystemConfiguration" and "CallbackRepository" of the kind.
  // Raises CORBA::SystemException, also when the endpoint cannot be opened.
  Server(CORBA::ORB_ptr orb, const OrbOptions& options, World& world, Callbacks& callbacks,
         const std::string& name, const std::string& kind);

  [[nodiscard]] const std::map<std::string, CORBA::Object_var>& Services() const {
    return m_services;
  }

 private:
  void Add(const std::string& service, PortableServer::ServantBase* servant);
  QCSCorbaAuthorization_ptr AuthorizationOf(const std::string& user);

  PortableServer::POA_var m_poa;
  PortableServer::POA_var m_authorizations;  // one servant for all objects
  std::map<std::string, CORBA::Object_var> m_services;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SERVER_H
