#include <simulator/CallLog.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <fcntl.h>

#include <fmt/chrono.h>

namespace vq::sim {
namespace {

// "2024-03-01T12:00:00.123Z"
std::string Now() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
  return fmt::format("{:%FT%T}.{:03}Z", now, now.time_since_epoch().count() % 1000);
}

}  // namespace

void CallLog::Open(const std::filesystem::path& path) {
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  if (!file.IsOpen()) throw std::system_error(errno, std::generic_category(), path.string());
  const std::lock_guard lock(m_mutex);
  m_file = std::move(file);
}

std::uint64_t CallLog::Write(const nlohmann::ordered_json& line) {
  const std::lock_guard lock(m_mutex);
  ++m_lines;
  if (!m_file.IsOpen()) return m_lines;
  nlohmann::ordered_json whole = {{"line", m_lines}, {"time", Now()}};
  whole.update(line);
  // Texts off the wire need not be UTF-8.
  using Handler = nlohmann::ordered_json::error_handler_t;
  WriteAll(m_file.Get(), whole.dump(-1, ' ', false, Handler::replace) + "\n");
  return m_lines;
}

void CallLog::Count(const std::string& operation) {
  const std::lock_guard lock(m_mutex);
  ++m_counts[operation];
}

std::map<std::string, std::uint64_t> CallLog::Counts() {
  const std::lock_guard lock(m_mutex);
  return m_counts;
}

void CallLog::ClearCounts() {
  const std::lock_guard lock(m_mutex);
  m_counts.clear();
}

}  // namespace vq::sim
