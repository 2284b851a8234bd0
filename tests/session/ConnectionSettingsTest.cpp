// What the process knows of its connection, and the names of clients and servers.

#include <vq_client_common/session/ConnectionSettings.h>

#include <tests/fixture/UnitTest.h>

namespace vq::test {
namespace {

TEST(ClientAndServerKinds, HaveNames) {
  ConnectionSettings settings;
  EXPECT_EQ(settings.GetClientID(), CLIENT_UNKNOWN);
  const auto client = [&](const std::string& number) {
    settings.SetClientID(static_cast<CLIENT_ID>(std::stoi(number)));
    return settings.GetClientID4CRBRegister() + "/" + settings.GetClientIDAsString() + "/" +
           ClientIDtoString(settings.GetClientID()) + (settings.isPureClient() ? ", pure" : "");
  };
  ExpectRows(client, {"0 -> vq_gui/GUI/VELTRA-M/VQ GUI",
                      "10 -> Unkown_Client/RCI/VELTRA-M/VQ Remote Client Interface, pure",
                      "11 -> Unkown_Client//Unknown Client, pure", "12 -> Unkown_Client//, pure",
                      "-1 -> Unkown_Client//, pure"});
  const auto server = [](const std::string& number) {
    const auto kind = static_cast<SERVER_ID>(std::stoi(number));
    return GL_ResolveServerID(kind) + "/" + ServerIDtoString(kind);
  };
  ExpectRows(server, {"0 -> GSR/VELTRA-M/VQ Server", "5 -> SLS/", "6 -> /", "-1 -> /"});
}

TEST(ConnectionSettings, KeepSecretsOutOfTheLog) {
  LogCapture log;
  ConnectionSettings settings;
  settings.SetServerName("central");
  settings.SetUserName("alice");
  settings.SetDBUserName("vqdb");
  settings.SetPassword(std::string(100, 'p'));  // none is too long
  settings.SetIsConnected(true);
  EXPECT_FALSE(settings.IsConnected()) << "the user ID decides";
  settings.SetUserID("abc");
  EXPECT_TRUE(settings.IsConnected());
  EXPECT_EQ(log.Take(), (std::vector<std::string>{
                            "4 Changed Server name to: central", "4 Changed User name to: alice",
                            "4 Changed DB User name to: vqdb",
                            "4 Changed User Id to: DD900150983cd24fb0d6963f7d28e17f72"}));
}

TEST(ConnectionSettings, GiveThePasswordInTheFormAskedFor) {
  ConnectionSettings settings;
  settings.SetPassword("secret");
  const std::string encoded = "K7gNU3sd";  // what a server stores of "secret"
  EXPECT_EQ(ConnectionSettings::EncodePassword("secret"), encoded);
  EXPECT_EQ(ConnectionSettings::EncodePassword("").size(), 8U);
  EXPECT_TRUE(settings.IsEncodePassword() && settings.IsChallengeResponse());
  for (const int form : {-1, 0, 1, 2, 3}) {
    EXPECT_EQ(settings.GetPassword(static_cast<eEncodingType>(form)),
              form == 1 || form == 2 ? encoded : "secret");
  }
  settings.SetWait4Shutdown(false);
  settings.SetUserID("abc");
  ConnectionSettings copy;
  copy = settings;
  EXPECT_EQ(copy.GetPassword(ENC_PLAIN) + copy.GetUserID(), "secretabc");
  EXPECT_FALSE(copy.GetWait4Shutdown());
}

}  // namespace
}  // namespace vq::test
