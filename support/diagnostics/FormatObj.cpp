#include <support/diagnostics/FormatObj.h>

#include <iterator>

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
  } catch (...) {  // A line that cannot be written must not end the work that it tells of.
  }
}

FormatObj& FormatObj::operator<<(std::string_view text) {
  m_text.append(text);
  return *this;
}

FormatObj& FormatObj::operator<<(const char* text) {
  if (text != nullptr) m_text.append(text);
  return *this;
}

FormatObj& FormatObj::operator<<(char character) {
  m_text.push_back(character);
  return *this;
}

FormatObj& FormatObj::operator<<(bool value) {
  return *this << (value ? '1' : '0');
}

FormatObj& FormatObj::operator<<(double value) {
  fmt::format_to(std::back_inserter(m_text), "{}", value);
  return *this;
}

FormatObj& FormatObj::AppendSigned(std::int64_t value) {
  fmt::format_to(std::back_inserter(m_text), "{}", value);
  return *this;
}

FormatObj& FormatObj::AppendUnsigned(std::uint64_t value) {
  fmt::format_to(std::back_inserter(m_text), "{}", value);
  return *this;
}
