// Writers in processes of their own: killed in the middle, and two at a time.

#include <csignal>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/configuration/ConfigAPIFactoryXML.h>
#include <tests/TestEnvironment.h>

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
    ::usleep(
        static_cast<useconds_t>(round * 97));  // so that the blow falls in every step of a save
    ::kill(writer, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";
    ::close(tell[0]);

    const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
    ASSERT_TRUE(domain->Load()) << domain->Error();
    const auto first = domain->GetVar("default", "first");
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->size(), kValueSize);
    EXPECT_EQ(first, domain->GetVar("default", "last")) << "half of a save is in the file";
    domain->SetVar("default", "round", std::to_string(round));
    ASSERT_TRUE(domain->Save()) << domain->Error();
  }
}

TEST(ConfigCrash, TwoProcessesKeepOneAnothersChanges) {
  constexpr int kWriters = 2;
  constexpr int kSaves = 40;
  const vq::test::TemporaryDirectory directory;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = ::fork();
    ASSERT_NE(child, -1);
    if (child != 0) continue;
    for (int i = 0; i < kSaves; ++i) {
      const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
      const std::string own = std::to_string(writer) + "-" + std::to_string(i);
      if (!domain->Load() || !domain->SetVar("default", own, "x") || !domain->Save()) std::_Exit(1);
    }
    std::_Exit(0);
  }
  for (int writer = 0; writer < kWriters; ++writer) {
    int status = 0;
    ASSERT_NE(::wait(&status), -1);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  const auto domain = ConfigAPIFactoryXML::Create(directory.Path(), "vq");
  ASSERT_TRUE(domain->Load()) << domain->Error();
  std::map<std::string, std::string> table;
  domain->GetScopeAndDefaultVars("default", table);
  EXPECT_EQ(table.size(), static_cast<std::size_t>(kWriters * kSaves));
}

}  // namespace
