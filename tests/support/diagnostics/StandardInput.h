// Standard input as a script gives it, for as long as the object lives.
//
//   const StandardInput input("operator\nsesame\n");
//   const StandardInput closed(std::nullopt);
//
// Thread safety: one thread at a time.
#ifndef VQ_TESTS_SUPPORT_DIAGNOSTICS_STANDARDINPUT_H
#define VQ_TESTS_SUPPORT_DIAGNOSTICS_STANDARDINPUT_H

#include <fcntl.h>
#include <unistd.h>

#include <tests/fixture/UnitTest.h>

class StandardInput {
 public:
  explicit StandardInput(const std::optional<std::string>& text) : m_saved(dup(STDIN_FILENO)) {
    close(STDIN_FILENO);
    if (!text) return;
    EXPECT_EQ(open(m_directory.Write("input", *text).c_str(), O_RDONLY), STDIN_FILENO);
  }
  ~StandardInput() {
    dup2(m_saved, STDIN_FILENO);
    close(m_saved);
  }

 private:
  vq::test::TemporaryDirectory m_directory;
  int m_saved;
};

#endif  // VQ_TESTS_SUPPORT_DIAGNOSTICS_STANDARDINPUT_H
