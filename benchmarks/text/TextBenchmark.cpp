// The line codecs beside memcpy, and the archive beside formatted extraction from a stream.
//
// Each measurement runs the library and its peer in turn, so that both see the machine in the same
// state, and compares their medians. After the runs the program prints each goal with what was
// measured and fails when one is missed. Every output is compared with what it must be before
// anything is timed.
//
// Line buffers hold job text: lines of 0 to 132 bytes, 66 on average. Outputs keep their memory
// from one run to the next on both sides, which leaves the peer nothing but the copying.
//
// An archive holds 100,000 records as a list of data centers stores them: names, hosts, numbers and
// flags. Its peer takes the same records apart with the stream's own operators: >> for the prefix
// and the separator, read for the body, and >> again for a number.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <support/security/StupidEncrypt.h>
#include <vq_client_common/datacenters/TArchive.h>
#include <vq_client_common/text/ConvertFunctions.h>

namespace {

constexpr std::size_t kMegabyte = 1'000'000;
constexpr unsigned kMaxLine = 132;
constexpr int kRecords = 100'000;

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "wrong result: %s\n", what);
  std::exit(2);
}

struct Goal {
  const char* name;
  double limit;
  bool atMost;
  double measured;  // 0 until measured
};
Goal goals[] = {{"decode 10 MB, times memcpy", 3.5, true, 0},
                {"encode 10 MB, times memcpy", 4, true, 0},
                {"decode, 1 MB to 10 MB", 12, true, 0},
                {"encode, 1 MB to 10 MB", 12, true, 0},
                {"archive, times faster than formatted extraction", 4, false, 0}};
enum GoalIndex { kDecode, kEncode, kDecodeGrowth, kEncodeGrowth, kArchive };

// The processor time of this thread, so that a busy machine does not count.
double Now() {
  std::timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <typename Call>
double Seconds(Call call) {
  const double start = Now();
  call();
  benchmark::ClobberMemory();
  return Now() - start;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

// Times `first` and `second` in turn and gives the ratio of their medians, second by first.
template <typename First, typename Second>
double Compare(benchmark::State& state, First first, Second second) {
  first();
  second();
  std::vector<double> firsts;
  std::vector<double> seconds;
  for (auto _ : state) {
    firsts.push_back(Seconds(first));
    seconds.push_back(Seconds(second));
    state.SetIterationTime(seconds.back());
  }
  const double ratio = Median(seconds) / Median(firsts);
  state.counters["peer_s"] = Median(firsts);
  state.counters["ratio"] = ratio;
  return ratio;
}

std::string JobText(std::size_t size) {
  std::mt19937 random(6);
  std::string lines;
  while (lines.size() < size) {
    lines.append(random() % (kMaxLine + 1), static_cast<char>('!' + random() % 90)).append("\r\n");
  }
  return lines;
}

struct Text {
  std::string lines, buffer, output;
  explicit Text(std::size_t size) : lines(JobText(size)) {
    ConvertLines2Buffer(lines, buffer, kMaxLine);
    Require(ConvertBuffer2Lines(buffer, output) == 1 && output == lines, "lines do not come back");
  }
  void Decode() { benchmark::DoNotOptimize(ConvertBuffer2Lines(buffer, output)); }
  void Encode() { benchmark::DoNotOptimize(ConvertLines2Buffer(lines, output, kMaxLine)); }
};

void CompareWithMemcpy(benchmark::State& state, void (Text::*work)(),
                       const std::string Text::*input, GoalIndex goal) {
  Text text(10 * kMegabyte);
  const std::string& from = text.*input;
  std::vector<char> to(from.size());
  goals[goal].measured = Compare(
      state,
      [&] {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
      },
      [&] { (text.*work)(); });
}
BENCHMARK_CAPTURE(CompareWithMemcpy, decode, &Text::Decode, &Text::buffer, kDecode)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CompareWithMemcpy, encode, &Text::Encode, &Text::lines, kEncode)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void Growth(benchmark::State& state, void (Text::*work)(), GoalIndex goal) {
  Text small(kMegabyte);
  Text large(10 * kMegabyte);
  goals[goal].measured = Compare(
      state, [&] { (small.*work)(); }, [&] { (large.*work)(); });
}
BENCHMARK_CAPTURE(Growth, decode, &Text::Decode, kDecodeGrowth)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Growth, encode, &Text::Encode, kEncodeGrowth)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// What a run of loading gives, to compare the two ways by.
struct Sum {
  unsigned long numbers = 0;
  std::size_t bytes = 0;
  bool operator==(const Sum&) const = default;
};

template <typename LoadText, typename LoadNumber>
Sum LoadAll(LoadText loadText, LoadNumber loadNumber) {
  Sum sum;
  for (int i = 0; i < kRecords; i += 4) {
    sum.bytes += loadText().size();
    sum.bytes += loadText().size();
    sum.numbers += loadNumber();
    sum.numbers += loadNumber();
  }
  return sum;
}

std::string ArchiveBytes() {
  std::stringstream stream;
  TArchive archive(&stream, 0, 0, nullptr);
  for (int i = 0; i < kRecords; i += 4) {
    archive << "PROD" + std::to_string(i) << "host" + std::to_string(i) + ".example.com" << 8000 + i
            << (i % 8 == 0);
  }
  return stream.str();
}

Sum LoadByArchive(std::stringstream& stream) {
  TArchive archive(&stream, 1, 0, nullptr);
  std::string text;
  unsigned long number = 0;
  return LoadAll([&]() -> std::string& { return archive >> text, text; },
                 [&] { return archive >> number, number; });
}

Sum LoadByExtraction(std::stringstream& stream) {
  std::string text;
  const auto loadText = [&]() -> std::string& {
    std::size_t size = 0;
    char separator = 0;
    stream >> size >> separator;
    text.resize(size - 1);
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    StupidDecrypt(text, text);
    stream.get();
    return text;
  };
  std::istringstream digits;
  return LoadAll(loadText, [&] {
    unsigned long number = 0;
    digits.clear();
    digits.str(loadText());
    digits >> number;
    return number;
  });
}

void Archive(benchmark::State& state) {
  std::stringstream stream(ArchiveBytes());
  const auto rewind = [&] {
    stream.clear();
    stream.seekg(0);
  };
  const Sum byArchive = LoadByArchive(stream);
  rewind();
  const Sum byExtraction = LoadByExtraction(stream);
  Require(byArchive == byExtraction && byArchive.bytes > kRecords, "the two ways differ");
  const double ratio = Compare(
      state,
      [&] {
        rewind();
        benchmark::DoNotOptimize(LoadByExtraction(stream));
      },
      [&] {
        rewind();
        benchmark::DoNotOptimize(LoadByArchive(stream));
      });
  goals[kArchive].measured = 1 / ratio;
}
BENCHMARK(Archive)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  bool missed = false;
  for (const Goal& goal : goals) {
    if (goal.measured == 0) continue;  // left out by a filter
    const bool met = goal.atMost ? goal.measured <= goal.limit : goal.measured >= goal.limit;
    missed = missed || !met;
    std::printf("%-50s %6.2f  goal %s %4.1f  %s\n", goal.name, goal.measured,
                goal.atMost ? "at most " : "at least", goal.limit, met ? "met" : "MISSED");
  }
  return missed ? 1 : 0;
}
