// What vqclient prints: data on stdout, messages on stderr.
//
// With --json the data is JSON, also that of a failure. With --quiet the only messages are errors,
// and the only data is what was asked for. In text a question mark stands for each control
// character other than tabs and line ends.
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

// The form of this process; the options --json and --quiet set it.
OutputForm& Form();

// Prints an error to stderr.
void PrintError(const std::string& message);

// Each prints on stdout in one form and nothing in the other: text without --json; a line without
// --json and --quiet; data with --json, for `indent` -1 on one line. In data, bytes that are not
// UTF-8 are replaced.
void PrintText(const std::string& text);
void PrintLine(const std::string& line);
void PrintJson(const nlohmann::json& data, int indent = 2);

// A text with blanks up to that width.
std::string Padded(std::string text, std::size_t width);
// A text with `to` in place of every `from`.
std::string Replaced(std::string text, const std::string& from, const std::string& to);

// Prints a list of objects: as JSON, or as text with a line each. `columns`: the names of the
// values in a line, and the width of each.
void PrintRows(const nlohmann::json& rows,
               const std::vector<std::pair<const char*, std::size_t>>& columns);

// Ends the output. With --json, a failure without data prints {"error": the errors, "exitCode":
// ...}. Returns `exitCode`, or the code of a failure when stdout cannot be written.
int FinishOutput(int exitCode);

}  // namespace vqclient

#endif  // VQ_CLIENT_OUTPUT_H
