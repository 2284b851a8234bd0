// What the process knows of its connection, and the names of clients and servers.

#include <gtest/gtest.h>

#include <tests/fixture/LogCapture.h>
#include <vq_client_common/session/ConnectionSettings.h>

namespace vq::test {
namespace {

TEST(ClientKinds, HaveANameForServerOrbAndUser) {
  const std::tuple<int, const char*, const char*, const char*, bool> rows[] = {
      {0, "vq_gui", "GUI", "VELTRA-M/VQ GUI", false},
      {2, "vq_xmlutil", "XmlUtil", "XML Utility", true},
      {9, "open_viewpoint_simulator", "OpenVPSim", "VELTRA-M/VQ Service Impact Manager", false},
      {10, "Unkown_Client", "RCI", "VELTRA-M/VQ Remote Client Interface", true},
      {11, "Unkown_Client", "", "Unknown Client", true},
      {12, "Unkown_Client", "", "", true},
      {-1, "Unkown_Client", "", "", true}};
  ConnectionSettings settings;
  EXPECT_EQ(settings.GetClientID(), CLIENT_UNKNOWN);
  for (const auto& [value, registered, orb, words, pure] : rows) {
    settings.SetClientID(static_cast<CLIENT_ID>(value));
    EXPECT_EQ(settings.GetClientID4CRBRegister(), registered) << value;
    EXPECT_EQ(settings.GetClientIDAsString(), orb) << value;
    EXPECT_EQ(ClientIDtoString(settings.GetClientID()), words) << value;
    EXPECT_EQ(settings.isPureClient(), pure) << value;
  }
}

TEST(ServerKinds, HaveANameForTheNamingServiceAndTheUser) {
  const std::tuple<int, const char*, const char*> rows[] = {
      {0, "GSR", "VELTRA-M/VQ Server"},
      {4, "CMS", "VELTRA-M/VQ Configuration Manager Server"},
      {5, "SLS", ""},
      {6, "", ""},
      {-1, "", ""}};
  for (const auto& [value, naming, words] : rows) {
    EXPECT_EQ(GL_ResolveServerID(static_cast<SERVER_ID>(value)), naming);
    EXPECT_EQ(ServerIDtoString(static_cast<SERVER_ID>(value)), words);
  }
}

TEST(ConnectionSettings, LogsChangesAndNeverASecret) {
  LogCapture log;
  ConnectionSettings settings;
  settings.SetServerName("central");
  settings.SetUserName("alice");
  settings.SetDBUserName("vqdb");
  settings.SetPassword(std::string(100, 'p'));  // none is too long
  EXPECT_FALSE(settings.IsConnected());
  settings.SetIsConnected(true);
  EXPECT_FALSE(settings.IsConnected()) << "the user ID decides";
  settings.SetUserID("abc");
  EXPECT_TRUE(settings.IsConnected());
  EXPECT_EQ(log.Take(), (std::vector<std::string>{
                            "4 Changed Server name to: central", "4 Changed User name to: alice",
                            "4 Changed DB User name to: vqdb",
                            "4 Changed User Id to: DD900150983cd24fb0d6963f7d28e17f72"}));
}

TEST(ConnectionSettings, GivesThePasswordInTheFormThatIsAskedFor) {
  ConnectionSettings settings;
  settings.SetPassword("secret");
  const std::string encoded = "K7gNU3sd";  // what a server stores of "secret"
  EXPECT_EQ(ConnectionSettings::EncodePassword("secret"), encoded);
  EXPECT_TRUE(settings.IsEncodePassword() && settings.IsChallengeResponse());
  const std::pair<int, std::string> rows[] = {
      {0, "secret"}, {1, encoded}, {2, encoded}, {3, "secret"}, {-1, "secret"}};
  for (const auto& [form, text] : rows) {
    EXPECT_EQ(settings.GetPassword(static_cast<eEncodingType>(form)), text) << form;
  }
  settings.SetWait4Shutdown(false);
  settings.SetUserID("abc");
  ConnectionSettings copy;
  copy = settings;
  EXPECT_EQ(copy.GetPassword(ENC_PLAIN) + copy.GetUserID(), "secretabc");
  EXPECT_FALSE(copy.GetWait4Shutdown());
  EXPECT_EQ(ConnectionSettings::EncodePassword("").size(), 8U);
}

}  // namespace
}  // namespace vq::test
