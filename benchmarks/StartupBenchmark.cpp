// What it costs to start `vqclient --version`, beside an empty program that is linked to the same
// libraries, and beside one linked to those libraries without this one. The second peer shows what
// this library does when it is loaded, which the first one does as well.
//
// What is asked: at most 1.2 times the first peer. The programs take turns, run by run, and the
// processor time of each process counts, so that other work on the machine falls on both alike.

#include <algorithm>
#include <cstddef>
#include <exception>
#include <vector>

#include <benchmark/benchmark.h>

#include <benchmarks/SpawnedProgram.h>

namespace {

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The time is that of vqclient; "peer_s" is that of the empty program and "ratio" compares them.
void Version(benchmark::State& state, const char* peer) {
  try {
    vq::RunProgram({VQ_CLIENT, "--version"});  // the first run of each brings the files into memory
    vq::RunProgram({peer});
    std::vector<double> ours, theirs;
    for (auto _ : state) {
      ours.push_back(vq::RunProgram({VQ_CLIENT, "--version"}).processor);
      theirs.push_back(vq::RunProgram({peer}).processor);
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
