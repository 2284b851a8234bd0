// Every public function that calls a server, with the calls that it makes and what becomes of it
// when one of them fails.
//
// An *outcome* is one text: the result or what is raised, and what the function leaves behind. A
// result with a text for users has a short name in it, such as "<went down>".
#ifndef VQ_TESTS_RELIABILITY_REMOTEFUNCTIONS_H
#define VQ_TESTS_RELIABILITY_REMOTEFUNCTIONS_H

#include <algorithm>
#include <array>
#include <ostream>
#include <span>
#include <string>

namespace vq::test {

enum State { kLoggedOut, kExpired, kLoggedIn, kFinished };  // what a function is called in

// One remote call of a function, and the outcome when it fails and when the server refuses, which
// is a result of 0 or false. Null: a call that the ORB makes, which no server refuses.
struct RemoteCall {
  const char* operation = nullptr;
  const char* failed = nullptr;
  const char* refused = nullptr;
};
using RemoteCalls = std::array<RemoteCall, 8>;  // those without an operation do not count

struct RemoteFunction {
  const char* name;
  State state;
  std::string (*run)();
  const char* success;
  const char* down;     // nothing answers that was there
  const char* unbound;  // no reference is cached, and the naming service is gone
  RemoteCalls calls{};

  std::span<const RemoteCall> Calls() const {
    return {calls.begin(), std::ranges::find(calls, nullptr, &RemoteCall::operation)};
  }
  bool EndsTheSession() const { return std::string_view(name).find("Log") != std::string::npos; }
  // How a failed expectation names it.
  friend void PrintTo(const RemoteFunction& function, std::ostream* out) { *out << function.name; }
};

std::span<const RemoteFunction> RemoteFunctions();

std::string OutcomeOf(const RemoteFunction& function);  // runs it

constexpr const char* kParameter = "CRB_GetSystemParameterValue";
constexpr const char* kProbe = "_non_existent";
constexpr const char* kVersion = "CRB_VerifyClientServerVersion";
constexpr const char* kChallenge = "CRB_AquireChallenge";
constexpr const char* kRegister = "CRB_Register";
constexpr const char* kReset = "CRB_ResetTimeout";
constexpr const char* kUnregister = "CRB_Unregister";
constexpr const char* kAlive = "CRB_ClientKeepAlive";
constexpr const char* kLoad = "CRB_GetMyAuthorizationsFromMemory";
constexpr const char* kJobLevel = "CRB_IsJobLevelAuthExist";
constexpr const char* kUpdate = "CRB_UpdateUserPassword";
constexpr const char* kUpdateToo = "CRB_RegisterAndUpdatePassword";
constexpr const char* kAnnotation = "CRB_isAnnotationRequired";
constexpr const char* kQueries = "CRB_GetUserAuthQueriesEx";

}  // namespace vq::test

#endif  // VQ_TESTS_RELIABILITY_REMOTEFUNCTIONS_H
