#include <vq_client_common/environment/ClientProperties.h>

#include <ctime>

#include <tests/fixture/UnitTest.h>
#include <vq_client_common/environment/XmlHelpers.h>
#include <xercesc/dom/DOM.hpp>

namespace {

constexpr char kFile[] = "CommonClientConf.xml";
constexpr char kMissing[] = "missing";

struct Released : ClientProperties {
  using ClientProperties::ReleaseStaticObject;
};

class ClientPropertiesTest : public ::testing::Test {
 protected:
  ~ClientPropertiesTest() override { Released::ReleaseStaticObject(); }

  void Write(const std::string& content) const {
    m_directory.Write(kFile, content);
    if (content == kMissing) std::filesystem::remove(m_directory / kFile);
  }
  ClientProperties* Loaded(const std::string& content) {
    Released::ReleaseStaticObject();
    Write(content);
    return ClientProperties::Get();
  }
  std::string File() const { return m_directory.Read(kFile); }

  vq::test::TemporaryDirectory m_directory;
  vq::test::Variable m_data{"VQ_DATA", m_directory.Path()};
  vq::test::Variable m_home{"VQ_HOME", m_directory / "root"};
  vq::test::Variable m_locale{"LC_ALL", "C.UTF-8"};
  vq::test::LogCapture m_log{5};
};

std::string Repeated(const std::string& text, int times) {
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

TEST_F(ClientPropertiesTest, Reads) {
  vq::test::ExpectRows(
      [&](const std::string& content) { return Loaded(content)->GetStringValue("K", "-"); },
      {"<any a='1'><!-- c --><K x='y'>v<i/>w</K>text<?p?></any> -> v",
       "<P>text<![CDATA[<K>]]>&lt;<K>first</K><K>second</K></P> -> first",
       "<P><k>v</k><i><K>v</K></i></P> -> -", "<P><K/></P> -> ", "<P><K><i>v</i></K></P> -> ",
       "<P><K> v\n </K></P> ->  v\n ", "<P><K>&lt;&amp;&gt;&quot;&apos;&#65;</K></P> -> <&>\"'A",
       "<P><K><![CDATA[<]]></K></P> -> <", "<P><K>\xC3\xA9</K></P> -> \xC3\xA9",
       "<P><K>" + Repeated("<d>", 100'000) + Repeated("</d>", 100'000) + "</K></P> -> ",
       // What a document declares could expand without end. What it names is not fetched, or there
       // would be an error.
       "<!DOCTYPE P []><P><K>v</K></P> -> -",
       "<!DOCTYPE P SYSTEM 'none.dtd'><P><K>v</K></P> -> v"});
  const std::string many = "<P><K>" + Repeated("&amp;", 100'000) + "</K></P>";
  EXPECT_EQ(Loaded(many)->GetStringValue("K", "").size(), 100'000U);
}

TEST_F(ClientPropertiesTest, FailedReloadLeavesNothing) {
  for (const char* content : {"<P><K>v</K>", "", "<P><K>\xE9</K></P>", "<P>\x01</P>", kMissing}) {
    ClientProperties* properties = Loaded("<P><K>v</K></P>");
    EXPECT_EQ(properties->GetStringValue("K", "-"), "v");
    Write(content);
    properties->Reload();
    EXPECT_EQ(m_log.Has(1, "Args file parsing had errors"), content != kMissing);
    m_log.Clear();
    EXPECT_EQ(properties->GetStringValue("K", "-"), "-") << content;
  }
}

TEST_F(ClientPropertiesTest, ReadsNumbers) {
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_EQ(properties->GetIntValue("K", 7), 7);
  const auto number = [&](const std::string& stored) {
    properties->SetStringValue("K", stored, false);
    return std::to_string(properties->GetIntValue("K", 7));
  };
  vq::test::ExpectRows(number, {"12abc -> 12", "abc -> 0", " -> 7", " 3 -> 3", "0 -> 0",
                                "99999999999 -> 2147483647"});
}

TEST_F(ClientPropertiesTest, SavesInItsForm) {
  EXPECT_EQ(ClientProperties::g_pClientProperties, nullptr);
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_TRUE(properties == ClientProperties::Get());
  EXPECT_TRUE(properties == ClientProperties::g_pClientProperties && properties->SaveProperties());
  properties->SetStringValue("b", "a<b&c>\"'%d", false);
  properties->SetIntValue("B", -5, false);
  EXPECT_EQ(File(), "<Properties>\n</Properties>\n");
  properties->SetStringValue("c.c", "", true);
  const std::string saved =
      "<Properties>\n\t<B>-5</B>\n\t<b>a&lt;b&amp;c&gt;&quot;&apos;%d</b>\n"
      "\t<c.c></c.c>\n</Properties>\n";
  EXPECT_EQ(File(), saved);
  ClientProperties copy = *properties;
  Released::ReleaseStaticObject();
  EXPECT_EQ(ClientProperties::g_pClientProperties, nullptr);
  copy.Reload();
  EXPECT_EQ(copy.GetStringValue("b", ""), "a<b&c>\"'%d");
  EXPECT_EQ(copy.GetStringValue("c.c", "-"), "");
  EXPECT_TRUE(copy.SaveProperties()) << "a copy outlives the instance";
  EXPECT_EQ(File(), saved);
}

TEST_F(ClientPropertiesTest, MarkInTextCatchesReplacement) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"K", "a%sb%sc", "\t<K>aKb%sc</%s>\n</Properties>\n"},
      {"%s", "v", "\t<v>%s</%s>\n</Properties>\n"},
      {"K", "<%s", "\t<K>&lt;K</%s>\n</Properties>\n"},
      {"K", std::string("cut\0off", 7), "\t<K>cut\n"}};
  for (const auto& [key, value, expected] : cases) {
    Loaded("<P/>")->SetStringValue(key, value, true);
    EXPECT_EQ(File(), "<Properties>\n" + expected);
  }
}

TEST_F(ClientPropertiesTest, NoticesAFailedSave) {
  ClientProperties* properties = Loaded("<P/>");
  std::filesystem::remove(m_directory / kFile);
  std::filesystem::create_symlink("/dev/full", m_directory / kFile);
  EXPECT_FALSE(properties->SaveProperties()) << "a short text waits for the close";
  properties->SetStringValue("K", std::string(100'000, 'x'), false);
  EXPECT_FALSE(properties->SaveProperties());
  const vq::test::Variable data("VQ_DATA", m_directory / "none");
  EXPECT_FALSE(properties->SaveProperties());
}

TEST_F(ClientPropertiesTest, LoadsManyKeys) {
  std::string many = "<P>";
  for (int i = 0; i < 200'000; ++i) {
    const std::string key = "k" + std::to_string(i);
    many += "<" + key + ">v</" + key + ">";
  }
  const std::clock_t start = std::clock();
  EXPECT_EQ(Loaded(many + "</P>")->GetStringValue("k199999", ""), "v");
  EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
}

TEST_F(ClientPropertiesTest, HelpPageIsEnglish) {
  const std::string page = "\\Help\\Main_Help\\en-US\\index.htm";
  std::string language = "de";
  ClientProperties* properties = ClientProperties::Get();
  EXPECT_EQ(properties->HelpFileBuilder(language) + language, page + "de");
  EXPECT_EQ(properties->getHelpFile(), m_directory / "root/" + page);
  EXPECT_TRUE(m_log.Has(4, "Parameter: 'LocalHelpFile' was not found. using default: ''."));
}

TEST_F(ClientPropertiesTest, StrXGivesTheLocalesEncoding) {
  ClientProperties::Get();  // starts the XML library
  const StrX text(u"a\u00E9");
  EXPECT_STREQ(text.localForm(), "a\xC3\xA9");
  EXPECT_EQ(static_cast<char*>(text), text.localForm());
  EXPECT_STREQ(StrX(nullptr).localForm(), "");
}

TEST_F(ClientPropertiesTest, VqNodeFilterFiltersByTypeAndName) {
  ClientProperties::Get();  // starts the XML library
  auto* document = xercesc::DOMImplementation::getImplementation()->createDocument();
  const auto* element = document->createElement(u"server");
  const auto answer = [&](short type, const char* name, bool reject) {
    return VqNodeFilter(type, name, reject).acceptNode(element);
  };
  constexpr short kElement = xercesc::DOMNode::ELEMENT_NODE;
  EXPECT_EQ(answer(kElement, "server", true), 1);  // accepts
  EXPECT_EQ(answer(kElement, "other", true), 2);   // rejects
  EXPECT_EQ(answer(xercesc::DOMNode::COMMENT_NODE, "server", true), 2);
  EXPECT_EQ(answer(kElement, "other", false), 3);  // skips
  document->release();
}

}  // namespace
