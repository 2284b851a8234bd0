#include <support/configuration/ConfigDocument.h>

#include <string>

#include <gmock/gmock.h>

#include <tests/HostileXml.h>

namespace {

using ::testing::HasSubstr;
using Kind = vq::ConfigChange::Kind;

TEST(ConfigDocument, WhatItDoesNotKnowStaysWhereItStands) {
  const std::string before =
      "<!-- of the site -->\n<domain version=\"2\">\n  <!-- everybody's -->\n"
      "  <scope name=\"default\" owner=\"ops\">\n    <note>read me</note>\n"
      "    <var>nameless</var>\n";
  vq::ConfigDocument document;
  std::string error;
  ASSERT_TRUE(document.Parse(before + "    <var name=\"a\">1</var> <!-- why -->\n  </scope>\n"
                                      "  <scope name=\"Test1\">\n    <var name=\"a\">2</var>\n"
                                      "  </scope>\n</domain>\n",
                             error))
      << error;
  EXPECT_EQ(document.Scopes(),
            (vq::ConfigScopes{{"default", {{"a", "1"}}}, {"Test1", {{"a", "2"}}}}));
  document.Apply({Kind::SetVar, "default", "a", "3"});
  document.Apply({Kind::SetVar, "default", "b", "4"});
  document.Apply({Kind::RemoveScope, "Test1", {}, {}});
  document.Apply({Kind::RemoveVar, "default", "none", {}});
  EXPECT_THAT(document.Text().value(),
              HasSubstr("?>\n" + before +
                        "    <var name=\"a\">3</var> <!-- why -->\n"
                        "    <var name=\"b\">4</var>\n  </scope>\n</domain>\n"));
}

TEST(ConfigDocument, OfTwoTheFirstCountsAndRemovingTakesAll) {
  vq::ConfigDocument document;
  std::string error;
  const std::string again = "<scope name='s'><var name='b'/></scope></domain>";
  ASSERT_TRUE(document.Parse(
      "<domain><scope name='s'><var name='a'>1</var><var name='a'>2</var></scope>" + again, error));
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"a", "1"}}}}));
  document.Apply({Kind::RemoveVar, "s", "a", {}});
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {}}}));
  document.Apply({Kind::RemoveScope, "s", {}, {}});
  EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
}

TEST(ConfigDocument, AHostileDocumentIsRefusedAtOnceAndFetchesNothing) {
  const vq::test::TemporaryDirectory directory;
  vq::ConfigDocument document;
  std::string error;
  const std::string before = "<domain><scope name='s'><var name='v'>1";
  const std::string after = "</var></scope></domain>";
  vq::test::ExpectHarmless(directory, "domain", before, after,
                           [&](const std::string& text) { return !document.Parse(text, error); });
  const auto nested = [&](int depth) {
    return before + vq::test::Repeated("<d>", depth) + vq::test::Repeated("</d>", depth) + after;
  };
  EXPECT_FALSE(document.Parse(nested(99), error));
  EXPECT_THAT(error, HasSubstr("nested"));
  EXPECT_FALSE(document.Parse("<!DOCTYPE domain []><domain/>", error));
  EXPECT_THAT(error, HasSubstr("declaration"));
  EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
  EXPECT_TRUE(document.Parse(nested(98), error)) << error;
  EXPECT_TRUE(document.Parse(before + "&amp;&#x41;&lt;" + after, error)) << error;
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"v", "1&A<"}}}}));
}

}  // namespace
