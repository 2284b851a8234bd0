// Replies that a server never sends: each remote function gets one that was changed at random. No
// crash and no hang, whatever it says, and the session works afterwards.
//
// Each change is made of the seed and its own number, so that a run can be repeated:
//   VQ_MUTATE_SECONDS=600 VQ_MUTATE_SEED=7 test_mutated_replies     (./dev mutate 600 7)

#include <tests/reliability/ProxiedFixture.h>

#include <sys/resource.h>

#include <cstring>
#include <iostream>
#include <random>

#include <support/foundations/Environment.h>
#include <tests/fixture/Product.h>

// What omniORB itself does not free when a message ends, or makes no sense, in the middle of a text
// or of a reference. docs/reliability.md has the figures.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:cdrStream::unmarshalRawString\nleak:omniObjRef::_unMarshal\n";
}

namespace vq::test {
namespace {

constexpr std::chrono::milliseconds kTimeOut{400};
constexpr std::size_t kHeader = 12;
constexpr std::size_t kFlags = 6;
constexpr std::size_t kType = 7;
constexpr std::size_t kSize = 8;

struct Random : std::mt19937_64 {
  using std::mt19937_64::mt19937_64;
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : (*this)() % limit; }
  char Byte() { return static_cast<char>((*this)()); }
  std::size_t OddNumber() {  // that lengths and types are likely to be judged by
    constexpr std::size_t kOdd[] = {
        0, 1, 2, 4, 7, 255, 1 << 20, 0x10000000, 0x40000000, 0x80000000, 0xfffffffc, 0xffffffff};
    return kOdd[Below(std::size(kOdd))];
  }
  // A place behind the header.
  std::size_t Place(const std::string& message) {
    return kHeader + Below(message.size() - kHeader);
  }
};

void PutNumber(std::string& message, std::size_t at, std::size_t number) {
  const auto narrow = static_cast<std::uint32_t>(number);
  if (at + sizeof narrow <= message.size()) std::memcpy(&message[at], &narrow, sizeof narrow);
}

// Makes the header tell the size that the message has.
void FixSize(std::string& message) {
  PutNumber(message, kSize, message.size() - kHeader);
}

// The kinds of change. Each leaves a message that is at least a header long.
constexpr void (*kMutations[])(std::string& message, Random& random) = {
    [](std::string& message, Random& random) {  // bits flipped, in the header or not
      const std::size_t from = random.Below(2) * kHeader;
      for (std::size_t count = 1 + random.Below(8); count > 0; --count) {
        message[from + random.Below(message.size() - from)] ^=
            static_cast<char>(1 << random.Below(8));
      }
    },
    // A number: the size in the header, that of the request or the reply's status, or one of the
    // body, mostly a length or a type.
    [](std::string& message, Random& random) {
      const std::size_t places[] = {kSize, kHeader + 4 * random.Below(3),
                                    kHeader + 4 * random.Below((message.size() - kHeader) / 4)};
      PutNumber(message, places[random.Below(3)], random.OddNumber());
    },
    [](std::string& message, Random& random) {  // cut short, and the header knows it or not
      message.resize(random.Place(message));
      if (random.Below(2) == 0) FixSize(message);
    },
    [](std::string& message, Random& random) {  // longer than it should be
      message.append(1 + random.Below(5000), random.Byte());
      FixSize(message);
    },
    [](std::string& message, Random& random) {  // a piece of it is twice there or away
      const std::size_t at = random.Place(message);
      const std::string piece = message.substr(at, random.Below(64));
      random.Below(2) == 0 ? message.insert(at, piece) : message.erase(at, piece.size());
      FixSize(message);
    },
    [](std::string& message, Random& random) {  // another type of message, version or byte order
      message[4 + random.Below(4)] = random.Byte();
    },
    [](std::string& message, Random&) { message += message; },  // said twice
    [](std::string& message, Random& random) {  // in fragments, of which the last may be missing
      const std::size_t at = random.Place(message);
      std::string fragment = message.substr(0, kHeader + 4) + message.substr(at);
      fragment[kType] = 7;
      if (random.Below(3) == 0) fragment[kFlags] |= 2;
      FixSize(fragment);
      message.resize(at);
      message[kFlags] |= 2;
      FixSize(message);
      if (random.Below(3) != 0) message += fragment;
    },
    [](std::string& message, Random& random) {  // noise
      std::generate(message.begin() + static_cast<std::ptrdiff_t>(random.Below(message.size())),
                    message.end(), [&] { return random.Byte(); });
    },
};

// An ORB that makes room for whatever a reply announces fills the machine's memory with zeros for
// minutes. Here that fails soon, which is another way in which a call may fail. False where the
// process has more memory already, as a sanitizer's has.
bool LimitMemory() {
  const rlimit limit{std::size_t{3} << 30U, RLIM_INFINITY};
  std::size_t pages = limit.rlim_cur;
  std::ifstream("/proc/self/statm") >> pages;
  return pages < limit.rlim_cur / 4096 && setrlimit(RLIMIT_AS, &limit) == 0;
}

using MutatedRepliesTest = ProxiedFixture;

TEST_F(MutatedRepliesTest, DoNoHarm) {
  const auto seconds = std::stol(GetEnv("VQ_MUTATE_SECONDS").value_or("0"));
  const auto seed = std::stoull(GetEnv("VQ_MUTATE_SEED").value_or("1"));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  if (ThisProduct().roomForAnnounced && !LimitMemory()) {
    GTEST_SKIP() << "memory cannot be limited, and replies would take all of it";
  }
  SetTimeOut(kTimeOut);
  TDiag::Instance()->SetMinimumDebugLevel(1);  // the test's own log would grow

  std::size_t number = 0, failures = 0;
  std::chrono::steady_clock::duration longest{};
  while (seconds == 0 ? number < 5000 : std::chrono::steady_clock::now() < end) {
    for (const RemoteFunction& function : RemoteFunctions()) {
      const std::size_t calls = function.Calls().size();
      if (calls == 0) continue;
      ASSERT_NO_FATAL_FAILURE(Prepare(function));
      for (std::size_t repeat = 0; repeat < 4; ++repeat, ++number) {
        Random random(seed * 1'000'000'007U + number);
        if (function.EndsTheSession() || function.state < kLoggedIn) Prepare(function);
        SCOPED_TRACE("mutation " + std::to_string(number) + " of seed " + std::to_string(seed));
        // A function that binds asks the naming service as well.
        const bool ofNaming = function.state == kLoggedOut && random.Below(3) == 0;
        FaultProxy& proxy = ofNaming ? *m_namingProxy : *m_proxy;
        const auto mutate = [&random](std::string reply) -> FaultProxy::Changed {
          kMutations[random.Below(std::size(kMutations))](reply, random);
          // Behind most the connection ends, or the client would wait for the rest until its time
          // is over.
          return {reply, random.Below(100) != 0};
        };
        proxy.ChangeNext(mutate, static_cast<int>(random.Below(ofNaming ? 1 : calls)));
        const auto start = std::chrono::steady_clock::now();
        failures += OutcomeOf(function) != function.success ? 1 : 0;
        const auto taken = std::chrono::steady_clock::now() - start;
        longest = std::max(longest, taken);
        proxy.ChangeNext(nullptr);
        // A reply that says that the naming service is elsewhere holds until the ORB ends.
        if (ofNaming) GL_LogOut(true);
        // One reply may cost a time-out, and lead the next call to where nobody is.
        EXPECT_LT(taken, 4 * kTimeOut + std::chrono::seconds(5)) << function.name;
      }
      // The process and the ORB are as good as before. A busy machine may need another try.
      const auto works = [&] {
        Prepare(function);
        return OutcomeOf(function) == function.success;
      };
      EXPECT_TRUE(works() || works() || works())
          << function.name << " after mutation " << number << " of seed " << seed << '\n'
          << m_log.Text();
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(failures, number / 4) << "changes that nobody notices";
  std::cout << number << " mutated replies, " << failures << " calls failed, the longest took "
            << longest / std::chrono::milliseconds(1) << " ms\n";
}

}  // namespace
}  // namespace vq::test
