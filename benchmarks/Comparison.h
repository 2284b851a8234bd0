// Times the library and a peer in turn, and compares the medians.
#ifndef VQ_BENCHMARKS_COMPARISON_H
#define VQ_BENCHMARKS_COMPARISON_H

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>

namespace vq {

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Each of the two does its work and returns how long it took, in seconds. Which of them goes first
// changes every time. The benchmark's time is the library's; "peer_s" is the peer's, and "ratio"
// that of the medians.
template <class Library, class Peer>
void Compare(benchmark::State& state, Library library, Peer peer) {
  std::vector<double> ours;
  std::vector<double> theirs;
  for (auto _ : state) {
    const bool peerFirst = ours.size() % 2 == 0;
    if (peerFirst) theirs.push_back(peer());
    ours.push_back(library());
    if (!peerFirst) theirs.push_back(peer());
    state.SetIterationTime(ours.back());
  }
  state.counters["peer_s"] = Median(theirs);
  state.counters["ratio"] = Median(ours) / Median(theirs);
}

// The same for two pieces of work, timed by that clock.
template <class Library, class Peer>
void CompareBy(clockid_t clock, benchmark::State& state, Library library, Peer peer) {
  const auto now = [clock] {
    std::timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  };
  const auto secondsOf = [now](auto& work) {
    const double start = now();
    work();
    benchmark::ClobberMemory();
    return now() - start;
  };
  Compare(
      state, [&] { return secondsOf(library); }, [&] { return secondsOf(peer); });
}

}  // namespace vq

#endif  // VQ_BENCHMARKS_COMPARISON_H
