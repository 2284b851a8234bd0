// Loading the client properties file with 10,000 entries, beside the bare parse of the same file by
// the XML library with the same settings.

#include <string>

#include <benchmark/benchmark.h>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <tests/fixture/Environment.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/environment/ClientProperties.h>

namespace {

constexpr int kEntries = 10'000;

// The instance with its file in a directory of its own, for the life of the process.
struct Store {
  Store() {
    for (int i = 0; i < kEntries; ++i) {
      properties->SetStringValue("Window.Column" + std::to_string(i) + ".Title",
                                 "Jobs & conditions of data center <" + std::to_string(i) + ">",
                                 false);
    }
    properties->SaveProperties();
  }
  vq::test::TemporaryDirectory directory;
  vq::test::Variable data{"VQ_DATA", directory.Path()};
  std::string path = directory.Path() + "CommonClientConf.xml";
  ClientProperties* properties = ClientProperties::Get();
};

Store& TheStore() {
  static Store store;
  return store;
}

void LoadProperties(benchmark::State& state) {
  ClientProperties* properties = TheStore().properties;
  for (auto _ : state) properties->Reload();
  if (properties->GetStringValue("Window.Column9999.Title", "").empty()) {
    state.SkipWithError("nothing was loaded");
  }
}

void LoadBareParse(benchmark::State& state) {
  const std::string& path = TheStore().path;
  for (auto _ : state) {
    xercesc::XercesDOMParser parser;
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
    parser.setDoNamespaces(false);
    parser.setDoSchema(false);
    parser.parse(path.c_str());
    benchmark::DoNotOptimize(parser.getDocument());
    if (parser.getErrorCount() != 0) state.SkipWithError("the file did not parse");
  }
}

BENCHMARK(LoadProperties)->Unit(benchmark::kMicrosecond);
BENCHMARK(LoadBareParse)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
