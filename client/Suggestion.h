// Suggestions for a wrong command line.
#ifndef VQ_CLIENT_SUGGESTION_H
#define VQ_CLIENT_SUGGESTION_H

#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace vqclient {

// A parse error in one sentence. For an unknown command or option it suggests the nearest one.
std::string Explain(const CLI::App& program, const CLI::ParseError& error);

// "; did you mean 'NAME'?" with the nearest of the names; empty when none is similar.
std::string Nearest(const std::string& word, const std::vector<std::string>& names);

}  // namespace vqclient

#endif  // VQ_CLIENT_SUGGESTION_H
