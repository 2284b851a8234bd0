#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <support/os_toolkit/os_critical_section.h>
#include <support/os_toolkit/os_file_system.h>
#include <support/os_toolkit/os_tokenizer.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

using Tokens = std::vector<std::string>;

TEST(OsTokenizerTest, DropsEmptyTokens) {
  const struct {
    std::string text, delimiters;
    Tokens tokens;
  } cases[] = {
      {"", " \t", {}},         {" \t ", " \t", {}},
      {"one", " \t", {"one"}}, {"\tE_GAS  \t8.0.00 # x\n", " \t", {"E_GAS", "8.0.00", "#", "x\n"}},
      {"a b", "", {"a b"}},    {std::string("a\0b", 3), std::string("\0", 1), {"a", "b"}},
  };
  for (const auto& c : cases) {
    const os_tokenizer tokens(c.text, c.delimiters);
    EXPECT_EQ(Tokens(tokens.begin(), tokens.end()), c.tokens) << c.text;
    EXPECT_EQ(tokens.empty(), c.tokens.empty());
    EXPECT_THROW(tokens[tokens.size()], std::out_of_range);
  }
}

TEST(OsFileSystemTest, TellsWhatStandsAtAPath) {
  const vq::test::TemporaryDirectory temporary;
  const std::string& directory = temporary.Path();
  const std::string file = temporary.Write("file", "x");
  std::filesystem::create_symlink("gone", directory + "dangling");

  EXPECT_TRUE(os_file_system::exists(directory));
  EXPECT_TRUE(os_file_system::exists(file));
  EXPECT_FALSE(os_file_system::exists(directory + "dangling"));
  EXPECT_FALSE(os_file_system::exists(file + "/inside"));
  EXPECT_FALSE(os_file_system::exists(file + '\0' + "tail"));
  EXPECT_FALSE(os_file_system::exists(""));
}

TEST(OsCriticalSectionTest, IsHeldByOneThreadWhichMayEnterAgain) {
  os_critical_section section(true);
  const auto otherThreadEnters = [&section] {
    bool entered = false;
    std::thread([&] {
      entered = section.try_lock();
      if (entered) section.unlock();
    }).join();
    return entered;
  };
  EXPECT_FALSE(otherThreadEnters());
  { const std::lock_guard<os_critical_section> again(section); }
  EXPECT_FALSE(otherThreadEnters());
  section.unlock();
  EXPECT_TRUE(otherThreadEnters());
}

}  // namespace
