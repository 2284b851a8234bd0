// What a test needs to stand apart from the machine: a directory of its own and an environment of
// its own, both gone when the object is.
//
//   const vq::test::TemporaryDirectory directory;
//   const vq::test::Variable home("VQ_HOME", directory.Path());
//   directory.Write("locale.ini", "...");
//
// Thread contract: one thread at a time, and no other that reads the environment.
#ifndef VQ_TESTS_TESTENVIRONMENT_H
#define VQ_TESTS_TESTENVIRONMENT_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace vq::test {

class TemporaryDirectory {
 public:
  TemporaryDirectory() : m_path(std::filesystem::temp_directory_path() / "vq-test-XXXXXX") {
    if (::mkdtemp(m_path.data()) == nullptr) throw std::runtime_error("no temporary directory");
    m_path += '/';
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& Path() const { return m_path; }  // ends in "/"

  // Writes a file, with the directories above it, and returns its path.
  std::string Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = m_path + name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  // A file's content; empty when there is none.
  std::string Read(const std::string& name) const {
    std::ifstream file(m_path + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string m_path;
};

// Sets a variable, or with nothing given unsets it.
class Variable {
 public:
  explicit Variable(const char* name, const std::optional<std::string>& value = std::nullopt)
      : m_name(name) {
    if (const char* former = std::getenv(name)) m_former = former;
    Put(value);
  }
  ~Variable() { Put(m_former); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void Put(const std::optional<std::string>& value) const {
    value ? ::setenv(m_name, value->c_str(), 1) : ::unsetenv(m_name);
  }

  const char* m_name;
  std::optional<std::string> m_former;
};

}  // namespace vq::test

#endif  // VQ_TESTS_TESTENVIRONMENT_H
