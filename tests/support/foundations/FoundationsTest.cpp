#include <sstream>
#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <support/foundations/Digest.h>
#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>
#include <support/foundations/Platform.h>
#include <support/foundations/ProductVersion.h>
#include <support/foundations/ProfileSettings.h>
#include <support/foundations/ReplaceFirst.h>
#include <tests/TestEnvironment.h>

namespace {

using ::testing::ElementsAre;
using vq::test::TemporaryDirectory;
using vq::test::Variable;

struct LocationCase {
  const char* label;
  std::optional<std::string> vqHome, vqData, domains, xdgData, home;
  const char* root;
  const char* data;
  const char* config;
};

TEST(Locations, ComeFromTheEnvironmentInTheirOrder) {
  const LocationCase cases[] = {
      {"installed",
       {},
       {},
       {},
       {},
       "/home/u",
       VQ_TEST_SHARE,
       "/home/u/.local/share/vq/",
       VQ_TEST_SHARE "config/"},
      {"empty is unset", "", "", "", "", "/home/u", VQ_TEST_SHARE, "/home/u/.local/share/vq/",
       VQ_TEST_SHARE "config/"},
      {"home", "/opt/vq", {}, {}, "/x", "/home/u", "/opt/vq/", "/opt/vq/data/", "/opt/vq/config/"},
      {"closed already", "/opt/vq/", "/d/", "/c/", {}, {}, "/opt/vq/", "/d/", "/c/"},
      {"all given", "/opt/vq", "/d", "/c", {}, {}, "/opt/vq/", "/d/", "/c/"},
      {"user's data",
       {},
       {},
       {},
       "/x",
       "/home/u",
       VQ_TEST_SHARE,
       "/x/vq/",
       VQ_TEST_SHARE "config/"},
      {"relative is void",
       {},
       {},
       "/c",
       "x",
       "/home/u/",
       VQ_TEST_SHARE,
       "/home/u/.local/share/vq/",
       "/c/"},
  };
  for (const LocationCase& c : cases) {
    SCOPED_TRACE(c.label);
    const Variable vqHome("VQ_HOME", c.vqHome), vqData("VQ_DATA", c.vqData),
        domains("VQ_CONFIG_DOMAINS", c.domains), xdgData("XDG_DATA_HOME", c.xdgData),
        home("HOME", c.home);
    EXPECT_EQ(GetVQRootLocation(), c.root);
    EXPECT_EQ(GetVQDataLocation(), c.data);
    EXPECT_EQ(GetConfigDomainsDir(), c.config);
  }
}

TEST(Locations, TheDomainNameHasADefault) {
  const Variable unset("VQ_CONFIG_DOMAIN");
  EXPECT_EQ(GetConfigDomainName(), "vq");
  const Variable set("VQ_CONFIG_DOMAIN", "site");
  EXPECT_EQ(GetConfigDomainName(), "site");
}

TEST(IniFile, ReadsSectionsAndLeavesBadLinesOutAlone) {
  const std::string longLine(198, 'x');
  std::istringstream text("[One]\n a = 1 ; note\nno value\nb=" + longLine +
                          "\nc = x=y\n  more\n[two]\nA:2\n[ONE]\nlast=");
  const vq::IniFile file(text);
  EXPECT_EQ(file.Get("one", "A"), "1");
  EXPECT_EQ(file.Get("One", "b"), std::nullopt);
  EXPECT_EQ(file.Get("One", "c"), "x=y\nmore");
  EXPECT_EQ(file.Get("Two", "a"), "2");
  EXPECT_EQ(file.Get("One", "last"), "");
  EXPECT_EQ(file.Get("", "a"), std::nullopt);
  EXPECT_EQ(file.FirstBadLine(), 3);

  std::istringstream fits("[s]\nb=" + std::string(195, 'x') + "\nc=" + std::string(196, 'x'));
  const vq::IniFile atTheLimit(fits);
  EXPECT_EQ(atTheLimit.Get("s", "b"), std::string(195, 'x'));
  EXPECT_EQ(atTheLimit.Get("s", "c"), std::nullopt);
  EXPECT_EQ(atTheLimit.FirstBadLine(), 3);
}

TEST(ProductVersion, FindsTheProductOrTouchesNothing) {
  const TemporaryDirectory root;
  const Variable home("VQ_HOME", root.Path());
  std::string version = "0";
  std::list<std::string> patches{"kept"};
  EXPECT_EQ(GetProductVersion("NFT", version, patches), 0);

  root.Write("installed-products.ini",
             "[NFT]\nversion = 6.4.01\npatches = P.1, P.2,,\n  P.3\n[NONE]\npatches=P.9\n"
             "[BARE]\nversion=7\n");
  EXPECT_EQ(GetProductVersion("NONE", version, patches), 0);
  EXPECT_EQ(version, "0");
  EXPECT_THAT(patches, ElementsAre("kept"));

  EXPECT_EQ(GetProductVersion("NFT", version, patches), 1);
  EXPECT_EQ(version, "6.4.01");
  EXPECT_THAT(patches, ElementsAre("P.1", "P.2", "P.3"));
  EXPECT_EQ(GetProductVersion("BARE", version, patches), 1);
  EXPECT_EQ(version, "7");
  EXPECT_THAT(patches, ElementsAre());
}

class ProfileSettings : public ::testing::Test {
 protected:
  struct Machine : vq::Platform {
    explicit Machine(std::string path) : directory(std::move(path)) {}
    std::string MachineSettingsDirectory() const override { return directory; }
    std::string directory;
  };
  static std::string Line(const std::string& value) {
    return "[Orb Parameters]\nRegisterTimeOut = " + value + "\n";
  }
  int Get(bool userFirst, const std::string& location = "") {
    int value = 77;
    const bool found = GetProfileIntFromCurrentUserOrLocalMachine(
        location, "Orb Parameters", "RegisterTimeOut", value, userFirst);
    EXPECT_TRUE(found || value == 77) << "a value that was not found was changed";
    return found ? value : -77;
  }
  TemporaryDirectory m_user, m_etc;
  Variable m_config{"XDG_CONFIG_HOME", m_user.Path()};
  Machine m_machine{m_etc.Path()};
  vq::PlatformReplacement m_replaced{m_machine};
};

TEST_F(ProfileSettings, TheFlagDecidesWhoWins) {
  EXPECT_EQ(Get(true), -77);
  m_etc.Write("profile.ini", Line("5"));
  EXPECT_EQ(Get(true), 5);
  m_user.Write("vq/profile.ini", Line("-3"));
  EXPECT_EQ(Get(true), -3);
  EXPECT_EQ(Get(false), 5);
  EXPECT_EQ(Get(true, "Other"), -77);
  m_user.Write("vq/Other/profile.ini", Line("0"));
  EXPECT_EQ(Get(false, "Other"), 0);
}

TEST_F(ProfileSettings, WhatIsNoWholeNumberIsNotThere) {
  m_etc.Write("profile.ini", Line("5"));
  for (const char* value : {"", "x", "12abc", "1.5", "0x10", "2147483648", "- 1"}) {
    m_user.Write("vq/profile.ini", Line(value));
    EXPECT_EQ(Get(true), 5) << value;
  }
  m_user.Write("vq/profile.ini", Line("-2147483648"));
  EXPECT_EQ(Get(true), -2147483648);
}

TEST(Digest, KnownAnswers) {
  for (const auto& [text, expected] :
       {std::pair<std::string, std::string>{"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"}}) {
    char buffer[34];
    buffer[33] = '#';
    EXPECT_TRUE(CalcMD5(text.data(), text.size(), 0, buffer));
    EXPECT_EQ(buffer, expected);
    EXPECT_EQ(buffer[33], '#');
  }
  char buffer[33];
  EXPECT_TRUE(CalcMD5(nullptr, 0, 0, buffer));
}

TEST(ReplaceFirst, ReplacesOneMarkAndFindsOneThatWasFilledIn) {
  std::string text = "Version %s of %s";
  EXPECT_TRUE(vq::ReplaceFirst(text, "%s", "a %s"));
  EXPECT_EQ(text, "Version a %s of %s");
  EXPECT_TRUE(vq::ReplaceFirst(text, "%s", "b"));
  EXPECT_EQ(text, "Version a b of %s");
  EXPECT_FALSE(vq::ReplaceFirst(text, "%d", "c"));
  EXPECT_FALSE(vq::ReplaceFirst(text, "", "c"));
  EXPECT_EQ(text, "Version a b of %s");
}

TEST(Platform, AnswersFromTheSystemUnlessReplaced) {
  char expected[256] = {};
  ASSERT_EQ(::gethostname(expected, 255), 0);
  std::string name;
  EXPECT_TRUE(vq::HostName(name));
  EXPECT_EQ(name, expected);

  if (const passwd* account = ::getpwuid(::geteuid())) {
    const std::string own = account->pw_name;
    EXPECT_TRUE(vq::AccountName(name, own.size() + 1));
    EXPECT_EQ(name, own);
    EXPECT_FALSE(vq::AccountName(name, own.size()));
    EXPECT_EQ(name, "");
  }

  struct Refusing : vq::Platform {
    bool HostName(std::string&) const override { return false; }
  };
  {
    const Refusing machine;
    const vq::PlatformReplacement replaced(machine);
    EXPECT_FALSE(vq::HostName(name));
  }
  EXPECT_TRUE(vq::HostName(name));
}

}  // namespace
