// Job text and the archive: how the time of the line codecs grows with the text, and an archive
// beside the stream's own operators.
//
// Each measurement runs both sides in turn, so that other load on the host affects both, and
// compares their medians. Results are compared before anything is timed.
//
// Line buffers hold job text: lines of 0 to 132 bytes, 66 on average.
//
// An archive holds 100,000 records as a list of data centers stores them: names, hosts, numbers and
// flags. Its peer takes the same records apart with >> for the prefix and the separator, read for
// the body, and >> again for a number.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include <benchmarks/Comparison.h>
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

// Compares by the processor time of this thread, so that other load on the host does not count.
template <typename Work, typename Peer>
void Compare(benchmark::State& state, Work work, Peer peer) {
  peer();
  work();
  vq::CompareBy(CLOCK_THREAD_CPUTIME_ID, state, work, peer);
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

void Growth(benchmark::State& state, void (Text::*work)()) {
  Text small(kMegabyte);
  Text large(10 * kMegabyte);
  Compare(
      state, [&] { (large.*work)(); }, [&] { (small.*work)(); });
}
BENCHMARK_CAPTURE(Growth, decode, &Text::Decode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Growth, encode, &Text::Encode)->UseManualTime()->Unit(benchmark::kMillisecond);

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
  Compare(
      state,
      [&] {
        rewind();
        benchmark::DoNotOptimize(LoadByArchive(stream));
      },
      [&] {
        rewind();
        benchmark::DoNotOptimize(LoadByExtraction(stream));
      });
}
BENCHMARK(Archive)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
