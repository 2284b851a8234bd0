// A session with its naming service and its server each behind a proxy, and a site in which every
// remote function's success differs from its failure where it can.
#ifndef VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H
#define VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H

#include <tests/fixture/FaultProxy.h>
#include <tests/fixture/SessionFixture.h>

#include <tests/reliability/RemoteFunctions.h>

namespace vq::test {

class ProxiedFixture : public SessionFixture {
 protected:
  void SetUp() override {
    SessionFixture::SetUp();
    InstallClient("8.0.05");
    m_directory.Write("root/config/vq.xml", "<domain/>");
    m_naming = std::make_unique<NamingService>(m_directory, "127.0.0.2");
    m_namingProxy = std::make_unique<FaultProxy>(m_naming->Port());
    SetTimeOut(std::chrono::seconds(10));
    Restart();
    m_proxy = std::make_unique<FaultProxy>(m_port);
    m_namingProxy->TakeOperations();  // the server's
  }

  // The time-out of connections and calls, 10 seconds at first. Ends the ORB.
  void SetTimeOut(std::chrono::milliseconds timeOut) {
    GL_LogOut(true);
    const std::string limit = std::to_string(timeOut.count());
    const std::string port = std::to_string(m_naming->Port());
    const std::string naming = "NameService=corbaloc:iiop:127.0.0.2:" + port + "/NameService";
    m_orbArguments = {"-ORBConnectTimeout", limit, "-ORBCallTimeout", limit, "-ORBInitRef", naming};
  }

  // The server, started anew on the same port; the first time on any.
  void Restart(const std::vector<std::string>& arguments = {}) {
    nlohmann::json site = BaseSite();
    site.merge_patch(nlohmann::json::parse(R"({
      "annotationRequired": ["job.delete"], "lockout": {"tries": 0},
      "parameters": {"gui": {"RegisterTimeout": "300"}, "gsr": {"AuthorSecurity": "2"},
        "general": {"I18N": "cjk", "PermitManualUnlock": "1", "ApplicationFieldIsMandatory": "1",
          "SubApplicationFieldIsMandatory": "1", "MinPasswordLength": "3", "MaxPasswordLength": "40",
          "PasswordComplexityOnOff": "1", "PasswordComplexityRules": "U"}}})"));
    m_server.reset();  // before the next one listens in its place
    m_server.reset(new Server(
        m_directory, m_naming->Reference(),
        {.site = site, .port = m_port, .place = Server::kBehindProxy, .arguments = arguments}));
  }

  // Brings the process to where the function is called, whatever was before.
  void Prepare(const RemoteFunction& function) {
    GL_LogOut(false);
    m_server->SetFaults(nlohmann::json::array());
    m_server->Control({{"command", "reset"}});
    const bool expired = function.state == kExpired;
    // A machine that is busy may keep a login waiting for longer than a short time-out.
    const auto logsIn = [&] { return Login(expired ? "expired" : "alice") == (expired ? 48 : 1); };
    ASSERT_TRUE(WaitUntil(logsIn)) << m_log.Text();
    if (function.state == kFinished) GL_PostLogin(m_message);
    if (function.state == kLoggedOut) GL_LogOut(false);
    Forget();
  }

  void Forget() {  // the operations and the log so far
    m_proxy->TakeOperations();
    m_log.Clear();
  }

  // Settled beforehand: a port that the system chose cannot be had again at once.
  const int m_port = FreePort();
  std::unique_ptr<Server> m_server;
  std::unique_ptr<FaultProxy> m_proxy, m_namingProxy;
};

}  // namespace vq::test

#endif  // VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H
