#include <support/configuration/ConfigAPI.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <support/configuration/ConfigAPIFactoryXML.h>
#include <support/configuration/ConfigXml.h>
#include <support/configuration/SafeFile.h>
#include <tests/TestEnvironment.h>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Pair;

class ConfigAPITest : public ::testing::Test {
 protected:
  std::unique_ptr<ConfigAPI> Domain() const {
    return ConfigAPIFactoryXML::Create(m_directory.Path(), "vq");
  }
  std::unique_ptr<ConfigAPI> Loaded() const {
    auto domain = Domain();
    EXPECT_TRUE(domain->Load()) << domain->Error();
    return domain;
  }
  vq::test::TemporaryDirectory m_directory;
};

TEST_F(ConfigAPITest, AMissingFileIsAnEmptyDomainAndSavingMakesIt) {
  const auto domain = Loaded();
  EXPECT_THAT(domain->GetScopes(), ElementsAre());
  EXPECT_EQ(domain->GetVar("default", "a"), std::nullopt);
  EXPECT_TRUE(domain->Save());
  EXPECT_FALSE(std::filesystem::exists(m_directory.Path() + "vq.xml"))
      << "written without a change";

  EXPECT_TRUE(domain->SetVar("default", "-ORBListenEndpoints", "iiop://"));
  ASSERT_TRUE(domain->Save()) << domain->Error();
  EXPECT_THAT(m_directory.Read("vq.xml"),
              HasSubstr("<domain>\n"
                        "  <scope name=\"default\">\n"
                        "    <var name=\"-ORBListenEndpoints\">iiop://</var>\n"
                        "  </scope>\n"
                        "</domain>\n"));
  EXPECT_EQ(Loaded()->GetVar("default", "-ORBListenEndpoints"), "iiop://");

  const auto elsewhere = ConfigAPIFactoryXML::Create(m_directory.Path() + "new/config", "vq");
  EXPECT_TRUE(elsewhere->Load());
  EXPECT_TRUE(elsewhere->SetVar("default", "a", "1"));
  EXPECT_TRUE(elsewhere->Save()) << elsewhere->Error();
  EXPECT_THAT(m_directory.Read("new/config/vq.xml"), HasSubstr("\"a\">1<"));
}

TEST_F(ConfigAPITest, ScopesAndVariables) {
  const auto domain = Domain();
  for (const char* scope : {"b", "default", "a", "Z"}) EXPECT_TRUE(domain->SetVar(scope, "v", ""));
  domain->SetVar("default", "w", "common");
  domain->SetVar("default", "x", "common");
  domain->SetVar("a", "x", "own");
  ASSERT_TRUE(domain->Save()) << domain->Error();

  const auto again = Loaded();
  EXPECT_THAT(again->GetScopes(), ElementsAre("default", "Z", "a", "b"));
  EXPECT_EQ(again->GetVar("a", "v"), "");
  EXPECT_EQ(again->GetVar("a", "w"), std::nullopt);
  EXPECT_EQ(again->GetVar("none", "w"), std::nullopt);

  std::map<std::string, std::string> table{{"kept", "1"}, {"w", "old"}};
  again->GetScopeAndDefaultVars("a", table);
  EXPECT_THAT(table,
              ElementsAre(Pair("kept", "1"), Pair("v", ""), Pair("w", "common"), Pair("x", "own")));
  table.clear();
  again->GetScopeAndDefaultVars("none", table);
  EXPECT_THAT(table, ElementsAre(Pair("v", ""), Pair("w", "common"), Pair("x", "common")));

  EXPECT_TRUE(again->RemoveVar("a", "x"));
  EXPECT_FALSE(again->RemoveVar("a", "x"));
  EXPECT_FALSE(again->RemoveVar("none", "x"));
  EXPECT_TRUE(again->RemoveVar("b", "v"));
  EXPECT_TRUE(again->RemoveScope("Z"));
  EXPECT_FALSE(again->RemoveScope("Z"));
  ASSERT_TRUE(again->Save());
  EXPECT_THAT(Loaded()->GetScopes(), ElementsAre("default", "a", "b"));
  EXPECT_EQ(Loaded()->GetVar("a", "x"), std::nullopt);
}

TEST_F(ConfigAPITest, EveryTextThatXmlCanHoldSurvives) {
  const std::string texts[] = {" blanks ", "a\tb\nc\r\nd\re",  "<&>\"'", "]]>",
                               "\xC3\xA9", "\xF0\x9F\x94\x92", "%s",     "$IP"};
  const auto domain = Domain();
  for (const std::string& text : texts) EXPECT_TRUE(domain->SetVar(text, text, text)) << text;
  ASSERT_TRUE(domain->Save()) << domain->Error();
  const auto again = Loaded();
  for (const std::string& text : texts) EXPECT_EQ(again->GetVar(text, text), text);

  for (const std::string& text : {std::string("\xC3"), std::string("\x01"), std::string("\0", 1),
                                  std::string("\xED\xA0\x80"), std::string("\xEF\xBF\xBF")}) {
    EXPECT_FALSE(domain->SetVar("default", "x", text));
    EXPECT_FALSE(domain->SetVar("default", text, "x"));
    EXPECT_FALSE(domain->SetVar(text, "x", "x"));
  }
  EXPECT_FALSE(domain->SetVar("", "x", "x"));
  EXPECT_FALSE(domain->SetVar("x", "", "x"));
}

