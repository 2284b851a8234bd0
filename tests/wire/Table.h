// Reads the tables beside the tests: "#" opens a comment, and a line that is indented by six or
// more goes on with the one before. Thread contract: none; tests are single-threaded.
#ifndef VQ_TESTS_WIRE_TABLE_H
#define VQ_TESTS_WIRE_TABLE_H

#include <fstream>
#include <string>
#include <vector>

// The table's lines, joined where they go on. Empty when there is no such file.
inline std::vector<std::string> ReadTable(const std::string& name) {
  std::ifstream file(std::string(VQ_WIRE_TABLES) + "/" + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent >= 6 && !lines.empty()) {
      lines.back() += " " + line.substr(indent);
    } else {
      lines.push_back(line);
    }
  }
  return lines;
}

#endif  // VQ_TESTS_WIRE_TABLE_H
