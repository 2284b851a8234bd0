// Raises CORBA exceptions by name: every system exception, and the wire's user exceptions.
//
// Thread contract: no state; any thread.
#ifndef VQ_SIMULATOR_RAISE_H
#define VQ_SIMULATOR_RAISE_H

#include <string_view>
#include <vector>

namespace vq::sim {

struct Fault;

// The names that RaiseNamed knows, such as "TRANSIENT" and "USER_NOT_FOUND".
std::vector<std::string_view> ExceptionNames();

// Raises the exception that the fault names, with the minor code and completion, or the message,
// reason and number that it holds. A name that is not known raises UNKNOWN.
[[noreturn]] void RaiseNamed(const Fault& fault);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_RAISE_H
