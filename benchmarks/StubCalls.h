// The remote calls of one login, made through the generated stubs, and the computations between
// them.
#ifndef VQ_BENCHMARKS_STUBCALLS_H
#define VQ_BENCHMARKS_STUBCALLS_H

#include <string>

#include <support/security/ChallengeResponse.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq {

// Returns what the registration returned; `timeOut` in seconds.
inline CORBA::Long LoginByStubs(VQCorbaSystemConfiguration::_ptr_type configuration,
                                QCSCorbaUsersManager::_ptr_type users, CORBA::ULong timeOut,
                                CORBA::String_var& userId) {
  CORBA::String_var encode;
  CORBA::String_var mode;
  CORBA::String_var version;
  CORBA::String_var first;
  CORBA::String_var second;
  configuration->CRB_GetSystemParameterValue("general", "PasswordEncode", encode.out(), "");
  configuration->CRB_GetSystemParameterValue("general", "I18N", mode.out(), "");
  users->CRB_VerifyClientServerVersion("8.0.05", version.out());
  users->CRB_AquireChallenge(first.out(), second.out());
  std::string checksum;
  std::string response;
  ChkSum("secret", checksum);
  MakeChallengeResponse(first.in(), second.in(), checksum.substr(0, 8), response);
  QCSCorbaLMInfoSeq_var messages;
  CORBA::String_var message;
  CORBA::String_var dbUser;
  return users->CRB_Register("alice", response.c_str(), "host", "account", "vq_cli", "8.0.05",
                             messages.out(), timeOut, message.out(), userId.out(), dbUser.out());
}

}  // namespace vq

#endif  // VQ_BENCHMARKS_STUBCALLS_H
