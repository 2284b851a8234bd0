// Replies that a server never sends: each remote function gets one that was changed at random. No
// crash and no hang, whatever it says, and the session works afterwards.
//
// Each change is made of the seed and its own number, so that a run can be repeated:
//   VQ_MUTATE_SECONDS=600 VQ_MUTATE_SEED=7 test_mutated_replies     (./dev mutate 600 7)

#include "ProxiedFixture.h"

#include <sys/resource.h>

#include <cstring>
#include <fstream>
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

using Random = std::mt19937_64;

constexpr std::chrono::milliseconds kTimeOut{400};
constexpr std::size_t kHeader = 12;
constexpr std::size_t kFlags = 6;
constexpr std::size_t kType = 7;
constexpr std::size_t kSize = 8;

std::size_t Below(Random& random, std::size_t limit) {
  return limit == 0 ? 0 : random() % limit;
}

char AnyByte(Random& random) {
  return static_cast<char>(random());
}

void PutNumber(std::string& message, std::size_t at, std::uint32_t number) {
  if (at + sizeof number <= message.size())
    std::memcpy(message.data() + at, &number, sizeof number);
}

// Makes the header tell the size that the message has.
void FixSize(std::string& message) {
  PutNumber(message, kSize, static_cast<std::uint32_t>(message.size() - kHeader));
}

// Numbers that lengths and types are likely to be judged by.
std::uint32_t OddNumber(Random& random) {
  constexpr std::uint32_t kOdd[] = {0,           1,          2,          3,          4,
                                    7,           255,        256,        65535,      0x7fffffff,
                                    0x40000000,  0x40000001, 0x80000000, 0xfffffffc, 0xffffffff,
                                    0x10000000U, 1U << 20U};
  return kOdd[Below(random, std::size(kOdd))];
}

void FlipBits(std::string& message, Random& random, std::size_t from) {
  for (std::size_t count = 1 + Below(random, 8); count > 0; --count) {
    message[from + Below(random, message.size() - from)] ^=
        static_cast<char>(1 << Below(random, 8));
  }
}

// A place behind the header.
std::size_t AnyPlace(const std::string& message, Random& random) {
  return kHeader + Below(random, message.size() - kHeader);
}

// The kinds of change. Each leaves a message that is at least a header long.
constexpr void (*kMutations[])(std::string& message, Random& random) = {
    [](std::string& message, Random& random) { FlipBits(message, random, 0); },
    [](std::string& message, Random& random) { FlipBits(message, random, kHeader); },
    [](std::string& message, Random& random) {  // a number of the body, mostly a length or a type
      PutNumber(message, kHeader + 4 * Below(random, (message.size() - kHeader) / 4),
                OddNumber(random));
    },
    [](std::string& message, Random& random) {  // the size in the header
      PutNumber(message, kSize, OddNumber(random));
    },
    [](std::string& message, Random& random) {  // cut short, and the header knows it
      message.resize(AnyPlace(message, random));
      FixSize(message);
    },
    [](std::string& message, Random& random) {  // cut short, and the header does not
      message.resize(AnyPlace(message, random));
    },
    [](std::string& message, Random& random) {  // longer than it should be
      message.append(1 + Below(random, 5000), AnyByte(random));
      FixSize(message);
    },
    [](std::string& message, Random& random) {  // a piece of it is twice there or away
      const std::size_t at = AnyPlace(message, random);
      const std::string piece = message.substr(at, Below(random, 64));
      Below(random, 2) == 0 ? message.insert(at, piece) : message.erase(at, piece.size());
      FixSize(message);
    },
    [](std::string& message, Random& random) {  // another type of message, version or byte order
      message[4 + Below(random, 4)] = AnyByte(random);
    },
    [](std::string& message, Random& random) {  // the number of the request, or the reply's status
      PutNumber(message, kHeader + 4 * Below(random, 3), OddNumber(random));
    },
    [](std::string& message, Random&) { message += message; },  // said twice
    [](std::string& message, Random& random) {  // in fragments, of which the last may be missing
      const std::size_t at = AnyPlace(message, random);
      std::string fragment = message.substr(0, kHeader + 4) + message.substr(at);
      fragment[kType] = 7;
      if (Below(random, 3) == 0) fragment[kFlags] |= 2;
      FixSize(fragment);
      message.resize(at);
      message[kFlags] |= 2;
      FixSize(message);
      if (Below(random, 3) != 0) message += fragment;
    },
    [](std::string& message, Random& random) {  // noise
      std::generate(message.begin() + static_cast<std::ptrdiff_t>(Below(random, message.size())),
                    message.end(), [&] { return AnyByte(random); });
    },
};

