#include <client/Suggestion.h>

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace vqclient {
namespace {

// The number of characters to insert, remove or replace (Levenshtein).
std::size_t Distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
    }
  }
  return row.back();
}

}  // namespace

std::string Nearest(const std::string& word, const std::vector<std::string>& names) {
  const auto nearer = [&](const std::string& one, const std::string& other) {
    return Distance(word, one) < Distance(word, other);
  };
  const auto found = std::min_element(names.begin(), names.end(), nearer);
  if (found == names.end() || Distance(word, *found) > 1 + word.size() / 3) return "";
  return "; did you mean '" + *found + "'?";
}

std::string Explain(const CLI::App& program, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = program.remaining(true);
  if (unknown.empty()) return error.what();
  const std::string& word = unknown.front();
  const CLI::App* app = &program;
  std::vector<std::string> names;
  for (;;) {
    for (const CLI::Option* const option : app->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    const auto below = app->get_subcommands();
    if (below.empty()) break;
    app = below.front();
  }
  if (word.starts_with('-')) return "unknown option '" + word + "'" + Nearest(word, names);
  const auto commands = app->get_subcommands([](const CLI::App*) { return true; });
  if (commands.empty()) return "unexpected argument '" + word + "'";
  names.clear();
  for (const CLI::App* const command : commands) names.push_back(command->get_name());
  return "unknown command '" + word + "'" + Nearest(word, names);
}

}  // namespace vqclient
