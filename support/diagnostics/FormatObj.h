// Composes one line of the log from pieces and writes it when it goes out of scope.
//
//   const TDiagRegister module("Restrictions");
//   VQ_LOG(module, 5) << "Restricted to " << 12 << " entries of " << user;
//
// Without enough memory a line is cut short: composing one never throws, so that the log does not
// change a program's behaviour. Numbers print in decimal, bools as 1 and 0, floating point values
// in the shortest form that reads back the same. VQ_LOG (TDiag.h) makes one. A type of another
// layer defines its own operator<< (FormatObj&, const T&) beside that type.
#ifndef VQ_SUPPORT_DIAGNOSTICS_FORMATOBJ_H
#define VQ_SUPPORT_DIAGNOSTICS_FORMATOBJ_H

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include <support/Export.h>

class TDiagRegister;

class VQ_CLIENT_COMMON_API FormatObj {
 public:
  // Begins a line of that level and class. `scope`: the function's qualified name, which must
  // outlive the object; may be null. Used by VQ_LOG.
  FormatObj(const TDiagRegister& module, const char* scope, int level, std::uint32_t lineClass);
  ~FormatObj();  // writes the line; never throws
  FormatObj(const FormatObj&) = delete;
  FormatObj& operator=(const FormatObj&) = delete;

  // Append to the line: a string, a character, 1 or 0 for a bool, a number in decimal. Return the
  // line.
  FormatObj& operator<<(std::string_view text);
  FormatObj& operator<<(const std::string& text) { return *this << std::string_view(text); }
  FormatObj& operator<<(const char* text);  // null prints as nothing
  FormatObj& operator<<(char character);
  FormatObj& operator<<(bool value);
  FormatObj& operator<<(double value);
  template <std::integral T>
  FormatObj& operator<<(T value) {
    if constexpr (std::signed_integral<T>) {
      return AppendSigned(value);
    } else {
      return AppendUnsigned(value);
    }
  }

 private:
  FormatObj& AppendSigned(std::int64_t value);
  FormatObj& AppendUnsigned(std::uint64_t value);

  const TDiagRegister& m_module;
  const char* m_scope;
  int m_level;
  std::uint32_t m_class;
  std::string m_text;
};

#endif  // VQ_SUPPORT_DIAGNOSTICS_FORMATOBJ_H
