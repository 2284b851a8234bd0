#include <simulator/Raise.h>

#include <algorithm>
#include <initializer_list>
#include <string>

#include <simulator/Site.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::sim {
namespace {

struct Named {
  std::string name;
  void (*raise)(const Fault&);
};

template <typename Exception>
void RaiseSystem(const Fault& fault) {
  const auto completed = fault.completed == "YES"     ? CORBA::COMPLETED_YES
                         : fault.completed == "MAYBE" ? CORBA::COMPLETED_MAYBE
                                                      : CORBA::COMPLETED_NO;
  throw Exception(fault.minor, completed);
}

template <typename Exception>
void RaiseEmpty(const Fault& /*fault*/) {
  throw Exception();
}

template <typename Exception>
void RaiseText(const Fault& fault) {
  throw Exception(fault.message.c_str());
}

template <typename Exception>
void RaiseTexts(const Fault& fault) {
  throw Exception(fault.message.c_str(), fault.reason.c_str());
}

void RaiseFail(const Fault& fault) {
  throw VQCorbaSystemConfiguration::FAIL(fault.result);
}

// The system exceptions, by the names of the standard, and the user exceptions.
template <typename... System>
std::vector<Named> Table(std::initializer_list<Named> user) {
  std::vector<Named> all{{System()._name(), RaiseSystem<System>}...};
  all.insert(all.end(), user);
  return all;
}

const std::vector<Named>& AllExceptions() {
  using namespace CORBA;
  static const std::vector<Named> kAll =
      Table<UNKNOWN, BAD_PARAM, NO_MEMORY, IMP_LIMIT, COMM_FAILURE, INV_OBJREF, OBJECT_NOT_EXIST,
            NO_PERMISSION, INTERNAL, MARSHAL, INITIALIZE, NO_IMPLEMENT, BAD_TYPECODE, BAD_OPERATION,
            NO_RESOURCES, NO_RESPONSE, PERSIST_STORE, BAD_INV_ORDER, TRANSIENT, FREE_MEM, INV_IDENT,
            INV_FLAG, INTF_REPOS, BAD_CONTEXT, OBJ_ADAPTER, DATA_CONVERSION, TRANSACTION_REQUIRED,
            TRANSACTION_ROLLEDBACK, INVALID_TRANSACTION, INV_POLICY, CODESET_INCOMPATIBLE, REBIND,
            TIMEOUT, TRANSACTION_UNAVAILABLE, TRANSACTION_MODE, BAD_QOS>(
          {{"USER_NOT_FOUND", RaiseTexts<USER_NOT_FOUND>},
           {"USER_NOT_AUTHORIZED", RaiseTexts<USER_NOT_AUTHORIZED>},
           {"DB_CONNECTION_ERROR", RaiseText<DB_CONNECTION_ERROR>},
           {"VQ_SERVICE_NOT_SUPPORTED", RaiseEmpty<VQ_SERVICE_NOT_SUPPORTED>},
           {"VQ_SERVICE_UNAVAILABLE", RaiseText<VQ_SERVICE_UNAVAILABLE>},
           {"OPERATION_NOT_SUPPORTED", RaiseText<OPERATION_NOT_SUPPORTED>},
           {"INVALID_ACTION_NAME", RaiseEmpty<QCSCorbaUsersManager::INVALID_ACTION_NAME>},
           {"PARAMETER_NOT_FOUND", RaiseEmpty<VQCorbaSystemConfiguration::PARAMETER_NOT_FOUND>},
           {"INVALID_ARGUMENT", RaiseTexts<QCSCorbaTerm::INVALID_ARGUMENT>},
           {"FAIL", RaiseFail}});
  return kAll;
}

}  // namespace

std::vector<std::string_view> ExceptionNames() {
  std::vector<std::string_view> names;
  for (const Named& named : AllExceptions()) names.push_back(named.name);
  return names;
}

void RaiseNamed(const Fault& fault) {
  const auto found = std::ranges::find(AllExceptions(), fault.exception, &Named::name);
  if (found != AllExceptions().end()) found->raise(fault);
  throw CORBA::UNKNOWN();
}

}  // namespace vq::sim
