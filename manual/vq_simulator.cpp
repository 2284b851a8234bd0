// Writes what the manual page is made of, and the completions, for vq_simulator.
#include <manual/Pages.h>
#include <simulator/Options.h>

int main(int argc, char** argv) {
  vq::sim::Arguments arguments;
  return vq::manual::WritePages(*vq::sim::MakeProgram(arguments), VQ_VERSION, argc, argv);
}