TEST_F(ConfigAPITest, AMalformedFileFailsToLoadAndIsNeverOverwritten) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "vq.xml: "},
      {"<domain><scope name=\"default\"></domain>", "line 1, column "},
      {"<domain>\n<var>cut", "line 2"},
      {"<properties/>", "root"},
      {"\xFF\xFE\x00", "vq.xml: "},
  };
  for (const auto& [text, reason] : cases) {
    SCOPED_TRACE(text);
    m_directory.Write("vq.xml", "<domain><scope name='s'><var name='a'>1</var></scope></domain>");
    const auto domain = Loaded();
    m_directory.Write("vq.xml", text);
    EXPECT_FALSE(domain->Load());
    EXPECT_THAT(domain->Error(), HasSubstr(reason));
    EXPECT_EQ(domain->GetVar("s", "a"), "1") << "a failed load must leave the copy alone";
    EXPECT_TRUE(domain->SetVar("s", "b", "2"));
    EXPECT_FALSE(domain->Save());
    EXPECT_EQ(m_directory.Read("vq.xml"), text);

    m_directory.Write("vq.xml", "<domain/>");
    EXPECT_TRUE(domain->Save()) << "the change must still be there: " << domain->Error();
    EXPECT_EQ(Loaded()->GetVar("s", "b"), "2");
  }
}

TEST_F(ConfigAPITest, WhatIsNoReadableFileFails) {
  for (const char* name : {"", "../vq", "/etc/passwd"}) {
    const auto domain = ConfigAPIFactoryXML::Create(m_directory.Path(), name);
    domain->SetVar("default", "a", "1");
    EXPECT_FALSE(domain->Load()) << name;
    EXPECT_FALSE(domain->Save()) << name;
    EXPECT_NE(domain->Error(), "");
  }
  std::filesystem::create_directory(m_directory.Path() + "directory.xml");
  ASSERT_EQ(::mkfifo((m_directory.Path() + "pipe.xml").c_str(), 0600), 0);
  m_directory.Write("large.xml",
                    "<domain>" + std::string(vq::ConfigXml::kLargestFile, ' ') + "</domain>");
  for (const char* name : {"directory", "pipe", "large"}) {
    const auto domain = ConfigAPIFactoryXML::Create(m_directory.Path(), name);
    domain->SetVar("default", "a", "1");
    EXPECT_FALSE(domain->Load()) << name;
    EXPECT_FALSE(domain->Save()) << name;
  }
}

TEST_F(ConfigAPITest, WritersDoNotUndoOneAnother) {
  m_directory.Write("vq.xml",
                    "<domain><scope name='default'><var name='a'>1</var>"
                    "<var name='b'>1</var></scope></domain>");
  const auto first = Loaded();
  const auto second = Loaded();
  first->SetVar("default", "a", "first");
  first->RemoveVar("default", "b");
  second->SetVar("second", "c", "2");
  ASSERT_TRUE(first->Save());
  ASSERT_TRUE(second->Save());
  EXPECT_EQ(second->GetVar("default", "a"), "first") << "a save takes over what it found";
  EXPECT_EQ(second->GetVar("default", "b"), std::nullopt);
  EXPECT_EQ(Loaded()->GetVar("second", "c"), "2");
}

TEST_F(ConfigAPITest, AWriterThatHoldsTheLockForLongIsNotWaitedForForEver) {
  const std::string lockFile = m_directory.Path() + "vq.xml.lock";
  vq::ConfigXml domain(m_directory.Path(), "vq", std::chrono::milliseconds(20));
  domain.SetVar("default", "a", "1");
  {
    const vq::FileLock other(lockFile, std::chrono::milliseconds(0));
    ASSERT_TRUE(other.Held()) << other.Error();
    EXPECT_FALSE(domain.Save());
    EXPECT_THAT(domain.Error(), HasSubstr("another program"));
  }
  EXPECT_TRUE(domain.Save()) << domain.Error();
}

TEST_F(ConfigAPITest, AFullDiskLeavesTheOldFile) {
  const auto domain = Domain();
  domain->SetVar("default", "a", "1");
  ASSERT_TRUE(domain->Save());
  const std::string before = m_directory.Read("vq.xml");

  domain->SetVar("default", "large", std::string(100'000, 'x'));
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{4096, limit.rlim_max};
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const bool saved = domain->Save();
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, formerHandler);
  EXPECT_FALSE(saved);
  EXPECT_THAT(domain->Error(), HasSubstr("vq.xml.new"));
  EXPECT_EQ(m_directory.Read("vq.xml"), before);
  EXPECT_FALSE(std::filesystem::exists(m_directory.Path() + "vq.xml.new"));
  EXPECT_TRUE(domain->Save()) << domain->Error();
}

TEST_F(ConfigAPITest, PermissionsAndLinksStay) {
  namespace fs = std::filesystem;
  const std::string target = m_directory.Write("site/real.xml", "<domain/>");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink(target, m_directory.Path() + "vq.xml");
  const auto domain = Loaded();
  domain->SetVar("default", "a", "1");
  ASSERT_TRUE(domain->Save()) << domain->Error();
  EXPECT_TRUE(fs::is_symlink(m_directory.Path() + "vq.xml"));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_THAT(m_directory.Read("site/real.xml"), HasSubstr("\"a\">1<"));
}

TEST_F(ConfigAPITest, DomainsMayBeUsedOnManyThreads) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([this, t] {
      for (int i = 0; i < 10; ++i) {
        const auto domain = Loaded();
        domain->SetVar("thread" + std::to_string(t), std::to_string(i), "x");
        EXPECT_TRUE(domain->Save()) << domain->Error();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  const auto domain = Loaded();
  EXPECT_EQ(domain->GetScopes().size(), 4U);
  for (const std::string& scope : domain->GetScopes()) {
    std::map<std::string, std::string> table;
    domain->GetScopeAndDefaultVars(scope, table);
    EXPECT_EQ(table.size(), 10U) << scope;
  }
}

}  // namespace
