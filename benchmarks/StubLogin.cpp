// stub_login -ORBInitRef NameService=REFERENCE
//
// Logs in to the server "central" as vqclient's command login does, and out again: the same remote
// calls, made through the generated stubs. The peer of that command as a whole process.

#include <string>

#include <support/orb/Corba.h>
#include <support/security/ChallengeResponse.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

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
  CORBA::String_var encode;
  CORBA::String_var mode;
  configuration->CRB_GetSystemParameterValue("general", "PasswordEncode", encode.out(), "");
  configuration->CRB_GetSystemParameterValue("general", "I18N", mode.out(), "");

  const QCSCorbaUsersManager_var users = Find<QCSCorbaUsersManager>(naming, "UsersManager");
  CORBA::String_var version;
  CORBA::String_var first;
  CORBA::String_var second;
  users->CRB_VerifyClientServerVersion("8.0.05", version.out());
  users->CRB_AquireChallenge(first.out(), second.out());
  std::string checksum;
  std::string response;
  ChkSum("secret", checksum);
  MakeChallengeResponse(first.in(), second.in(), checksum.substr(0, 8), response);
  QCSCorbaLMInfoSeq_var messages;
  CORBA::String_var message;
  CORBA::String_var userId;
  CORBA::String_var dbUser;
  const CORBA::Long result =
      users->CRB_Register("alice", response.c_str(), "host", "account", "vq_cli", "8.0.05",
                          messages.out(), 900, message.out(), userId.out(), dbUser.out());
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
