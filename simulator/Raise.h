// Raises CORBA exceptions by name: every system exception, and the wire's user exceptions.
#ifndef VQ_SIMULATOR_RAISE_H
#define VQ_SIMULATOR_RAISE_H

#include <string_view>
#include <vector>

namespace vq::sim {

struct Fault;

// The names that RaiseNamed accepts, such as "TRANSIENT" and "USER_NOT_FOUND".
std::vector<std::string_view> ExceptionNames();

// Raises the exception that the fault names, with its minor code and completion, or its message,
// reason and number. An unknown name raises UNKNOWN.
[[noreturn]] void RaiseNamed(const Fault& fault);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_RAISE_H
