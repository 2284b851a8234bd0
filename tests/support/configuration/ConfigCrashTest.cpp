// Writers that are killed in the middle, and several at a time.

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/configuration/ConfigAPIFactoryXML.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

constexpr std::size_t kValueSize = 60'000;

// Saves round after round, telling the parent before each, until it is killed.
[[noreturn]] void WriteUntilKilled(const std::string& directory, int tell) {
  const auto domain = ConfigAPIFactoryXML::Create(directory, "vq");
  for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
    domain->SetVar("default", "first", std::string(kValueSize, letter));
    domain->SetVar("default", "last", std::string(kValueSize, letter));
    if (::write(tell, &letter, 1) != 1 || !domain->Save()) std::_Exit(1);
  }
}

TEST(ConfigCrash, AKilledWriterLeavesAWholeFileAndNoLock) {
  const vq::test::TemporaryDirectory directory;
  for (int round = 0; round < 25; ++round) {
    int tell[2];
    ASSERT_EQ(::pipe(tell), 0);
    const pid_t writer = ::fork();
    ASSERT_NE(writer, -1);
    if (writer == 0) WriteUntilKilled(directory.Path(), tell[1]);
    ::close(tell[1]);
    char letter = 0;
    for (int saves = 0; saves <= round % 5 + 1; ++saves) ASSERT_EQ(::read(tell[0], &letter, 1), 1);
    ::usleep(static_cast<useconds_t>(round * 97));  // so that the blow falls in every step
    ::kill(writer, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";
    ::close(tell[0]);

    const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
    ASSERT_TRUE(domain->Load()) << domain->Error();
    const auto first = domain->GetVar("default", "first").value_or("");
    EXPECT_EQ(first.size(), kValueSize);
    EXPECT_EQ(first, domain->GetVar("default", "last")) << "half of a save is in the file";
    domain->SetVar("default", "round", std::to_string(round));
    ASSERT_TRUE(domain->Save()) << domain->Error();
  }
}

// Two processes of two threads each.
TEST(ConfigCrash, WritersAtOnceKeepOneAnothersChanges) {
  constexpr int kSaves = 10;
  const vq::test::TemporaryDirectory directory;
  const pid_t child = ::fork();
  const auto write = [&](const std::string& who) {
    for (int i = 0; i < kSaves; ++i) {
      const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
      EXPECT_TRUE(domain->Load() && domain->SetVar("s", who + std::to_string(i), "x") &&
                  domain->Save())
          << domain->Error();
    }
  };
  {
    std::jthread other(write, std::to_string(child) + "other");
    write(std::to_string(child) + "own");
  }
  if (child == 0) std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
  EXPECT_TRUE(domain->Load()) << domain->Error();
  std::map<std::string, std::string> table;
  domain->GetScopeAndDefaultVars("s", table);
  EXPECT_EQ(table.size(), 4U * kSaves);
}

}  // namespace
