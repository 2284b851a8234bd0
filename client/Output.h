// What vqclient prints: data on stdout, messages on stderr.
//
// With --json the data are JSON, also those of a failure; with --quiet there are no messages but
// errors, and no data but those that were asked for.
#ifndef VQ_CLIENT_OUTPUT_H
#define VQ_CLIENT_OUTPUT_H

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vqclient {

struct OutputForm {
  bool json = false;
  bool quiet = false;
};

// The form in force; the options of the program set it.
OutputForm& Form();

// An error, to stderr, without the tab that may end it.
void Tell(const std::string& message);

// A line on stdout; nothing with --quiet or --json.
void Say(const std::string& line);

// Data as JSON on stdout; `indent` -1 for one line. Bytes that are not UTF-8 are replaced.
void PrintJson(const nlohmann::json& data, int indent = 2);

// A list of objects as JSON, or as text with a line each: for each name its value, that wide.
void PrintRows(const nlohmann::json& rows, const std::vector<std::pair<const char*, int>>& columns);

// Ends the output. With --json, a failure without data prints {"error": the errors, "exitCode":
// ...}. Returns the exit code: the given one, or that of a failure when stdout cannot be written.
int FinishOutput(int exitCode);

}  // namespace vqclient

#endif  // VQ_CLIENT_OUTPUT_H
