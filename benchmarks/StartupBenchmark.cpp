// What it costs to start `vqclient --version`, beside an empty program that is linked to the same
// libraries, and beside one linked to those libraries without this one. The second peer shows what
// this library does when it is loaded, which the first one does as well.
//
// The programs take turns, run by run, and the processor time of each process counts, so that other
// load on the host affects both alike.

#include <exception>

#include <benchmark/benchmark.h>

#include <benchmarks/Comparison.h>
#include <benchmarks/SpawnedProgram.h>

namespace {

void Version(benchmark::State& state, const char* peer) {
  try {
    vq::RunProgram({VQ_CLIENT, "--version"});  // the first run of each brings the files into memory
    vq::RunProgram({peer});
    vq::Compare(
        state,
        [] {
          return vq::RunProgram({VQ_CLIENT, "--version"}).processor;
        },
        [&] { return vq::RunProgram({peer}).processor; });
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
