// Writes the manual page and the completion of vqclient.
#include <client/Program.h>
#include <manual/Pages.h>

int main(int argc, char** argv) {
  vqclient::CommandLine line;
  int exitCode = 0;
  return vq::manual::WritePages(*vqclient::MakeProgram(line, exitCode), argc, argv);
}
