// vqclient as a script runs it: in a directory and an environment of the test's.
#ifndef VQ_TESTS_CLIENT_CLIENTFIXTURE_H
#define VQ_TESTS_CLIENT_CLIENTFIXTURE_H

#include <tests/fixture/Environment.h>
#include <tests/fixture/Server.h>

#include <gmock/gmock.h>

namespace vq::test {

using Words = std::vector<std::string>;

struct Outcome {
  int code = -1;
  std::string output, words;
};

class ClientFixture : public ::testing::Test {
 protected:
  ClientFixture() {
    m_environment.Isolate(m_directory.Path());
    m_environment.Set("VQ_CONFIG_DOMAINS", m_directory / "domains");
  }

  Server& StartServer(const nlohmann::json& site = BaseSite(), const Words& more = {},
                      Server::Place place = Server::kDirect) {
    m_server.reset();
    m_server = std::make_unique<Server>(m_directory, m_naming.Reference(), site, Words{"GSR"},
                                        "central", 0, place, more);
    return *m_server;
  }
  ChildProcess Start(Words arguments, const std::string& input = "secret\n",
                     const std::string& output = "") {
    arguments.insert(arguments.begin(), VQ_CLIENT);
    ChildProcess::Options options;
    options.standardInput = m_directory.Write("in", input);
    options.standardOutput = output.empty() ? m_directory.Write("out", "") : output;
    options.standardError = m_directory.Write("err", "");
    return ChildProcess::Start(arguments, options);
  }
  Outcome Run(const Words& arguments, const std::string& input = "secret\n",
              const std::string& output = "") {
    ChildProcess client = Start(arguments, input, output);
    const int code = client.Wait(std::chrono::seconds(120)).value_or(-1);
    return {code, m_directory.Read("out"), m_directory.Read("err")};
  }
  // The arguments of a command that connects, with the connection's options behind them.
  Words Connected(Words command, const std::string& user = "alice",
                  const std::string& server = "central") const {
    for (const std::string& word :
         {std::string("-s"), server, std::string("-u"), user, std::string("--naming"), m_address}) {
      command.push_back(word);
    }
    return command;
  }

  TemporaryDirectory m_directory;
  Environment m_environment;
  NamingService m_naming{m_directory};
  std::unique_ptr<Server> m_server;
  std::string m_address = "127.0.0.1:" + std::to_string(m_naming.Port());
};

}  // namespace vq::test

#endif  // VQ_TESTS_CLIENT_CLIENTFIXTURE_H
