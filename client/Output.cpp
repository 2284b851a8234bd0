#include <client/Output.h>

#include <iomanip>
#include <iostream>

#include <nlohmann/json.hpp>

#include <client/ExitCodes.h>

namespace vqclient {
namespace {

bool printed = false;
std::string errors;  // all so far

}  // namespace

OutputForm& Form() {
  static OutputForm form;
  return form;
}

void PrintError(const std::string& message) {
  std::cerr << "vqclient: " << message << '\n';
  errors += (errors.empty() ? "" : "\n") + message;
}

void PrintLine(const std::string& line) {
  if (!Form().quiet && !Form().json) std::cout << line << '\n';
}

void PrintJson(const nlohmann::json& data, int indent) {
  printed = true;
  std::cout << data.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void PrintRows(const nlohmann::json& rows,
               const std::vector<std::pair<const char*, int>>& columns) {
  if (Form().json) return PrintJson(rows);
  for (const nlohmann::json& row : rows) {
    for (const auto& [name, width] : columns) {
      const nlohmann::json& value = row[name];
      const std::string text = value.is_string()    ? value.get<std::string>()
                               : value.is_null()    ? "-"
                               : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                                                    : value.dump();
      std::cout << std::left << std::setw(width) << text;
    }
    std::cout << '\n';
  }
}

int FinishOutput(int exitCode) {
  if (Form().json && exitCode != kSuccess && !printed) {
    PrintJson({{"error", errors}, {"exitCode", exitCode}});
  }
  if (std::cout.flush()) return exitCode;
  PrintError("stdout cannot be written");
  return exitCode == kSuccess ? kRefused : exitCode;
}

}  // namespace vqclient
