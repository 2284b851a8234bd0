// Writes what the manual page is made of, and the completions, for vqclient.
#include <client/Commands.h>
#include <manual/Pages.h>

int main(int argc, char** argv) {
  vqclient::CommandLine line;
  return vq::manual::WritePages(*vqclient::MakeProgram(line), VQ_VERSION, argc, argv);
}
