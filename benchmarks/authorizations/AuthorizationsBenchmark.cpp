// What a question about a user's rights costs, and what the load of the rights adds to their fetch.
//
//   AskIndex    the question as the library answers it
//   AskScan     the same by trying every grant with QCSSelectionDef
//   AskFnmatch  the same with the C library's fnmatch(3) for the patterns
//   Fetch       receiving and unmarshalling 10,000 grants over a loopback connection. The column
//               CPU is the client's own part: reading the connection and unmarshalling
//   Build       making the holder of them: parsing and indexing
//
// Goals: AskIndex on 10,000 grants 200 times faster than AskScan, on 100,000 at most twice as slow
// as on 10,000; Build at most twice the CPU time of Fetch. GrantGenerator.h makes the grants.

#include <fnmatch.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <benchmarks/authorizations/GrantGenerator.h>
#include <benchmarks/authorizations/SnapshotServer.h>
#include <support/grants/AuthLevelBySelection.h>
#include <support/grants/GrantIndex.h>
#include <support/selection/QCSSelectionDef.h>

namespace {

constexpr std::size_t kObjects = 1000;
const vq::SnapshotServer* snapshotServer = nullptr;

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

bool FitsByFnmatch(const QCSSelectionDef& definition, const QCSObject& object) {
  const auto matchingFits = [&object](const vq::SelectionMatching& matching) {
    const std::string* attribute = object.FindAttribute(matching.field);
    if (attribute == nullptr) return false;
    if (matching.op == vq::SelectionOperator::Like) {
      return fnmatch(matching.value.c_str(), attribute->c_str(), FNM_NOESCAPE) == 0;
    }
    return vq::MatchesValue(matching.op, matching.value, *attribute);
  };
  return std::any_of(definition.Terms().begin(), definition.Terms().end(), [&](const auto& term) {
    return std::all_of(term.begin(), term.end(), matchingFits);
  });
}

// The highest level that fits; grants that could not raise it are passed over.
template <class Fits>
int Highest(const std::vector<ParsedGrant>& grants, const QCSObject& object, Fits fits) {
  int highest = -1;
  for (const ParsedGrant& grant : grants) {
    if (grant.level > highest && fits(grant.definition, object)) highest = grant.level;
  }
  return highest;
}

void AskIndex(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto generated = vq::GenerateGrants(count, 1);
  std::vector<vq::Grant> grants;
  for (const auto& grant : generated) grants.push_back({grant.criteria, grant.level});
  const vq::GrantIndex index(std::move(grants));
  const auto objects = vq::GenerateObjects(kObjects, count, 2);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(index.HighestFitting(objects[i]));
    i = (i + 1) % kObjects;
  }
}
BENCHMARK(AskIndex)->Arg(10'000)->Arg(100'000)->Arg(200'000);

template <class Fits>
void AskAll(benchmark::State& state, Fits fits) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const auto grants = Parsed(count);
  const auto objects = vq::GenerateObjects(kObjects, count, 2);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Highest(grants, objects[i], fits));
    i = (i + 1) % kObjects;
  }
}

void AskScan(benchmark::State& state) {
  AskAll(state, [](const QCSSelectionDef& definition, const QCSObject& object) {
    return definition.DoesItFit(object, false);
  });
}
BENCHMARK(AskScan)->Arg(10'000);

void AskFnmatch(benchmark::State& state) {
  AskAll(state, FitsByFnmatch);
}
BENCHMARK(AskFnmatch)->Arg(10'000);

void Fetch(benchmark::State& state) {
  for (auto _ : state) {
    const QCSCorbaAuth2LvlSeq_var grants = snapshotServer->Fetch();
    benchmark::DoNotOptimize(grants->length());
  }
}
BENCHMARK(Fetch);

void Build(benchmark::State& state) {
  const QCSCorbaAuth2LvlSeq_var grants = snapshotServer->Fetch();
  for (auto _ : state) {
    AuthLevelBySelection holder;
    holder.UserAuthFromCORBA(grants, true);
    benchmark::DoNotOptimize(holder);
  }
}
BENCHMARK(Build);

}  // namespace

int main(int argc, char** argv) {
  const vq::SnapshotServer server(vq::GenerateGrants(10'000, 1));
  snapshotServer = &server;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