FaultProxy::Changed Mutate(std::string message, Random& random) {
  kMutations[Below(random, std::size(kMutations))](message, random);
  // Behind most the connection ends, or the client would wait for the rest until its time is over.
  return {message, Below(random, 100) != 0};
}

// An ORB that makes room for whatever a reply announces fills the machine's memory with zeros for
// minutes. Here that fails soon, which is another way in which a call may fail. False where the
// process has more memory already, as a sanitizer's has.
bool LimitMemory() {
  const rlimit limit{std::size_t{3} << 30U, RLIM_INFINITY};
  std::size_t pages = limit.rlim_cur;
  std::ifstream("/proc/self/statm") >> pages;
  return pages < limit.rlim_cur / 4096 && setrlimit(RLIMIT_AS, &limit) == 0;
}

class MutatedRepliesTest : public ProxiedFixture {};

TEST_F(MutatedRepliesTest, DoNoHarm) {
  const auto seconds = std::stol(GetEnv("VQ_MUTATE_SECONDS").value_or("0"));
  const auto seed = std::stoull(GetEnv("VQ_MUTATE_SEED").value_or("1"));
  const int limit = seconds > 0 ? 1'000'000'000 : 5000;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  if (ThisProduct().roomForAnnounced && !LimitMemory()) {
    GTEST_SKIP() << "memory cannot be limited, and replies would take all of it";
  }
  SetTimeOut(kTimeOut);
  TDiag::Instance()->SetMinimumDebugLevel(1);  // the test's own log would grow

  std::chrono::steady_clock::duration longest{};
  int number = 0;
  int failures = 0;
  while (number < limit && (seconds == 0 || std::chrono::steady_clock::now() < end)) {
    for (const RemoteFunction& function : RemoteFunctions()) {
      const std::size_t calls = function.Calls().size();
      if (calls == 0) continue;
      ASSERT_NO_FATAL_FAILURE(Prepare(function));
      for (std::size_t repeat = 0; repeat < 4; ++repeat, ++number) {
        Random random(seed * 1'000'000'007U + static_cast<std::uint64_t>(number));
        if (function.EndsTheSession() || function.state < kLoggedIn) Prepare(function);
        SCOPED_TRACE("mutation " + std::to_string(number) + " of seed " + std::to_string(seed));
        // A function that binds asks the naming service as well.
        const bool ofNaming = function.state == kLoggedOut && Below(random, 3) == 0;
        FaultProxy& proxy = ofNaming ? *m_namingProxy : *m_proxy;
        proxy.ChangeNext([&random](const std::string& reply) { return Mutate(reply, random); },
                         static_cast<int>(Below(random, ofNaming ? 1 : calls)));
        const auto start = std::chrono::steady_clock::now();
        failures += OutcomeOf(function, m_server->Port()) != function.success ? 1 : 0;
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
        return OutcomeOf(function, m_server->Port()) == function.success;
      };
      EXPECT_TRUE(works() || works() || works())
          << function.name << " after mutation " << number << " of seed " << seed << '\n'
          << m_log.Text();
      if (HasFailure()) return;
    }
    if (seconds > 0) std::cout << number << " replies of seed " << seed << std::endl;
  }
  EXPECT_GT(failures, number / 4) << "changes that nobody notices";
  std::cout << number << " mutated replies, " << failures << " calls failed, the longest took "
            << longest / std::chrono::milliseconds(1) << " ms\n";
}

}  // namespace
}  // namespace vq::test
