// A password that nobody else has, looked for wherever a process leaves traces: its log at every
// level, its memory, which is what a core holds, its command line and environment, and the
// server's log.

#include <tests/fixture/SessionFixture.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

#include <vq_client_common/session/ConnectionSettings.h>

namespace vq::test {
namespace {

using std::string;

// How often a text stands in what a process has in its memory.
int CountInMemory(pid_t pid, const string& text) {
  const string directory = "/proc/" + std::to_string(pid);
  std::ifstream maps(directory + "/maps");
  const int memory = open((directory + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_NE(memory, -1);
  int count = 0;
  string piece;
  for (string line; std::getline(maps, line);) {
    std::istringstream fields(line);
    std::uint64_t from = 0;
    std::uint64_t to = 0;
    char dash = 0;
    string access;
    fields >> std::hex >> from >> dash >> to >> access;
    if (!access.starts_with("rw")) continue;  // what was written to lies in no other
    piece.resize(to - from);
    const ssize_t size = pread(memory, piece.data(), piece.size(), static_cast<off_t>(from));
    if (size <= 0) continue;
    const std::string_view read(piece.data(), static_cast<std::size_t>(size));
    for (auto at = read.find(text); at != string::npos; at = read.find(text, at + 1)) ++count;
  }
  close(memory);
  return count;
}

string RandomText() {
  std::random_device random;
  string text = "Canary";
  while (text.size() < 24) text += static_cast<char>('a' + random() % 26);
  return text;
}

class CanaryTest : public SessionFixture {
 protected:
  // Sends the client a command, and returns its answer.
  string Tell(const string& command) {
    const string line = command + "\n";
    EXPECT_EQ(write(m_toClient, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    const std::size_t before = m_answers;
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(m_output).find('\n', before) != string::npos; }));
    const string answers = ReadFile(m_output);
    m_answers = answers.find('\n', before) + 1;
    return answers.substr(before, m_answers - before - 1);
  }

  string m_output;
  int m_toClient = -1;
  std::size_t m_answers = 0;
};

TEST_F(CanaryTest, APasswordLeavesNoTrace) {
  const struct {
    const char* encode;
    bool travels;  // the password as it is, and omniORB does not wipe its buffers
  } kRows[] = {{"1", false}, {"0", true}};
  for (const auto& row : kRows) {
    const string password = RandomText();
    const string next = RandomText();
    const string encoded = ConnectionSettings::EncodePassword(password);
    const string encodedNext = ConnectionSettings::EncodePassword(next);
    nlohmann::json site = BaseSite();
    site["users"]["alice"]["password"] = password;
    site["parameters"]["general"]["PasswordEncode"] = row.encode;
    Server& server = StartServer(site);

    const string files = m_directory / (string("client-") + row.encode);
    m_output = files + ".out";
    m_answers = 0;
    ASSERT_EQ(mkfifo((files + ".in").c_str(), 0600), 0);
    m_toClient = open((files + ".in").c_str(), O_RDWR | O_CLOEXEC);
    ChildProcess::Options options;
    options.standardInput = files + ".in";
    options.standardOutput = m_output;
    options.standardError = files + ".err";
    ChildProcess client =
        ChildProcess::Start({VQ_CANARY_CLIENT, m_naming->Reference(), files + ".log"}, options);
    ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(m_output); }));

    const auto report = [&](const char* when) {
      std::cout << "PasswordEncode " << row.encode << ", " << when << ": plain "
                << CountInMemory(client.Pid(), password) << " and "
                << CountInMemory(client.Pid(), next) << ", encoded "
                << CountInMemory(client.Pid(), encoded) << " and "
                << CountInMemory(client.Pid(), encodedNext) << " times in memory\n";
    };
    ASSERT_EQ(Tell("login\n" + password), "1") << ReadFile(files + ".err");
    report("in the session");
    EXPECT_GE(CountInMemory(client.Pid(), password), 1) << "it is kept for logging in again";
    ASSERT_EQ(Tell("change\n" + next), "1");
    report("after the change");
    EXPECT_LE(CountInMemory(client.Pid(), password), row.travels ? 1 : 0);
    const string process = "/proc/" + std::to_string(client.Pid());
    const string traces = ReadFile(process + "/cmdline") + ReadFile(process + "/environ");
    ASSERT_EQ(Tell("logout"), "1");
    report("after the logout");
    ASSERT_EQ(Tell("exit"), "1");
    report("at the end");
    for (const string& secret : {password, next, encoded, encodedNext}) {
      EXPECT_LE(CountInMemory(client.Pid(), secret), row.travels ? 1 : 0);
    }

    const string log = ReadFile(files + ".log");
    EXPECT_NE(log.find("Changed User name to: alice"), string::npos) << "the log is on";
    for (const string& secret : {password, next, encoded, encodedNext}) {
      for (const string& text : {log, ReadFile(files + ".err"), traces, server.LogText()}) {
        EXPECT_EQ(text.find(secret), string::npos);
      }
    }
    server.Kill();
    close(m_toClient);
  }
}

}  // namespace
}  // namespace vq::test
