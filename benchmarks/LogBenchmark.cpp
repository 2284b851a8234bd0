// Disabled log statements beside one load and one branch, which is what they should cost, in the
// two usual states of a program: without a sink, and with one that takes only errors. An empty loop
// shows the cost of the measurement itself.

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include <benchmark/benchmark.h>

#include <support/diagnostics/TDiag.h>

namespace {

std::size_t allocations = 0;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace {

TDiagRegister diagModule("LogBenchmark");

std::atomic<int> bareLevel{-1};
std::size_t evaluated = 0;

// Long enough to need the heap.
std::string Evaluated() {
  ++evaluated;
  return "an argument that is built when the line is written";
}

// The log with a sink for errors when the benchmark's argument is 1, without any when it is 0.
class Sinks {
 public:
  explicit Sinks(const benchmark::State& state) {
    if (state.range(0) == 1) TDiag::Instance()->AddCallbackSink([](const TDiagLine&) {});
  }
  ~Sinks() { TDiag::Instance()->RemoveAllSinks(); }
};

// Times `line` and reports what happened beside the time.
template <typename Line>
void Measure(benchmark::State& state, Line line) {
  const std::size_t allocationsBefore = allocations;
  evaluated = 0;
  for (auto _ : state) {
    line();
    benchmark::ClobberMemory();  // so that the level is loaded for every line
  }
  state.counters["allocations"] = static_cast<double>(allocations - allocationsBefore);
  state.counters["evaluated"] = static_cast<double>(evaluated);
}

void Nothing(benchmark::State& state) {
  Measure(state, [] {});
}

void LoadAndBranch(benchmark::State& state) {
  Measure(state, [] {
    if (bareLevel.load(std::memory_order_relaxed) >= 5) [[unlikely]]
      Evaluated();
  });
}

void DisabledLine(benchmark::State& state) {
  const Sinks sinks(state);
  Measure(state, [] { VQ_LOG(diagModule, 5) << "text " << 7 << Evaluated(); });
}

// A whole function of the library: its scope, which would write "Enter", and a line.
void DisabledScopeAndLine(benchmark::State& state) {
  const Sinks sinks(state);
  Measure(state, [] {
    const TDiagFunc diag(diagModule, "LogBenchmark::DisabledScopeAndLine");
    VQ_LOG(diag, 5) << "text " << 7 << Evaluated();
  });
}

BENCHMARK(Nothing);
BENCHMARK(LoadAndBranch);
BENCHMARK(DisabledLine)->Arg(0)->Arg(1);
BENCHMARK(DisabledScopeAndLine)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
