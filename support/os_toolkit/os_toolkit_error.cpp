#include <support/os_toolkit/os_toolkit_error.h>

#include <fmt/format.h>

os_toolkit_error::os_toolkit_error(const std::string& what) : std::runtime_error(what) {}
os_toolkit_error::~os_toolkit_error() = default;

void os_toolkit_error::raise_overflow() {
  throw os_toolkit_error("a time or a date leaves its range");
}

void os_toolkit_error::raise_no_such_date(long long year, long long month, long long day) {
  throw os_toolkit_error(fmt::format("no such date: {:04}-{:02}-{:02}", year, month, day));
}

void os_toolkit_error::raise_no_such_time(long long hour, long long minute, long long second) {
  throw os_toolkit_error(fmt::format("no such time: {:02}:{:02}:{:02}", hour, minute, second));
}
