#include <support/os_toolkit/os_toolkit_error.h>

#include <array>
#include <cstdio>

namespace {

// `format` takes three long long values.
template <std::size_t kSize>
std::string Fill(const char (&format)[kSize], long long first, long long second, long long third) {
  std::array<char, kSize + 60> text{};
  std::snprintf(text.data(), text.size(), format, first, second, third);
  return text.data();
}

}  // namespace

os_toolkit_error::os_toolkit_error(const std::string& what) : std::runtime_error(what) {}
os_toolkit_error::~os_toolkit_error() = default;

void os_toolkit_error::raise_overflow() {
  throw os_toolkit_error("a time or a date leaves its range");
}

void os_toolkit_error::raise_no_such_date(long long year, long long month, long long day) {
  throw os_toolkit_error("no such date: " + Fill("%04lld-%02lld-%02lld", year, month, day));
}

void os_toolkit_error::raise_no_such_time(long long hour, long long minute, long long second) {
  throw os_toolkit_error("no such time: " + Fill("%02lld:%02lld:%02lld", hour, minute, second));
}
