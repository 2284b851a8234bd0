#include <csignal>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/configuration/ConfigAPI.h>
#include <support/configuration/ConfigDocument.h>
#include <support/configuration/SafeFile.h>
#include <tests/fixture/UnitTest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using std::string_literals::operator""s;
using Kind = vq::ConfigChange::Kind;
using Table = std::map<std::string, std::string>;
namespace fs = std::filesystem;

class ConfigAPITest : public ::testing::Test {
 protected:
  std::unique_ptr<ConfigAPI> Domain(const std::string& name = "vq") const {
    return ConfigAPIFactoryXML::Create(m_directory.Path(), name);
  }
  std::unique_ptr<ConfigAPI> Loaded() const {
    auto domain = Domain();
    EXPECT_TRUE(domain->Load()) << domain->Error();
    return domain;
  }
  static mode_t Mode(const std::string& path) {
    return static_cast<mode_t>(fs::status(path).permissions());
  }
  static Table InForce(const ConfigAPI& domain, const std::string& scope, Table table = {}) {
    domain.GetScopeAndDefaultVars(scope, table);
    return table;
  }
  vq::test::TemporaryDirectory m_directory;
};

TEST_F(ConfigAPITest, SavesWhatIsMissing) {
  const auto domain = ConfigAPIFactoryXML::Create(m_directory / "new/config", "vq");
  EXPECT_TRUE(domain->Load() && domain->Save());
  EXPECT_FALSE(fs::exists(m_directory / "new")) << "written without a change";
  EXPECT_TRUE(domain->SetVar("default", "-ORBListenEndpoints", "iiop://"));
  const mode_t formerMask = ::umask(0077);
  EXPECT_TRUE(domain->Save()) << domain->Error();
  ::umask(formerMask);
  EXPECT_THAT(m_directory.Read("new/config/vq.xml"), HasSubstr(R"(<domain>
  <scope name="default">
    <var name="-ORBListenEndpoints">iiop://</var>
  </scope>
</domain>
)"));
  EXPECT_EQ(Mode(m_directory / "new/config/vq.xml"), 0600U);
}

TEST_F(ConfigAPITest, ScopesAndVariables) {
  const auto domain = Domain();
  for (const char* scope : {"b", "default", "a", "Z"}) EXPECT_TRUE(domain->SetVar(scope, "v", ""));
  for (const char* name : {"w", "x"}) domain->SetVar("default", name, "common");
  domain->SetVar("a", "x", "own");
  ASSERT_TRUE(domain->Save()) << domain->Error();

  const auto again = Loaded();
  EXPECT_THAT(again->GetScopes(), ElementsAre("default", "Z", "a", "b"));
  EXPECT_EQ(again->GetVar("a", "v"), "");
  EXPECT_EQ(again->GetVar("a", "w"), std::nullopt);
  EXPECT_EQ(again->GetVar("none", "w"), std::nullopt);
  EXPECT_EQ(InForce(*again, "a", {{"kept", "1"}, {"w", "old"}}),
            (Table{{"kept", "1"}, {"v", ""}, {"w", "common"}, {"x", "own"}}));
  EXPECT_EQ(InForce(*again, "none"), (Table{{"v", ""}, {"w", "common"}, {"x", "common"}}));

  EXPECT_TRUE(again->RemoveVar("a", "x") && again->RemoveVar("b", "v") && again->RemoveScope("Z"));
  EXPECT_FALSE(again->RemoveVar("a", "x") || again->RemoveVar("none", "x"));
  EXPECT_FALSE(again->RemoveScope("Z"));
  ASSERT_TRUE(again->Save());
  EXPECT_THAT(Loaded()->GetScopes(), ElementsAre("default", "a", "b"));
  EXPECT_EQ(Loaded()->GetVar("a", "x"), std::nullopt);
}

TEST_F(ConfigAPITest, KeepsEveryXmlText) {
  const auto domain = Domain();
  const char* const texts[] = {" blanks ", "a\tb\nc\r\nd\re", "<&>\"']]>", "\xC3\xA9",
                               "\xF0\x9F\x94\x92"};
  for (const std::string text : texts) EXPECT_TRUE(domain->SetVar(text, text, text)) << text;
  ASSERT_TRUE(domain->Save()) << domain->Error();
  for (const std::string text : texts) EXPECT_EQ(Loaded()->GetVar(text, text), text);
  for (const std::string& text : {"\xC3"s, "\x01"s, "\0"s, "\xED\xA0\x80"s, "\xEF\xBF\xBF"s, ""s}) {
    EXPECT_EQ(domain->SetVar("default", "x", text), text.empty());
    EXPECT_FALSE(domain->SetVar("default", text, "x") || domain->SetVar(text, "x", "x"));
  }
}

TEST_F(ConfigAPITest, NeverOverwritesMalformedFile) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "vq.xml: "}, {"<domain>\n<var>cut", "line 2, column "}, {"<properties/>", "root"}};
  for (const auto& [text, reason] : cases) {
    m_directory.Write("vq.xml", "<domain><scope name='s'><var name='a'>1</var></scope></domain>");
    const auto domain = Loaded();
    m_directory.Write("vq.xml", text);
    EXPECT_FALSE(domain->Load());
    EXPECT_THAT(domain->Error(), HasSubstr(reason));
    EXPECT_EQ(domain->GetVar("s", "a"), "1") << "a failed load must leave the copy alone";
    EXPECT_FALSE(domain->SetVar("s", "b", "2") && domain->Save());
    EXPECT_EQ(m_directory.Read("vq.xml"), text);
    m_directory.Write("vq.xml", "<domain/>");
    EXPECT_TRUE(domain->Save()) << "the change must still be there: " << domain->Error();
    EXPECT_EQ(Loaded()->GetVar("s", "b"), "2");
  }
}

