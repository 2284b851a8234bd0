// What vqclient prints: data on the standard output stream, words on the standard error stream.
//
// With --json the data are JSON, also those of a failure; with --quiet there are no words but
// errors and no lines but those that were asked for. Thread contract: one thread.
#ifndef VQ_CLIENT_OUTPUT_H
#define VQ_CLIENT_OUTPUT_H

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace vqclient {

struct OutputForm {
  bool json = false;
  bool quiet = false;
};

// The form in force, for the program's options to set.
OutputForm& Form();

// An error, to standard error, without the tab that may end it.
void Tell(const std::string& message);

// A line of news on standard output; nothing with --quiet or --json.
void Say(const std::string& line);

// Data as JSON on standard output; `indent` -1 for one line. Bytes that are no UTF-8 are replaced.
void PrintJson(const nlohmann::json& data, int indent = 2);

// Closes the output of a run. With --json, a failure that printed no data gets
// {"error": what was told, "exitCode": ...}. Returns the exit code: the given one, or that of a
// failure when standard output could not be written.
int FinishOutput(int exitCode);

}  // namespace vqclient

#endif  // VQ_CLIENT_OUTPUT_H
