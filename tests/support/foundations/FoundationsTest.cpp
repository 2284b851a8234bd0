#include <utility>

#include <pwd.h>
#include <unistd.h>

#include <support/foundations/Digest.h>
#include <support/foundations/Environment.h>
#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>
#include <support/foundations/ProductVersion.h>
#include <support/foundations/ReplaceFirst.h>
#include <tests/fixture/UnitTest.h>

namespace {

using ::testing::ElementsAre;
using vq::test::TemporaryDirectory;
using vq::test::Variable;

TEST(Locations, ComeFromTheEnvironment) {
  // The variables, "-" for unset; the root, the data and the layers of the configuration. An empty
  // path and a relative one stand for what the installation brings.
  const auto locations = [](std::string row) {
    vq::test::Environment environment;
    environment.Set("XDG_CONFIG_HOME", std::nullopt);
    for (const char* name : {"HOME", "VQ_HOME", "VQ_DATA", "VQ_CONFIG_DOMAINS", "XDG_DATA_HOME"}) {
      const std::string value = vq::test::Take(row);
      environment.Set(name, value == "-" ? std::nullopt : std::optional(value));
    }
    std::string found = GetVQRootLocation() + " " + GetVQDataLocation();
    if (found.starts_with(VQ_TEST_SHARE)) found.erase(0, std::string(VQ_TEST_SHARE).size());
    const std::vector<std::string> layers = vq::GetConfigDomainsDirs();
    for (const std::string& layer : layers) found += " " + layer;
    EXPECT_EQ(GetConfigDomainsDir(), geteuid() == 0 ? layers.back() : layers.front());
    return found;
  };
  vq::test::ExpectRows(
      locations,
      {"/u - - - - ->  /u/.local/share/vq/ /u/.config/vq/ /etc/vq/",
       "/u     ->  /u/.local/share/vq/ /u/.config/vq/ /etc/vq/",
       "/u/ - - /c x ->  /u/.local/share/vq/ /c/", "/u - - - /x ->  /x/vq/ /u/.config/vq/ /etc/vq/",
       "/u /o - - /x -> /o/ /o/data/ /u/.config/vq/ /o/config/", "- /o/ /d/ /c/ - -> /o/ /d/ /c/",
       "- /o /d /c - -> /o/ /d/ /c/"});
  const Variable unset("VQ_CONFIG_DOMAIN");
  EXPECT_EQ(GetConfigDomainName(), "vq");
  const Variable set("VQ_CONFIG_DOMAIN", "site");
  EXPECT_EQ(GetConfigDomainName(), "site");
}

TEST(IniFile, LeavesBadLinesOut) {
  const std::string longest(195, 'x');
  const TemporaryDirectory directory;
  const std::string text("[One]\n a = 1 ; note\nb=" + longest + "\nd=" + longest +
                         "x\nno value\nc = x=y\n  more\n[two]\nA:2\n[ONE]\nlast=");
  const vq::IniFile file(directory.Write("file.ini", text));
  EXPECT_EQ(file.Get("one", "A"), "1");
  EXPECT_EQ(file.Get("One", "b"), longest);
  EXPECT_EQ(file.Get("One", "d"), std::nullopt);
  EXPECT_EQ(file.Get("One", "c"), "x=y\nmore");
  EXPECT_EQ(file.Get("Two", "a"), "2");
  EXPECT_EQ(file.Get("One", "last"), "");
  EXPECT_EQ(file.FirstBadLine(), 4);
}

TEST(ProductVersion, FindsTheProduct) {
  const TemporaryDirectory root;
  const Variable home("VQ_HOME", root.Path());
  std::list<std::string> patches{"kept"};
  const auto version = [&](const std::string& product) {
    std::string found = "0";
    const int result = GetProductVersion(product.c_str(), found, patches);
    return std::to_string(result) + found;
  };
  EXPECT_EQ(version("NFT"), "00");
  root.Write("installed-products.ini",
             "[NFT]\nversion = 6.4.01\npatches = P.1, P.2,,\n  P.3\n[NONE]"
             "\npatches=P.9\n[BARE]\nversion=7\nno value\n");
  EXPECT_EQ(version("NONE"), "00");
  EXPECT_THAT(patches, ElementsAre("kept"));
  EXPECT_EQ(version("NFT"), "16.4.01");
  EXPECT_THAT(patches, ElementsAre("P.1", "P.2", "P.3"));
  EXPECT_EQ(version("BARE"), "17");
  EXPECT_THAT(patches, ElementsAre());
}

TEST(ProfileSettings, FlagDecides) {
  const TemporaryDirectory host;
  const std::string former = std::exchange(vq::HostSettingsDirectory(), host.Path());
  const TemporaryDirectory user;
  const Variable config("XDG_CONFIG_HOME", user.Path());
  const auto get = [](bool userFirst, const std::string& location = "") {
    int value = 77;
    const bool found =
        GetProfileIntFromCurrentUserOrLocalMachine(location, "S", "K", value, userFirst);
    EXPECT_TRUE(found || value == 77) << "a value that was not found was changed";
    return found ? value : -77;
  };
  EXPECT_EQ(get(true), -77);
  host.Write("profile.ini", "[S]\nK=5\n");
  const auto ofUser = [&](const std::string& value) {
    user.Write("vq/profile.ini", "[S]\nK=" + value);
    return std::to_string(get(true));
  };
  vq::test::ExpectRows(ofUser, {" -> 5", "x -> 5", "12abc -> 5", "1.5 -> 5", "0x10 -> 5",
                                "2147483648 -> 5", "- 1 -> 5", "-2147483648 -> -2147483648"});
  EXPECT_EQ(get(false), 5);
  EXPECT_EQ(get(true, "Other"), -77);
  user.Write("vq/Other/profile.ini", "[S]\nK=0\n");
  EXPECT_EQ(get(false, "Other"), 0);
  vq::HostSettingsDirectory() = former;
}

TEST(Digest, KnownAnswers) {
  char buffer[34] = {};
  buffer[33] = '#';
  EXPECT_TRUE(CalcMD5("abcd", 3, 0, buffer));
  EXPECT_STREQ(buffer, "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_TRUE(CalcMD5(nullptr, 0, 0, buffer));
  EXPECT_STREQ(buffer, "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(buffer[33], '#');
}

TEST(ReplaceFirst, FindsMarkThatWasFilledIn) {
  std::string text = "Version %s of %s";
  EXPECT_TRUE(vq::ReplaceFirst(text, "%s", "a %s") && vq::ReplaceFirst(text, "%s", "b"));
  EXPECT_FALSE(vq::ReplaceFirst(text, "%d", "c") || vq::ReplaceFirst(text, "", "c"));
  EXPECT_EQ(text, "Version a b of %s");
}

TEST(Environment, AnswersFromTheSystem) {
  std::string name;
  EXPECT_TRUE(vq::HostName(name) && !name.empty());
  if (const passwd* account = ::getpwuid(::geteuid())) {
    const std::size_t size = std::string(account->pw_name).size();
    EXPECT_TRUE(vq::AccountName(name, size + 1) && name == account->pw_name);
    EXPECT_FALSE(vq::AccountName(name, size) || !name.empty());
  }
}

}  // namespace
