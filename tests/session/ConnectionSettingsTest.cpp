// What the process knows of its connection, and the names of clients and servers.

#include <gtest/gtest.h>

#include <tests/fixture/LogCapture.h>
#include <vq_client_common/session/ConnectionSettings.h>

namespace vq::test {
namespace {

TEST(ClientKinds, HaveANameForServerOrbAndUser) {
  const struct {
    int value;
    const char *registered, *orb, *words;
    bool pure;
  } kRows[] = {
      {0, "vq_gui", "GUI", "VELTRA-M/VQ GUI", false},
      {2, "vq_xmlutil", "XmlUtil", "XML Utility", true},
      {9, "open_viewpoint_simulator", "OpenVPSim", "VELTRA-M/VQ Service Impact Manager", false},
      {10, "Unkown_Client", "RCI", "VELTRA-M/VQ Remote Client Interface", true},
      {11, "Unkown_Client", "", "Unknown Client", true},
      {12, "Unkown_Client", "", "", true},
      {-1, "Unkown_Client", "", "", true},
  };
  ConnectionSettings settings;
  EXPECT_EQ(settings.GetClientID(), CLIENT_UNKNOWN);
  for (const auto& row : kRows) {
    const auto client = static_cast<CLIENT_ID>(row.value);
    settings.SetClientID(client);
    EXPECT_EQ(settings.GetClientID4CRBRegister(), row.registered) << row.value;
    EXPECT_EQ(settings.GetClientIDAsString(), row.orb) << row.value;
    EXPECT_EQ(ClientIDtoString(client), row.words) << row.value;
    EXPECT_EQ(settings.isPureClient(), row.pure) << row.value;
  }
}

TEST(ServerKinds, HaveANameForTheNamingServiceAndTheUser) {
  const struct {
    int value;
    const char *naming, *words;
  } kRows[] = {
      {0, "GSR", "VELTRA-M/VQ Server"},
      {4, "CMS", "VELTRA-M/VQ Configuration Manager Server"},
      {5, "SLS", ""},
      {6, "", ""},
      {-1, "", ""},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(GL_ResolveServerID(static_cast<SERVER_ID>(row.value)), row.naming);
    EXPECT_EQ(ServerIDtoString(static_cast<SERVER_ID>(row.value)), row.words);
  }
}

TEST(ConnectionSettings, LogsChangesAndNeverASecret) {
  LogCapture log;
  ConnectionSettings settings;
  settings.SetServerName("central");
  settings.SetUserName("alice");
  settings.SetDBUserName("vqdb");
  EXPECT_TRUE(log.Has(4, "Changed Server name to: central"));
  EXPECT_TRUE(log.Has(4, "Changed User name to: alice"));
  EXPECT_TRUE(log.Has(4, "Changed DB User name to: vqdb"));
  EXPECT_FALSE(settings.IsConnected());
  settings.SetIsConnected(true);
  EXPECT_FALSE(settings.IsConnected()) << "the user ID decides";
  settings.SetUserID("abc");
  EXPECT_TRUE(settings.IsConnected());
  EXPECT_TRUE(log.Has(4, "Changed User Id to: DD900150983cd24fb0d6963f7d28e17f72"));
  log.Clear();
  settings.SetPassword(std::string(100, 'p'));
  EXPECT_EQ(log.Text(), "") << "no length of a password is too long";
}

TEST(ConnectionSettings, GivesThePasswordInTheFormThatIsAskedFor) {
  ConnectionSettings settings;
  settings.SetPassword("secret");
  const std::string encoded = "K7gNU3sd";  // what a server stores of "secret"
  EXPECT_EQ(ConnectionSettings::EncodePassword("secret"), encoded);
  EXPECT_TRUE(settings.IsEncodePassword());
  EXPECT_TRUE(settings.IsChallengeResponse());
  const struct {
    int form;
    std::string text;
  } kRows[] = {{0, "secret"}, {1, encoded}, {2, encoded}, {3, "secret"}, {-1, "secret"}};
  for (const auto& row : kRows) {
    EXPECT_EQ(settings.GetPassword(static_cast<eEncodingType>(row.form)), row.text) << row.form;
  }
  settings.SetWait4Shutdown(false);
  settings.SetUserID("abc");
  ConnectionSettings copy;
  copy = settings;
  EXPECT_EQ(copy.GetPassword(ENC_PLAIN), "secret");
  EXPECT_EQ(copy.GetUserID(), "abc");
  EXPECT_FALSE(copy.GetWait4Shutdown());
  EXPECT_EQ(ConnectionSettings::EncodePassword("").size(), 8U);
}

}  // namespace
}  // namespace vq::test
