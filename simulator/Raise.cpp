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
#define VQ_SYSTEM(name)               \
  Named {                             \
#name, RaiseSystem < CORBA::name> \
  }
constexpr std::array kExceptions = {
    VQ_SYSTEM(UNKNOWN),
    VQ_SYSTEM(BAD_PARAM),
    VQ_SYSTEM(NO_MEMORY),
    VQ_SYSTEM(IMP_LIMIT),
    VQ_SYSTEM(COMM_FAILURE),
    VQ_SYSTEM(INV_OBJREF),
    VQ_SYSTEM(OBJECT_NOT_EXIST),
    VQ_SYSTEM(NO_PERMISSION),
    VQ_SYSTEM(INTERNAL),
    VQ_SYSTEM(MARSHAL),
    VQ_SYSTEM(INITIALIZE),
    VQ_SYSTEM(NO_IMPLEMENT),
    VQ_SYSTEM(BAD_TYPECODE),
    VQ_SYSTEM(BAD_OPERATION),
    VQ_SYSTEM(NO_RESOURCES),
    VQ_SYSTEM(NO_RESPONSE),
    VQ_SYSTEM(PERSIST_STORE),
    VQ_SYSTEM(BAD_INV_ORDER),
    VQ_SYSTEM(TRANSIENT),
    VQ_SYSTEM(FREE_MEM),
    VQ_SYSTEM(INV_IDENT),
    VQ_SYSTEM(INV_FLAG),
    VQ_SYSTEM(INTF_REPOS),
    VQ_SYSTEM(BAD_CONTEXT),
    VQ_SYSTEM(OBJ_ADAPTER),
    VQ_SYSTEM(DATA_CONVERSION),
    VQ_SYSTEM(TRANSACTION_REQUIRED),
    VQ_SYSTEM(TRANSACTION_ROLLEDBACK),
    VQ_SYSTEM(INVALID_TRANSACTION),
    VQ_SYSTEM(INV_POLICY),
    VQ_SYSTEM(CODESET_INCOMPATIBLE),
    VQ_SYSTEM(REBIND),
    VQ_SYSTEM(TIMEOUT),
    VQ_SYSTEM(TRANSACTION_UNAVAILABLE),
    VQ_SYSTEM(TRANSACTION_MODE),
    VQ_SYSTEM(BAD_QOS),
    Named{"USER_NOT_FOUND", RaiseTexts<USER_NOT_FOUND>},
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
