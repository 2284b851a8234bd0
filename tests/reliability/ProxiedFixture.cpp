#include "ProxiedFixture.h"

#include <vq_client_common/session/GlobalFuncs.h>

namespace vq::test {
namespace {

nlohmann::json Site() {
  nlohmann::json site = BaseSite();
  site["annotationRequired"] = {"job.delete"};
  site["lockout"]["tries"] = 0;
  site["parameters"].merge_patch(nlohmann::json::parse(R"({
    "general": {"I18N": "cjk", "PermitManualUnlock": "1", "ApplicationFieldIsMandatory": "1",
      "SubApplicationFieldIsMandatory": "1", "MinPasswordLength": "3", "MaxPasswordLength": "40",
      "PasswordComplexityOnOff": "1", "PasswordComplexityRules": "U"},
    "gui": {"RegisterTimeout": "300"},
    "gsr": {"AuthorSecurity": "2"}
  })"));
  return site;
}

}  // namespace

ProxiedFixture::ProxiedFixture() : m_port(FreePort()) {}

void ProxiedFixture::SetUp() {
  SessionFixture::SetUp();
  InstallClient("8.0.05");
  m_directory.Write("root/config/vq.xml", "<domain/>");
  m_namingProxy = std::make_unique<FaultProxy>(m_naming->Port());
  SetTimeOut(std::chrono::seconds(10));
  Restart();
  m_proxy = std::make_unique<FaultProxy>(m_port);
}

void ProxiedFixture::SetTimeOut(std::chrono::milliseconds timeOut) {
  GL_LogOut(true);
  const std::string limit = std::to_string(timeOut.count());
  m_orbArguments = {
      "-ORBConnectTimeout",
      limit,
      "-ORBCallTimeout",
      limit,
      "-ORBInitRef",
      "NameService=corbaloc:iiop:127.0.0.2:" + std::to_string(m_naming->Port()) + "/NameService"};
}

void ProxiedFixture::Restart() {
  m_server.reset();  // before the next one listens in its place
  m_server = std::make_unique<Server>(m_directory, m_naming->Reference(), Site(),
                                      std::vector<std::string>{"GSR"}, "central", m_port,
                                      Server::kBehindProxy);
}

void ProxiedFixture::Prepare(const RemoteFunction& function) {
  GL_LogOut(false);
  m_server->SetFaults(nlohmann::json::array());
  m_server->Control({{"command", "reset"}});
  const bool expired = function.state == kExpired;
  // A machine that is busy may keep a login waiting for longer than a short time-out.
  ASSERT_TRUE(WaitUntil([&] { return Login(expired ? "expired" : "alice") == (expired ? 48 : 1); }))
      << m_log.Text();
  if (function.state == kFinished) GL_PostLogin(m_message);
  if (function.state == kLoggedOut) GL_LogOut(false);
  Forget();
}

void ProxiedFixture::Forget() {
  m_proxy->TakeOperations();
  m_log.Clear();
}

}  // namespace vq::test
