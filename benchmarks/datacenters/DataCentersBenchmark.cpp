// A list of data centers beside a bare std::map of the same records, from 1,000 to 100,000 of them.
//
// Each operation's time should grow as n log n does; the complexity that the run prints tells, and
// the list should cost what the map costs.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <vq_client_common/datacenters/TDCList.h>

namespace {

// Records in an order that tells the list nothing, the same in each run.
std::vector<TDC> Records(std::int64_t count) {
  std::vector<TDC> records(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i].SetName(fmt::format("DATACENTER-{:06}", i));
    records[i].SetVersion({VLT_TYPE_DISTRIBUTED, i % 2 == 0 ? "700" : "640", "20"});
  }
  std::ranges::shuffle(records, std::mt19937(1));
  return records;
}

// The peer.
class Map {
 public:
  void Add(const TDC& dc) { m_records.insert_or_assign(dc.GetName(), dc); }
  bool GetByName(const std::string& name, TDC& out) const {
    const auto found = m_records.find(name);
    if (found == m_records.end()) return false;
    out = found->second;
    return true;
  }
  void GetAsStringList(ArrayWrap<std::string>& names) const {
    names.Clear();
    for (const auto& record : m_records) names.Append(record.first);
  }

 private:
  std::map<std::string, TDC> m_records;
};

template <typename List>
List Filled(const std::vector<TDC>& records) {
  List list;
  for (const TDC& dc : records) list.Add(dc);
  return list;
}

template <typename List>
void Add(benchmark::State& state) {
  const std::vector<TDC> records = Records(state.range(0));
  for (auto _ : state) {
    const List list = Filled<List>(records);
    benchmark::DoNotOptimize(&list);
  }
  state.SetComplexityN(state.range(0));
}

template <typename List>
void Find(benchmark::State& state) {
  std::vector<TDC> records = Records(state.range(0));
  const List list = Filled<List>(records);
  std::ranges::shuffle(records, std::mt19937(2));
  TDC out;
  for (auto _ : state) {
    for (const TDC& dc : records) {
      if (!list.GetByName(dc.GetName(), out)) state.SkipWithError("a record is missing");
    }
  }
  state.SetComplexityN(state.range(0));
}

template <typename List>
void ListNames(benchmark::State& state) {
  const List list = Filled<List>(Records(state.range(0)));
  ArrayWrap<std::string> names;
  for (auto _ : state) {
    list.GetAsStringList(names);
    benchmark::DoNotOptimize(names.begin());
  }
  state.SetComplexityN(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {1000, 10000, 100000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMillisecond)->Complexity(benchmark::oNLogN);
}

BENCHMARK_TEMPLATE(Add, TDCList)->Apply(Sizes);
BENCHMARK_TEMPLATE(Add, Map)->Apply(Sizes);
BENCHMARK_TEMPLATE(Find, TDCList)->Apply(Sizes);
BENCHMARK_TEMPLATE(Find, Map)->Apply(Sizes);
BENCHMARK_TEMPLATE(ListNames, TDCList)->Apply(Sizes);
BENCHMARK_TEMPLATE(ListNames, Map)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
