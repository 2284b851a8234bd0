// stub_login -ORBInitRef NameService=REFERENCE
//
// Logs in to the server "central" as vqclient's command login does, and out again, through the
// generated stubs. The peer of that command as a whole process.

#include <benchmarks/StubCalls.h>
#include <support/orb/Corba.h>

namespace {

template <class Service>
typename Service::_ptr_type Find(CosNaming::NamingContext_ptr naming, const char* service) {
  CosNaming::Name name(2);
  name.length(2);
  name[0].id = "central";
  name[0].kind = "GSR";
  name[1].id = service;
  const CORBA::Object_var object = naming->resolve(name);
  if (object->_non_existent()) throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
  return Service::_narrow(object);
}

int Login(CORBA::ORB_ptr orb) {
  const CORBA::Object_var object = orb->resolve_initial_references("NameService");
  if (object->_non_existent()) return 1;
  const CosNaming::NamingContext_var naming = CosNaming::NamingContext::_unchecked_narrow(object);

  const VQCorbaSystemConfiguration_var configuration =
      Find<VQCorbaSystemConfiguration>(naming, "SystemConfiguration");
  const QCSCorbaUsersManager_var users = Find<QCSCorbaUsersManager>(naming, "UsersManager");
  CORBA::String_var userId;
  const CORBA::Long result = vq::LoginByStubs(configuration.in(), users.in(), 900, userId);
  users->CRB_Unregister(userId.in());
  return result == 1 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const CORBA::ORB_var orb = CORBA::ORB_init(argc, argv);
    const int result = Login(orb);
    orb->destroy();
    return result;
  } catch (const CORBA::Exception&) {
    return 1;
  }
}
