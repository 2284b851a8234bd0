#include <manual/Pages.h>

#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

namespace vq::manual {
namespace {

bool Write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file) std::cerr << path << ": cannot be written\n";
  return static_cast<bool>(file);
}

}  // namespace

int WritePages(const CLI::App& program, const std::string& version, int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " --help | --version | DIRECTORY\n";
    return 2;
  }
  const std::vector<Command> commands = CommandsOf(program);
  const std::string what = argv[1];
  if (what == "--version") {
    std::cout << program.get_name() << " (vq_client_common) " << version << '\n';
  } else if (what == "--help") {
    std::cout << HelpText(commands);
  } else {
    const std::string place = what + "/" + program.get_name();
    const bool written = Write(place + ".bash", BashCompletion(commands)) &&
                         Write(place + ".zsh", ZshCompletion(commands)) &&
                         Write(place + ".fish", FishCompletion(commands));
    return written ? 0 : 1;
  }
  return std::cout.flush() ? 0 : 1;
}

}  // namespace vq::manual