TEST_F(ConfigAPITest, RefusesUnreadableFiles) {
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = openFiles();
  fs::create_directory(m_directory / "directory.xml");
  ASSERT_EQ(::mkfifo((m_directory / "pipe.xml").c_str(), 0600), 0);
  const std::string blanks(ConfigAPI::kLargestFile, ' ');
  m_directory.Write("large.xml", "<domain>" + blanks + "</domain>");
  for (const std::string& name : {""s, "../vq"s, "directory\0"s, "directory"s, "pipe"s, "large"s}) {
    const auto domain = Domain(name);
    domain->SetVar("default", "a", "1");
    EXPECT_FALSE(domain->Load() || domain->Save() || domain->Error().empty()) << name;
  }
  EXPECT_TRUE(Domain()->SetVar("s", "a", "1") && Domain()->Save() && Loaded());
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ConfigAPITest, WritersWaitAndMerge) {
  m_directory.Write("vq.xml",
                    "<domain><scope name='default'><var name='a'>1</var>"
                    "<var name='b'>1</var></scope></domain>");
  const auto first = Loaded();
  ConfigAPI second(m_directory.Path(), "vq", std::chrono::milliseconds(20));
  first->SetVar("default", "a", "first");
  first->RemoveVar("default", "b");
  second.SetVar("second", "c", "2");
  ASSERT_TRUE(first->Save());
  {
    const vq::FileLock other(m_directory / "vq.xml.lock", std::chrono::milliseconds(0));
    EXPECT_FALSE(second.Save());
    EXPECT_THAT(second.Error(), HasSubstr("another program"));
  }
  EXPECT_TRUE(second.Save()) << second.Error();
  EXPECT_EQ(InForce(second, "second"), (Table{{"a", "first"}, {"c", "2"}}))
      << "a save takes over what it found";
  EXPECT_EQ(Loaded()->GetVar("second", "c"), "2");
}

TEST_F(ConfigAPITest, StrongerLayerWinsInEveryScope) {
  m_directory.Write(
      "host/vq.xml",
      "<domain><scope name='default'><var name='a'>1</var><var name='b'>1</var></scope>"
      "<scope name='GUI'><var name='b'>2</var><var name='c'>2</var></scope></domain>");
  m_directory.Write("user/vq.xml",
                    "<domain><scope name='default'><var name='b'>3</var></scope></domain>");
  ConfigAPI domain(m_directory / "user", "vq", std::chrono::seconds(1), m_directory / "host");
  ASSERT_TRUE(domain.Load()) << domain.Error();
  EXPECT_EQ(InForce(domain, "GUI"), (Table{{"a", "1"}, {"b", "3"}, {"c", "2"}}));
  EXPECT_EQ(domain.GetVar("GUI", "b"), std::nullopt);
  EXPECT_TRUE(domain.SetVar("default", "c", "4") && domain.RemoveVar("default", "a"));
  EXPECT_TRUE(domain.Save()) << domain.Error();
  EXPECT_EQ(InForce(domain, "GUI"), (Table{{"a", "1"}, {"b", "3"}, {"c", "4"}}));
  EXPECT_THAT(m_directory.Read("host/vq.xml"), HasSubstr("<var name='c'>2</var>"));
  m_directory.Write("host/vq.xml", "<domain");
  EXPECT_FALSE(domain.Load());
  EXPECT_THAT(domain.Error(), HasSubstr("host/vq.xml"));
}

