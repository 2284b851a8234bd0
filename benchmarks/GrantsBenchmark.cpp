// What a query of a user's rights costs: AskIndex as the library answers it, AskScan by trying
// every grant with QCSSelectionDef. GrantGenerator.h makes the grants.

#include <cstddef>
#include <vector>

#include <benchmark/benchmark.h>

#include <benchmarks/GrantGenerator.h>
#include <support/grants/GrantIndex.h>
#include <support/selection/QCSSelectionDef.h>

namespace {

constexpr std::size_t kObjects = 1000;
TDiagRegister diagModule("GrantsBenchmark");

struct ParsedGrant {
  QCSSelectionDef definition;
  int level;
};

std::vector<ParsedGrant> Parsed(std::size_t count) {
  std::vector<ParsedGrant> parsed;
  for (const vq::GeneratedGrant& grant : vq::GenerateGrants(count, 1)) {
    vq::SelectionParseError error;
    parsed.push_back({{}, grant.level});
    parsed.back().definition.Parse(grant.criteria, error);
  }
  return parsed;
}

void AskIndex(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const TDiagFunc diag(diagModule, "AskIndex");
  vq::GrantIndex index;
  for (const vq::GeneratedGrant& grant : vq::GenerateGrants(count, 1)) {
    index.Add(grant.criteria, static_cast<QCSAuthLevelEnum>(grant.level), diag);
  }
  const auto objects = vq::GenerateObjects(kObjects, count, 2);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(index.HighestFitting(objects[i]));
    i = (i + 1) % kObjects;
  }
}
BENCHMARK(AskIndex)->Arg(10'000)->Arg(100'000);

void AskScan(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto grants = Parsed(count);
  const auto objects = vq::GenerateObjects(kObjects, count, 2);
  std::size_t i = 0;
  for (auto _ : state) {
    int highest = -1;
    for (const ParsedGrant& grant : grants) {  // those that could not raise it are passed over
      if (grant.level <= highest) continue;
      if (grant.definition.DoesItFit(objects[i], false)) highest = grant.level;
    }
    benchmark::DoNotOptimize(highest);
    i = (i + 1) % kObjects;
  }
}
BENCHMARK(AskScan)->Arg(10'000);

}  // namespace

BENCHMARK_MAIN();
