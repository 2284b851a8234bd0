// What it costs to start `vqclient --version`, beside an empty program that is linked to the same
// libraries, and beside one linked to those libraries without this one. The second peer shows what
// this library does when it is loaded, which the first one does as well.
//
// What is asked: at most 1.2 times the first peer. The programs take turns, run by run, and the
// processor time of each process counts, so that other work on the machine falls on both alike.

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <benchmark/benchmark.h>

namespace {

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Runs a program to its end without output. Returns the processor time that it took.
double Run(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::array<char*, 1> environment{};  // empty, so that nothing in it switches the log on

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failure =
      posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("can't start " + arguments[0]);

  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) {
    throw std::runtime_error(arguments[0] + " failed");
  }
  return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The time is that of vqclient; "peer_s" is that of the empty program and "ratio" compares them.
void Version(benchmark::State& state, const char* peer) {
  try {
    Run({VQ_CLIENT, "--version"});  // the first run of each brings the files into memory
    Run({peer});
    std::vector<double> ours, theirs;
    for (auto _ : state) {
      ours.push_back(Run({VQ_CLIENT, "--version"}));
      theirs.push_back(Run({peer}));
      state.SetIterationTime(ours.back());
    }
    state.counters["peer_s"] = Median(theirs);
    state.counters["ratio"] = Median(ours) / Median(theirs);
  } catch (const std::exception& failure) {
    state.SkipWithError(failure.what());
  }
}

BENCHMARK_CAPTURE(Version, same_libraries, VQ_EMPTY)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);
BENCHMARK_CAPTURE(Version, without_ours, VQ_EMPTY_WITHOUT)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);

}  // namespace

BENCHMARK_MAIN();