TEST_F(ConfigAPITest, FullDiskLeavesTheOldFile) {
  const std::string target = m_directory.Write("site/real.xml", "<domain/>");
  ::chmod(target.c_str(), 0640);
  fs::create_symlink(target, m_directory / "vq.xml");
  const auto domain = Loaded();
  domain->SetVar("default", "large", std::string(100'000, 'x'));
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{4096, limit.rlim_max};
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_FALSE(domain->Save());
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, formerHandler);
  EXPECT_THAT(domain->Error(), HasSubstr("real.xml.new"));
  EXPECT_EQ(m_directory.Read("site/real.xml"), "<domain/>");
  EXPECT_FALSE(fs::exists(m_directory / "site/real.xml.new"));
  // A save keeps permissions and links, whatever a killed writer left.
  m_directory.Write("site/real.xml.new", "half");
  EXPECT_TRUE(domain->Save()) << domain->Error();
  EXPECT_TRUE(fs::is_symlink(m_directory / "vq.xml"));
  EXPECT_EQ(Mode(target), 0640U);
  EXPECT_THAT(m_directory.Read("site/real.xml"), HasSubstr("\"large\">xxx"));
}

// Two processes of two threads each.
TEST_F(ConfigAPITest, ParallelWritersKeepAllChanges) {
  constexpr int kSaves = 10;
  const pid_t child = ::fork();
  const auto write = [&](const std::string& who) {
    for (int i = 0; i < kSaves; ++i) {
      const auto domain = Loaded();
      domain->SetVar("s", who + std::to_string(i), "x");
      EXPECT_TRUE(domain->Save()) << domain->Error();
    }
  };
  std::jthread other(write, std::to_string(child) + "other");
  write(std::to_string(child) + "own");
  other.join();
  if (child == 0) std::_Exit(HasFailure() ? 1 : 0);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(InForce(*Loaded(), "s").size(), 4U * kSaves);
}

struct ConfigDocumentTest : ::testing::Test {
  bool Parses(const std::string& text) { return document.Parse(text, error); }
  vq::ConfigDocument document;
  std::string error;
};

TEST_F(ConfigDocumentTest, KeepsWhatItDoesNotKnow) {
  const std::string before = R"(<!-- of the site -->
<domain version="2">
  <!-- everybody's -->
  <scope name="default" owner="ops">
    <note>read me</note>
    <var>nameless</var>
)";
  ASSERT_TRUE(Parses(before + R"(    <var name="a">1</var> <!-- why -->
  </scope>
  <scope name="Test1">
    <var name="a">2</var>
  </scope>
</domain>
)")) << error;
  EXPECT_EQ(document.Scopes(),
            (vq::ConfigScopes{{"default", {{"a", "1"}}}, {"Test1", {{"a", "2"}}}}));
  document.Apply({Kind::kSetVar, "default", "a", "3"});
  document.Apply({Kind::kSetVar, "default", "b", "4"});
  document.Apply({Kind::kRemoveScope, "Test1", {}, {}});
  document.Apply({Kind::kRemoveVar, "default", "none", {}});
  EXPECT_THAT(document.Text().value(),
              HasSubstr("?>\n" + before + R"(    <var name="a">3</var> <!-- why -->
    <var name="b">4</var>
  </scope>
</domain>
)"));
}

TEST_F(ConfigDocumentTest, FirstOfTwoCounts) {
  ASSERT_TRUE(
      Parses("<domain><scope name='s'><var name='a'>1</var><var name='a'>2</var></scope>"
             "<scope name='s'><var name='b'/></scope></domain>"));
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"a", "1"}}}}));
  document.Apply({Kind::kRemoveVar, "s", "a", {}});
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {}}}));
  document.Apply({Kind::kRemoveScope, "s", {}, {}});
  EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
}

TEST_F(ConfigDocumentTest, RefusesHostileDocuments) {
  const std::string before = "<domain><scope name='s'><var name='v'>1";
  const std::string after = "</var></scope></domain>";
  const auto nested = [&](int depth) {
    std::string text = before;
    for (int i = 0; i < depth; ++i) text += "<d>";
    for (int i = 0; i < depth; ++i) text += "</d>";
    return text + after;
  };
  for (const int depth : {99, 100'000}) {
    EXPECT_FALSE(Parses(nested(depth)));
    EXPECT_THAT(error, HasSubstr("nested"));
  }
  for (const char* type : {"[]", "[<!ENTITY e '1'>]", "SYSTEM 'none'"}) {
    EXPECT_FALSE(Parses("<!DOCTYPE domain " + std::string(type) + ">" + nested(0))) << type;
    EXPECT_THAT(error, HasSubstr("declaration"));
  }
  EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
  EXPECT_TRUE(Parses(nested(98))) << error;
  EXPECT_TRUE(Parses(before + "&amp;&#x41;&lt;" + after)) << error;
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"v", "1&A<"}}}}));
}

}  // namespace
