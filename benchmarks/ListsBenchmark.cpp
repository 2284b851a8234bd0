// A list of 100,000 data centers beside a bare std::map of the same records: the list should cost
// what its container costs.

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <vq_client_common/datacenters/TDCList.h>

namespace {

// Records in a random order, the same in each run.
std::vector<TDC> Records() {
  std::vector<TDC> records(100'000);
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
  const std::vector<TDC> records = Records();
  for (auto _ : state) {
    const List list = Filled<List>(records);
    benchmark::DoNotOptimize(&list);
  }
}

template <typename List>
void Find(benchmark::State& state) {
  std::vector<TDC> records = Records();
  const List list = Filled<List>(records);
  std::ranges::shuffle(records, std::mt19937(2));
  TDC out;
  for (auto _ : state) {
    for (const TDC& dc : records) {
      if (!list.GetByName(dc.GetName(), out)) state.SkipWithError("a record is missing");
    }
  }
}

template <typename List>
void ListNames(benchmark::State& state) {
  const List list = Filled<List>(Records());
  ArrayWrap<std::string> names;
  for (auto _ : state) {
    list.GetAsStringList(names);
    benchmark::DoNotOptimize(names.begin());
  }
}

BENCHMARK_TEMPLATE(Add, TDCList)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Add, Map)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Find, TDCList)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Find, Map)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(ListNames, TDCList)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(ListNames, Map)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
