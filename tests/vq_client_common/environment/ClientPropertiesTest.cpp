#include <vq_client_common/environment/ClientProperties.h>

#include <chrono>
#include <climits>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/diagnostics/TDiag.h>
#include <tests/HostileXml.h>
#include <tests/TestEnvironment.h>

namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

struct Released : ClientProperties {
  using ClientProperties::ReleaseStaticObject;
};

class ClientPropertiesTest : public ::testing::Test {
 protected:
  ClientPropertiesTest() {
    TDiag::Instance()->SetMinimumDebugLevel(5);
    TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
      m_lines.push_back(std::to_string(line.level) + " " + std::string(line.text));
    });
  }
  ~ClientPropertiesTest() override {
    Released::ReleaseStaticObject();
    TDiag::Instance()->RemoveAllSinks();
    TDiag::Instance()->SetMinimumDebugLevel(1);
  }

  // The instance, freshly loaded from a file with this content; the log of the load is kept.
  ClientProperties* Loaded(const std::string& content) {
    Released::ReleaseStaticObject();
    m_directory.Write("CommonClientConf.xml", content);
    m_lines.clear();
    return ClientProperties::Get();
  }
  std::string File() const { return m_directory.Read("CommonClientConf.xml"); }

  vq::test::TemporaryDirectory m_directory;
  vq::test::Variable m_data{"VQ_DATA", m_directory.Path()};
  vq::test::Variable m_home{"VQ_HOME", m_directory.Path() + "root"};
  vq::test::Variable m_locale{"LC_ALL", "C.UTF-8"};
  std::vector<std::string> m_lines;
};

TEST_F(ClientPropertiesTest, WithoutAFileItIsAnEmptyStore) {
  EXPECT_EQ(ClientProperties::g_pClientProperties, nullptr);
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_EQ(properties, ClientProperties::g_pClientProperties);
  EXPECT_EQ(properties, ClientProperties::Get());
  EXPECT_EQ(properties->GetIntValue("LocalHelpFile", 1), 1);
  EXPECT_EQ(properties->GetStringValue("a", "default"), "default");
  EXPECT_EQ(properties->GetStringValue("a", ""), "") << "a default must not be stored";
  EXPECT_THAT(m_lines,
              ElementsAre("1 File " + m_directory.Path() + "CommonClientConf.xmlis missing",
                          "4 Parameter: 'LocalHelpFile' was not found. using default: ''.",
                          "4 Parameter: 'a' was not found. using default: 'default'.",
                          "4 Parameter: 'a' was not found. using default: ''."));

  Released::ReleaseStaticObject();
  EXPECT_EQ(ClientProperties::g_pClientProperties, nullptr);
  Released::ReleaseStaticObject();
  EXPECT_NE(ClientProperties::Get(), nullptr);
}

