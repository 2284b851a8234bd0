// Writes the manual page and the completion of vq_simulator.
#include <manual/Pages.h>
#include <simulator/Options.h>

int main(int argc, char** argv) {
  vq::sim::Arguments arguments;
  return vq::manual::WritePages(*vq::sim::MakeProgram(arguments), argc, argv);
}
