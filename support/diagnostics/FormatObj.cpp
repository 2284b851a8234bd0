#include <support/diagnostics/FormatObj.h>

#include <iterator>
#include <new>
#include <type_traits>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>

namespace {

template <class T>
void Append(const T& piece, std::string& text) noexcept {
  try {
    if constexpr (std::is_same_v<T, std::string_view>) {
      text.append(piece);
    } else {
      fmt::format_to(std::back_inserter(text), "{}", piece);
    }
  } catch (const std::bad_alloc&) {  // The line continues without it.
  }
}

}  // namespace

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
  Append(text, m_text);
  return *this;
}

FormatObj& FormatObj::operator<<(const char* text) {
  if (text != nullptr) Append(std::string_view(text), m_text);
  return *this;
}

FormatObj& FormatObj::operator<<(char character) {
  Append(std::string_view(&character, 1), m_text);
  return *this;
}

FormatObj& FormatObj::operator<<(bool value) {
  return *this << (value ? '1' : '0');
}

FormatObj& FormatObj::operator<<(double value) {
  Append(value, m_text);
  return *this;
}

FormatObj& FormatObj::AppendSigned(std::int64_t value) {
  Append(value, m_text);
  return *this;
}

FormatObj& FormatObj::AppendUnsigned(std::uint64_t value) {
  Append(value, m_text);
  return *this;
}
