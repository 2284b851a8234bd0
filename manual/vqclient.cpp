// Writes what the manual page is made of, and the completions, for vqclient.
#include <client/Program.h>
#include <manual/Pages.h>

int main(int argc, char** argv) {
  vqclient::CommandLine line;
  int exitCode = 0;
  return vq::manual::WritePages(*vqclient::MakeProgram(line, exitCode), VQ_VERSION, argc, argv);
}
