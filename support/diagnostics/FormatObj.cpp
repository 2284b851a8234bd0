#include <support/diagnostics/FormatObj.h>

#include <array>
#include <new>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>

FormatObj::FormatObj(const TDiagRegister& module, const char* scope, int level,
                     std::uint32_t lineClass)
    : m_module(module), m_scope(scope), m_level(level), m_class(lineClass) {}

FormatObj::~FormatObj() {
  try {
    TDiag::Instance()->Write({m_level, m_class, m_module.Name(),
                              m_scope != nullptr ? std::string_view(m_scope) : std::string_view(),
                              m_text});
  } catch (...) {  // A line that cannot be written must not end the work that it reports.
  }
}

FormatObj& FormatObj::operator<<(std::string_view text) {
  try {
    m_text += text;
  } catch (const std::bad_alloc&) {  // Destructors log, too: the line continues without it.
  }
  return *this;
}

FormatObj& FormatObj::operator<<(const char* text) {
  return *this << (text != nullptr ? std::string_view(text) : std::string_view());
}

FormatObj& FormatObj::operator<<(char character) {
  return *this << std::string_view(&character, 1);
}

FormatObj& FormatObj::operator<<(bool value) {
  return *this << (value ? '1' : '0');
}

FormatObj& FormatObj::operator<<(double value) {
  std::array<char, 32> digits{};  // at most 24 are written
  char* const end = fmt::format_to(digits.data(), "{}", value);
  return *this << std::string_view(digits.data(), end);
}

FormatObj& FormatObj::AppendSigned(std::int64_t value) {
  return *this << fmt::format_int(value).c_str();
}

FormatObj& FormatObj::AppendUnsigned(std::uint64_t value) {
  return *this << fmt::format_int(value).c_str();
}
