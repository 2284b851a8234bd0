// Writes down what the simulator was asked and what it answered, one JSON object a line, so that a
// test can count remote calls and see their arguments. docs/simulator.md describes the lines.
//
// No password and no response to a challenge gets here: see Call::Secret.
//
// Thread contract: any thread; a line is written whole.
#ifndef VQ_SIMULATOR_CALLLOG_H
#define VQ_SIMULATOR_CALLLOG_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

#include <support/os_toolkit/os_file_system.h>
#include <nlohmann/json.hpp>

namespace vq::sim {

// So much of what a client sends gets into a line, since that may be hundreds of megabytes.
inline constexpr std::size_t kLongestLogged = 65'536;

class CallLog {
 public:
  // Appends to this file from now on, readable by its owner only. Without it lines go nowhere.
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
