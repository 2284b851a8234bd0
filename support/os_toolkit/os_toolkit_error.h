// The error of the os_ toolkit: a date that does not exist, a period or an instant outside the
// range of its type.
//
//   try {
//     const os_date date(2023, 2, 29);
//   } catch (const os_toolkit_error& error) {
//     error.what();  // "no such date: 2023-02-29"
//   }
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_TOOLKIT_ERROR_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_TOOLKIT_ERROR_H

#include <stdexcept>
#include <string>

#include <support/Export.h>

// A date, time or period that does not exist.
class VQ_CLIENT_COMMON_API os_toolkit_error : public std::runtime_error {
 public:
  // `what`: why, in English, for the log.
  explicit os_toolkit_error(const std::string& what);
  ~os_toolkit_error() override;
  os_toolkit_error(const os_toolkit_error&) = default;
  os_toolkit_error& operator=(const os_toolkit_error&) = default;

  // Throw from inline code without constructing the text there.
  [[noreturn]] static void raise_overflow();
  [[noreturn]] static void raise_no_such_date(long long year, long long month, long long day);
  [[noreturn]] static void raise_no_such_time(long long hour, long long minute, long long second);
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_TOOLKIT_ERROR_H
