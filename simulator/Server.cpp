#include <simulator/Server.h>

#include <simulator/AuthorizationServant.h>
#include <simulator/CallbackRepositoryServant.h>
#include <simulator/SystemConfigurationServant.h>
#include <simulator/UsersManagerServant.h>

namespace vq::sim {

Server::Server(CORBA::ORB_ptr orb, const OrbOptions& options, World& world, Callbacks& callbacks,
               const std::string& name, const std::string& kind)
    : m_poa(CreatePoa(orb, kind.c_str(), options)) {
  CORBA::PolicyList policies;
  policies.length(4);
  policies[0] = m_poa->create_id_assignment_policy(PortableServer::USER_ID);
  policies[1] = m_poa->create_servant_retention_policy(PortableServer::NON_RETAIN);
  policies[2] = m_poa->create_request_processing_policy(PortableServer::USE_DEFAULT_SERVANT);
  policies[3] = m_poa->create_id_uniqueness_policy(PortableServer::MULTIPLE_ID);
  m_authorizations = CreatePoa(orb, (kind + " authorizations").c_str(), options, policies);

  CORBA::Object_var object = orb->resolve_initial_references("POACurrent");
  PortableServer::Current_var current = PortableServer::Current::_narrow(object);
  PortableServer::ServantBase_var authorizations = new AuthorizationServant(world, kind, current);
  m_authorizations->set_servant(authorizations.in());

  Add("UsersManager",
      new UsersManagerServant(world, kind, callbacks,
                              [this](const std::string& user) { return AuthorizationOf(user); }));
  Add("SystemConfiguration", new SystemConfigurationServant(world, kind, name));
  Add("CallbackRepository", new CallbackRepositoryServant(world, kind, callbacks));
}

void Server::Add(const std::string& service, PortableServer::ServantBase* servant) {
  PortableServer::ServantBase_var held = servant;  // the POA keeps a count of its own
  PortableServer::ObjectId_var id = m_poa->activate_object(servant);
  m_services[service] = m_poa->id_to_reference(id.in());
}

QCSCorbaAuthorization_ptr Server::AuthorizationOf(const std::string& user) {
  PortableServer::ObjectId_var id = PortableServer::string_to_ObjectId(user.c_str());
  CORBA::Object_var object =
      m_authorizations->create_reference_with_id(id.in(), "IDL:QCSCorbaAuthorization:1.0");
  return QCSCorbaAuthorization::_narrow(object);
}

}  // namespace vq::sim
