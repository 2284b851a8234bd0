// The command line of vq_simulator, which the program parses and from which the manual page and the
// shell's completion are made.
#ifndef VQ_SIMULATOR_OPTIONS_H
#define VQ_SIMULATOR_OPTIONS_H

#include <memory>
#include <string>
#include <vector>

#include <CLI/App.hpp>

#include <simulator/Orb.h>

namespace vq::sim {

// Exit statuses. 86 (kDiedOnDemand) is what a fault ends with.
enum Status { kDone = 0, kBadUse = 2, kNoNaming = 3, kNoOrb = 4, kNoFile = 5 };

struct Arguments {
  std::string site;  // a file; empty: the installed sample
  std::string server = "vqserver";
  std::vector<std::string> kinds;
  std::string log;
  std::string readyFile;
  std::string control;
  bool ownNaming = false;  // start a naming service
  OrbOptions orb;
};

// `arguments` outlives the program that is returned.
std::unique_ptr<CLI::App> MakeProgram(Arguments& arguments);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_OPTIONS_H
