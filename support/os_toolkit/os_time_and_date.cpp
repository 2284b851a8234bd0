#include <support/os_toolkit/os_time_and_date.h>

#include <atomic>
#include <chrono>

namespace {

std::atomic<os_time_and_date::clock_function> replacedClock{nullptr};

os_time_period SystemClock() {
  using std::chrono::nanoseconds;
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return os_date().start() +
         os_time_period(0, std::chrono::duration_cast<nanoseconds>(sinceEpoch).count());
}

}  // namespace

os_time_and_date::os_time_and_date(os_time time, os_date date)
    : os_time_and_date(time, date, os_time_zone::greenwich()) {}

os_time_and_date::os_time_and_date(os_time time, os_date date, const os_time_zone& zone) {
  const os_time_period wallClock = date.start() + time.since_midnight();
  m_utc = zone.to_utc(wallClock);
  SetWallClock(wallClock);
}

os_time_and_date::os_time_and_date(os_time_period utc, const os_time_zone& zone) : m_utc(utc) {
  SetWallClock(zone.to_wall_clock(utc));
}

os_time_and_date os_time_and_date::now() {
  const clock_function clock = replacedClock.load();
  return {clock != nullptr ? clock() : SystemClock(), os_time_zone::greenwich()};
}

os_time_and_date::clock_function os_time_and_date::set_clock(clock_function clock) noexcept {
  return replacedClock.exchange(clock);
}

void os_time_and_date::SetWallClock(os_time_period wallClock) {
  m_date = os_date::from_julian_day(wallClock.to_days());
  m_time = os_time(wallClock - m_date.start());
}
