// What the process knows of its connection, the names of clients and servers, and the report of all
// settings.

#include <map>

#include <gtest/gtest.h>

#include <tests/fixture/Environment.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/SettingsReport.h>

namespace vq::test {
namespace {

TEST(ClientAndServerKinds, HaveNames) {
  const std::tuple<int, std::string, bool> clients[] = {
      {0, "vq_gui/GUI/VELTRA-M/VQ GUI", false},
      {10, "Unkown_Client/RCI/VELTRA-M/VQ Remote Client Interface", true},
      {11, "Unkown_Client//Unknown Client", true},
      {12, "Unkown_Client//", true},
      {-1, "Unkown_Client//", true}};
  ConnectionSettings settings;
  EXPECT_EQ(settings.GetClientID(), CLIENT_UNKNOWN);
  for (const auto& [value, names, pure] : clients) {
    settings.SetClientID(static_cast<CLIENT_ID>(value));
    EXPECT_EQ(settings.GetClientID4CRBRegister() + "/" + settings.GetClientIDAsString() + "/" +
                  ClientIDtoString(settings.GetClientID()),
              names);
    EXPECT_EQ(settings.isPureClient(), pure) << value;
  }
  for (const int value : {0, 5, 6, -1}) {
    const auto kind = static_cast<SERVER_ID>(value);
    EXPECT_EQ(GL_ResolveServerID(kind), value == 0 ? "GSR" : value == 5 ? "SLS" : "");
    EXPECT_EQ(ServerIDtoString(kind), value == 0 ? "VELTRA-M/VQ Server" : "");
  }
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

TEST(SettingsReport, NamesOrigins) {
  const TemporaryDirectory directory;
  Environment environment;
  environment.Isolate(directory.Path());
  environment.Set("VQ_DIAG_LEVEL", "3");
  environment.Set("VQ_DIAG_FILE", std::nullopt);
  const auto origins = [] {
    std::map<std::string, std::string> all;
    for (const Setting& setting : ReportSettings(CLIENT_CLI, 0, nullptr)) {
      all[setting.name] = setting.value + " / " + setting.origin;
    }
    return all;
  };
  const auto bare = origins();
  const std::string root = directory / "root/", timeOut = "[Orb Parameters] RegisterTimeOut";
  EXPECT_EQ(bare.at("root"), root + " / environment, VQ_HOME");
  EXPECT_EQ(bare.at("user's settings"), directory / ".config/vq/" + " / built in");
  EXPECT_EQ(bare.at("VQ_DIAG_LEVEL"), "3 / environment");
  EXPECT_EQ(bare.at("VQ_DIAG_FILE"), " / not set");
  EXPECT_EQ(bare.at(timeOut), " / not set; the server is asked");
  EXPECT_EQ(bare.at("product NFT"), " / not set");
  environment.Set("VQ_DATA", directory / "data");
  directory.Write(".config/vq/profile.ini", "[Orb Parameters]\nRegisterTimeOut = 60\n");
  directory.Write("root/installed-products.ini", "[NFT]\nversion = 8.0.05\npatches = P1\n");
  const auto configured = origins();
  EXPECT_TRUE(configured.at("data").ends_with(" / environment, VQ_DATA")) << configured.at("data");
  EXPECT_EQ(configured.at(timeOut), "60 / profile.ini");
  EXPECT_EQ(configured.at("product NFT"), "8.0.05 P1 / " + root + "installed-products.ini");
}

}  // namespace
}  // namespace vq::test
