// Any vector of arguments is split; every token is found again as a switch, a name or a value, and
// what is asked for is what is stored. Input: a byte of flags, then the arguments, each ended by a
// zero byte.

#include <iostream>
#include <vector>

#include <fuzz/Require.h>
#include <vq_client_common/environment/CmdParser.h>

namespace {

class Parser : public CmdParser {
 public:
  explicit Parser(bool caseSensitive) : CmdParser(caseSensitive, true) {}
};

std::vector<std::string> Arguments(const char* text, std::size_t size) {
  std::vector<std::string> arguments(1);
  for (std::size_t i = 0; i < size; ++i) {
    if (text[i] == '\0') {
      arguments.emplace_back();
    } else {
      arguments.back().push_back(text[i]);
    }
  }
  return arguments;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const bool caseSensitive = (data[0] & 1) != 0;
  std::vector<std::string> arguments = Arguments(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::vector<char*> vector;
  for (std::string& argument : arguments) vector.push_back(argument.data());

  std::cout.setstate(std::ios::failbit);  // the parser's end prints
  Parser parser(caseSensitive);
  parser.SetCmdLineArgs(static_cast<int>(vector.size()), vector.data());
  std::string unused;
  vq::Require(parser.parse(unused));
  vq::Require(parser.params().size() < arguments.size());
  for (const auto& [name, value] : parser.params()) {
    const std::string first = parser.param(name, "");
    vq::Require(first == parser.params().lower_bound(name)->second || !caseSensitive);
    vq::Require(!value.starts_with('-'));
  }
  for (const std::string& argument : arguments) parser.is_switch_on(argument);
  parser.diag_print();
  return 0;
}