TEST_F(ClientPropertiesTest, Reads) {
  struct Case {
    const char* content;
    const char* expected;  // of the key K; "-" for none
  };
  const Case cases[] = {
      {"<Properties>\n\t<K>v</K>\n</Properties>\n", "v"},
      {"<any a='1'><!-- c --><K x='y'>v<i/>w</K>text<?p?></any>", "v"},
      {"<P><K>first</K><K>second</K></P>", "first"},
      {"<P><k>v</k></P>", "-"},
      {"<P><K/></P>", ""},
      {"<P><K></K></P>", ""},
      {"<P><K><i>v</i></K></P>", ""},
      {"<P><K><!--c-->v</K></P>", "c"},
      {"<P><K> v\n </K></P>", " v\n "},
      {"<P><K>&lt;&amp;&gt;&quot;&apos;&#65;</K></P>", "<&>\"'A"},
      {"<P><K><![CDATA[<]]></K></P>", "<"},
      {"<P><i><K>v</K></i></P>", "-"},
      {"<P><K>\xC3\xA9\xF0\x9F\x94\x92</K></P>", "\xC3\xA9\xF0\x9F\x94\x92"},
      {"<P/>", "-"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.content);
    EXPECT_EQ(Loaded(c.content)->GetStringValue("K", "-"), c.expected);
    EXPECT_THAT(m_lines[0], MatchesRegex("5 Parsing client properties file: 0x[0-9a-f]+"));
  }
  const std::string many = vq::test::Repeated("&amp;", 100'000);
  EXPECT_EQ(Loaded("<P><K>" + many + "</K></P>")->GetStringValue("K", "-"),
            std::string(100'000, '&'))
      << "XML's own entities must not count as hostile";
}

TEST_F(ClientPropertiesTest, AFailedReloadLeavesTheStoreEmpty) {
  for (const char* content : {"<P><K>v</K>", "", "<P><K>v</P></K>", "<P><K>\xE9</K></P>",
                              "<P><a b>v</a b></P>", "<P>\x01</P>"}) {
    SCOPED_TRACE(content);
    ClientProperties* properties = Loaded("<P><K>v</K></P>");
    m_directory.Write("CommonClientConf.xml", content);
    m_lines.clear();
    properties->Reload();
    EXPECT_THAT(m_lines, Contains("1 Args file parsing had errors"));
    EXPECT_EQ(properties->GetStringValue("K", "-"), "-");
    m_directory.Write("CommonClientConf.xml", "<P><K>w</K></P>");
    properties->Reload();
    EXPECT_EQ(properties->GetStringValue("K", "-"), "w");
  }
  ClientProperties* properties = Loaded("<P><K>v</K></P>");
  std::filesystem::remove(m_directory.Path() + "CommonClientConf.xml");
  properties->Reload();
  EXPECT_EQ(properties->GetStringValue("K", "-"), "-");
}

TEST_F(ClientPropertiesTest, AHostileFileCostsLittleAndFetchesNothing) {
  vq::test::FetchWatch watch(m_directory);
  for (const std::string& content : vq::test::HostileXml("P", "<P><K>", "</K></P>", watch)) {
    SCOPED_TRACE(content.substr(0, 100));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Loaded(content)->GetStringValue("K", ""), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_FALSE(watch.Fetched());
  }
}

TEST_F(ClientPropertiesTest, Numbers) {
  const std::tuple<const char*, int> cases[] = {
      {"12abc", 12},           {"abc", 0}, {"", 7}, {"-5", -5}, {" 3", 3}, {"0", 0},
      {"99999999999", INT_MAX}};
  ClientProperties* properties = ClientProperties::Get();
  for (const auto& [stored, expected] : cases) {
    properties->SetStringValue("K", stored, false);
    EXPECT_EQ(properties->GetIntValue("K", 7), expected) << stored;
  }
  EXPECT_EQ(properties->GetIntValue("none", 7), 7);
  properties->SetIntValue("K", -5, false);
  EXPECT_EQ(properties->GetStringValue("K", ""), "-5");
  EXPECT_EQ(File(), "") << "nothing may be written before a save";
}

TEST_F(ClientPropertiesTest, SavesInItsForm) {
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_TRUE(properties->SaveProperties());
  EXPECT_EQ(File(), "<Properties>\n</Properties>\n");

  properties->SetStringValue("b", "a<b&c>\"'%d", false);
  properties->SetStringValue("B", "", false);
  properties->SetStringValue("a_long.key", "%", true);
  const std::string saved =
      "<Properties>\n\t<B></B>\n\t<a_long.key>%</a_long.key>\n"
      "\t<b>a&lt;b&amp;c&gt;&quot;&apos;%d</b>\n</Properties>\n";
  EXPECT_EQ(File(), saved);

  properties->Reload();
  EXPECT_EQ(properties->GetStringValue("b", ""), "a<b&c>\"'%d");
  EXPECT_EQ(properties->GetStringValue("B", "-"), "");
  EXPECT_TRUE(properties->SaveProperties());
  EXPECT_EQ(File(), saved);
}

TEST_F(ClientPropertiesTest, TextsThatHoldTheMarkOfTheTemplateCatchTheNextReplacement) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"K", "%s", "\t<K>K</%s>\n"},
      {"K", "a%sb%sc", "\t<K>aKb%sc</%s>\n"},
      {"%s", "v", "\t<v>%s</%s>\n"},
      {"K", "<%s", "\t<K>&lt;K</%s>\n"},
      {"K", std::string("cut\0off", 7), "\t<K>cut\n"},
  };
  for (const auto& [key, value, expected] : cases) {
    ClientProperties* properties = Loaded("<P/>");
    properties->SetStringValue(key, value, true);
    const std::string end = value.find('\0') == std::string::npos ? "</Properties>\n" : "";
    EXPECT_EQ(File(), "<Properties>\n" + expected + end);
  }
}

TEST_F(ClientPropertiesTest, TellsTheLogWhatHappens) {
  ClientProperties* properties = Loaded("<P/>");
  m_lines.clear();
  properties->SetStringValue("K", "1", false);
  properties->SetIntValue("K", 2, true);
  properties->GetStringValue("K", "");
  properties->SetStringValue("%s", "x", false);
  properties->GetStringValue("%s", "");
  EXPECT_THAT(
      m_lines,
      ElementsAre("5 New parameter was inserted: K", "5 Value of Parameter 'K' was set to '2'",
                  "5 Parameters file was updated", "5 Found Parameter: K. Value is: 2",
                  "5 New parameter was inserted: %s", "5 Found Parameter: x. Value is: %s"));
}

TEST_F(ClientPropertiesTest, AFailedSaveIsReported) {
  ClientProperties* properties = ClientProperties::Get();
  m_lines.clear();
  {
    const vq::test::Variable data("VQ_DATA", m_directory.Path() + "none");
    EXPECT_FALSE(properties->SaveProperties());
  }
  {
    std::filesystem::create_symlink("/dev/full", m_directory.Path() + "CommonClientConf.xml");
    EXPECT_FALSE(properties->SaveProperties());
  }
  EXPECT_THAT(m_lines, ElementsAre("1 Parameters file failed to open for saving",
                                   "1 Parameters file was not closed"));
}

TEST_F(ClientPropertiesTest, TheHelpPageIsTheEnglishOneForEveryLanguage) {
  const std::string page = "\\Help\\Main_Help\\en-US\\index.htm";
  std::string language = "de";
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_EQ(properties->HelpFileBuilder(language), page);
  EXPECT_EQ(language, "de");
  for (const char* locale : {"de_DE.UTF-8", "C", "a_locale_with_a_long_name"}) {
    const vq::test::Variable set("LC_ALL", locale);
    for (const int tryLocalFirst : {1, 0}) {
      properties->SetIntValue("LocalHelpFile", tryLocalFirst, false);
      EXPECT_EQ(properties->getHelpFile(), m_directory.Path() + "root/" + page);
    }
  }
  m_directory.Write("root/" + page, "help");
  properties->SetIntValue("LocalHelpFile", 1, false);
  EXPECT_EQ(properties->getHelpFile(), m_directory.Path() + "root/" + page);
}

TEST_F(ClientPropertiesTest, ACopyOutlivesTheInstance) {
  ClientProperties copy = *Loaded("<P><K>v</K></P>");
  Released::ReleaseStaticObject();
  copy.SetStringValue("K", "w", true);
  copy.Reload();
  EXPECT_EQ(copy.GetStringValue("K", ""), "w");
}

}  // namespace
