#include <client/Output.h>

#include <algorithm>
#include <iostream>

#include <nlohmann/json.hpp>

#include <client/ExitCodes.h>

namespace vqclient {
namespace {

bool printed = false;
std::string errors;  // all so far

// A terminal obeys control characters, which a server or a naming service may send.
std::string Printable(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    const bool endsLine = c == '\n' || (c == '\r' && text[i + 1] == '\n');
    const bool isPair = c == 0xC2 && (text[i + 1] & 0xE0) == 0x80;  // U+0080 to U+009F
    if (isPair) text.erase(i, 1);
    if (isPair || (c < ' ' && c != '\t' && !endsLine) || c == 0x7F) text[i] = '?';
  }
  return text;
}

}  // namespace

OutputForm& Form() {
  static OutputForm form;
  return form;
}

void PrintError(const std::string& message) {
  // Indented, since a server's text could imitate a line of the log, which may be there, too.
  std::cerr << "vqclient: " << Replaced(Printable(message), "\n", "\n  ") << '\n';
  errors += (errors.empty() ? "" : "\n") + message;
}

void PrintText(const std::string& text) {
  if (!Form().json) std::cout << Printable(text);
}

void PrintLine(const std::string& line) {
  if (!Form().quiet) PrintText(line + '\n');
}

void PrintJson(const nlohmann::json& data, int indent) {
  if (!Form().json) return;
  printed = true;
  std::cout << data.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

std::string Padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

void PrintRows(const nlohmann::json& rows,
               const std::vector<std::pair<const char*, std::size_t>>& columns) {
  PrintJson(rows);
  for (const nlohmann::json& row : rows) {
    for (const auto& [name, width] : columns) {
      const nlohmann::json& value = row[name];
      PrintText(Padded(value.is_string()    ? value.get<std::string>()
                       : value.is_null()    ? "-"
                       : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                                            : value.dump(),
                       width));
    }
    PrintText("\n");
  }
}

int FinishOutput(int exitCode) {
  if (exitCode != kSuccess && !printed) PrintJson({{"error", errors}, {"exitCode", exitCode}});
  if (std::cout.flush()) return exitCode;
  PrintError("stdout cannot be written");
  return exitCode == kSuccess ? kRefused : exitCode;
}

}  // namespace vqclient
