// Logs calls and answers, one JSON object a line, so that a test can count remote calls and see
// their arguments. docs/simulator.md describes the lines.
//
// No password and no response to a challenge is logged: see Call::Secret.
//
// Thread safety: any thread; lines are not interleaved.
#ifndef VQ_SIMULATOR_CALLLOG_H
#define VQ_SIMULATOR_CALLLOG_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

#include <support/os_toolkit/os_file_system.h>

namespace vq::sim {

// Bytes of a client's string that are logged, since it may have hundreds of megabytes.
inline constexpr std::size_t kLongestLogged = 65'536;

class CallLog {
 public:
  // Appends to this file from now on, readable by its owner only. Without it nothing is logged.
  // Raises std::system_error when the file does not open.
  void Open(const std::filesystem::path& path);
  // Writes one line; puts a number and the time before its members. Returns the number.
  std::uint64_t Write(const nlohmann::ordered_json& line);
  // Counts one call of an operation.
  void Count(const std::string& operation);
  // Calls by operation since the start or the last ClearCounts.
  std::map<std::string, std::uint64_t> Counts();
  void ClearCounts();

 private:
  std::mutex m_mutex;
  Descriptor m_file;
  std::uint64_t m_lines = 0;
  std::map<std::string, std::uint64_t> m_counts;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CALLLOG_H
