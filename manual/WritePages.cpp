#include <fstream>
#include <iostream>
#include <iterator>

#include <CLI/CLI.hpp>

#include <manual/Pages.h>

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

int WritePages(const CLI::App& program, int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: " << argv[0] << " VERSION MORE DIRECTORY\n";
    return 2;
  }
  std::ifstream file(argv[2]);
  const std::string more{std::istreambuf_iterator<char>(file), {}};
  if (more.empty()) {
    std::cerr << argv[2] << ": is empty or cannot be read\n";
    return 1;
  }
  const std::vector<Command> commands = CommandsOf(program);
  const std::string place = std::string(argv[3]) + "/" + program.get_name();
  const bool written = Write(place + ".1", ManualPage(commands, argv[1], more)) &&
                       Write(place + ".bash", BashCompletion(commands)) &&
                       Write(place + ".zsh", ZshCompletion(commands)) &&
                       Write(place + ".fish", FishCompletion(commands));
  return written ? 0 : 1;
}

}  // namespace vq::manual
