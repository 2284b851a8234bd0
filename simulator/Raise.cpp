#include <simulator/Raise.h>

#include <algorithm>
#include <array>

#include <simulator/Site.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::sim {
namespace {

struct Named {
  std::string_view name;
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

// Keyed by the standard's names, so the table needs no second list of them.
#define VQ_SYSTEM(name) Named{#name, RaiseSystem<CORBA::name>},
// clang-format off
#define VQ_ALL_SYSTEM(X)                                                                           \
  X(UNKNOWN) X(BAD_PARAM) X(NO_MEMORY) X(IMP_LIMIT) X(COMM_FAILURE) X(INV_OBJREF)                  \
  X(OBJECT_NOT_EXIST) X(NO_PERMISSION) X(INTERNAL) X(MARSHAL) X(INITIALIZE) X(NO_IMPLEMENT)        \
  X(BAD_TYPECODE) X(BAD_OPERATION) X(NO_RESOURCES) X(NO_RESPONSE) X(PERSIST_STORE)                 \
  X(BAD_INV_ORDER) X(TRANSIENT) X(FREE_MEM) X(INV_IDENT) X(INV_FLAG) X(INTF_REPOS) X(BAD_CONTEXT)  \
  X(OBJ_ADAPTER) X(DATA_CONVERSION) X(TRANSACTION_REQUIRED) X(TRANSACTION_ROLLEDBACK)              \
  X(INVALID_TRANSACTION) X(INV_POLICY) X(CODESET_INCOMPATIBLE) X(REBIND) X(TIMEOUT)                \
  X(TRANSACTION_UNAVAILABLE) X(TRANSACTION_MODE) X(BAD_QOS)
// clang-format on
constexpr std::array kExceptions = {
    VQ_ALL_SYSTEM(VQ_SYSTEM) Named{"USER_NOT_FOUND", RaiseTexts<USER_NOT_FOUND>},
    Named{"USER_NOT_AUTHORIZED", RaiseTexts<USER_NOT_AUTHORIZED>},
    Named{"DB_CONNECTION_ERROR", RaiseText<DB_CONNECTION_ERROR>},
    Named{"VQ_SERVICE_NOT_SUPPORTED", RaiseEmpty<VQ_SERVICE_NOT_SUPPORTED>},
    Named{"VQ_SERVICE_UNAVAILABLE", RaiseText<VQ_SERVICE_UNAVAILABLE>},
    Named{"OPERATION_NOT_SUPPORTED", RaiseText<OPERATION_NOT_SUPPORTED>},
    Named{"INVALID_ACTION_NAME", RaiseEmpty<QCSCorbaUsersManager::INVALID_ACTION_NAME>},
    Named{"PARAMETER_NOT_FOUND", RaiseEmpty<VQCorbaSystemConfiguration::PARAMETER_NOT_FOUND>},
    Named{"INVALID_ARGUMENT", RaiseTexts<QCSCorbaTerm::INVALID_ARGUMENT>},
    Named{"FAIL", RaiseFail}};
#undef VQ_SYSTEM
#undef VQ_ALL_SYSTEM

}  // namespace

std::vector<std::string_view> ExceptionNames() {
  std::vector<std::string_view> names;
  for (const Named& named : kExceptions) names.push_back(named.name);
  return names;
}

void RaiseNamed(const Fault& fault) {
  const auto found = std::find_if(kExceptions.begin(), kExceptions.end(), [&](const Named& named) {
    return named.name == fault.exception;
  });
  if (found != kExceptions.end()) found->raise(fault);
  throw CORBA::UNKNOWN();
}

}  // namespace vq::sim
