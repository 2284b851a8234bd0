// vqclient as a script runs it: in a directory and an environment of the test's.
#ifndef VQ_TESTS_CLIENT_CLIENTFIXTURE_H
#define VQ_TESTS_CLIENT_CLIENTFIXTURE_H

#include <tests/fixture/Server.h>
#include <tests/fixture/UnitTest.h>

#include <sstream>

namespace vq::test {

struct Outcome {
  int code = -1;
  std::string output, words;
};

class ClientFixture : public ::testing::Test {
 protected:
  ClientFixture() {
    m_environment.Isolate(m_directory.Path());
    m_environment.Set("VQ_CONFIG_DOMAINS", m_directory / "domains");
    m_directory.Write("root/installed-products.ini", "[NFT]\nversion = 8.0.05\npatches = P1\n");
  }

  Server& StartServer(const Server::Options& options = {}) {
    m_server.reset();
    m_server = std::make_unique<Server>(m_directory, m_naming.Reference(), options);
    return *m_server;
  }

  // Where the naming service is.
  std::string At() const { return "127.0.0.1:" + std::to_string(m_naming.Port()); }

  // A command line. "@USER" stands for the options of a connection to the server "central" as that
  // user, "NAMING" for the address of the naming service, and "DIR/" for the test's directory.
  std::vector<std::string> Words(const std::string& command) const {
    std::vector<std::string> words;
    std::istringstream text(command);
    for (std::string word; text >> word;) {
      if (word.starts_with('@')) {
        words.insert(words.end(), {"-s", "central", "-u", word.substr(1), "--naming"});
        word = "NAMING";
      }
      if (const auto at = word.find("NAMING"); at != word.npos) word.replace(at, 6, At());
      if (word.starts_with("DIR/")) word = m_directory / word.substr(4);
      words.push_back(word);
    }
    return words;
  }
  ChildProcess Start(const std::string& command, const std::string& input = "secret\n",
                     const std::string& output = "") {
    std::vector<std::string> words = Words(command);
    words.insert(words.begin(), VQ_CLIENT);
    return ChildProcess::Start(
        words, {.standardInput = m_directory.Write("in", input),
                .standardOutput = output.empty() ? m_directory.Write("out", "") : output,
                .standardError = m_directory.Write("err", "")});
  }
  Outcome Run(const std::string& command, const std::string& input = "secret\n",
              const std::string& output = "") {
    ChildProcess client = Start(command, input, output);
    const int code = client.Wait(std::chrono::seconds(120)).value_or(-1);
    return {code, m_directory.Read("out"), m_directory.Read("err")};
  }

  TemporaryDirectory m_directory;
  Environment m_environment;
  NamingService m_naming{m_directory};
  std::unique_ptr<Server> m_server;
};

}  // namespace vq::test

#endif  // VQ_TESTS_CLIENT_CLIENTFIXTURE_H
