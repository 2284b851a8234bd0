#include <support/configuration/ConfigDocument.h>

#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tests/FetchWatch.h>
#include <tests/TestEnvironment.h>

namespace {

using ::testing::HasSubstr;
using Kind = vq::ConfigChange::Kind;

TEST(ConfigDocument, WhatItDoesNotKnowStaysWhereItStands) {
  const std::string text =
      "<?xml version=\"1.0\"?>\n"
      "<!-- of the site -->\n"
      "<domain version=\"2\">\n"
      "    <!-- everybody's -->\n"
      "    <scope name=\"default\" owner=\"ops\">\n"
      "        <var name=\"a\">1</var> <!-- why -->\n"
      "        <note>read me</note>\n"
      "        <var>nameless</var>\n"
      "    </scope>\n"
      "    <scope name=\"Test1\">\n"
      "        <var name=\"a\">2</var>\n"
      "    </scope>\n"
      "</domain>\n";
  vq::ConfigDocument document;
  std::string error;
  ASSERT_TRUE(document.Parse(text, error)) << error;
  EXPECT_EQ(document.Scopes(),
            (vq::ConfigScopes{{"default", {{"a", "1"}}}, {"Test1", {{"a", "2"}}}}));
  document.Apply({Kind::SetVar, "default", "a", "3"});
  document.Apply({Kind::SetVar, "default", "b", "4"});
  document.Apply({Kind::RemoveScope, "Test1", {}, {}});
  document.Apply({Kind::RemoveVar, "default", "none", {}});
  EXPECT_THAT(document.Text().value(), HasSubstr("?>\n<!-- of the site -->\n"
                                                 "<domain version=\"2\">\n"
                                                 "    <!-- everybody's -->\n"
                                                 "    <scope name=\"default\" owner=\"ops\">\n"
                                                 "        <var name=\"a\">3</var> <!-- why -->\n"
                                                 "        <note>read me</note>\n"
                                                 "        <var>nameless</var>\n"
                                                 "    <var name=\"b\">4</var>\n"
                                                 "  </scope>\n"
                                                 "</domain>\n"));
}

TEST(ConfigDocument, OfTwoTheFirstCountsAndRemovingTakesAll) {
  vq::ConfigDocument document;
  std::string error;
  ASSERT_TRUE(
      document.Parse("<domain><scope name='s'><var name='a'>1</var><var name='a'>2</var>"
                     "</scope><scope name='s'><var name='b'/></scope></domain>",
                     error));
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"a", "1"}}}}));
  document.Apply({Kind::RemoveVar, "s", "a", {}});
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {}}}));
  document.Apply({Kind::RemoveScope, "s", {}, {}});
  EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
}

TEST(ConfigDocument, AHostileDocumentIsRefusedAtOnceAndFetchesNothing) {
  const vq::test::TemporaryDirectory directory;
  vq::test::FetchWatch watch(directory);
  const auto use = [](const std::string& declarations, const std::string& reference) {
    return "<!DOCTYPE domain " + declarations + "><domain><scope name='s'><var name='v'>" +
           reference + "</var></scope></domain>";
  };
  std::string bomb = "[<!ENTITY e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i < 12; ++i) {
    bomb += "<!ENTITY e" + std::to_string(i) + " '";
    for (int j = 0; j < 10; ++j) bomb += "&e" + std::to_string(i - 1) + ";";
    bomb += "'>";
  }
  std::string attribute = use(bomb + "]", "x");
  attribute.replace(attribute.find("name='v'"), 8, "name='&e11;'");
  const std::string wide = "[<!ENTITY e '" + std::string(200'000, 'x') + "'>]";
  std::string references;
  for (int i = 0; i < 100'000; ++i) references += "&e;";

  const std::string documents[] = {
      use(bomb + "]", "&e11;"),
      attribute,
      use(wide, references),
      use("[<!ENTITY x SYSTEM '" + watch.FileUrl() + "'>]", "&x;"),
      use("[<!ENTITY % p SYSTEM '" + watch.FileUrl() + "'> %p;]", "&x;"),
      use("SYSTEM '" + watch.FileUrl() + "'", "&x;"),
      use("SYSTEM '" + watch.HttpUrl() + "'", "&x;"),
      use("[<!ENTITY x '&x;'>]", "&x;"),
  };
  for (const std::string& text : documents) {
    SCOPED_TRACE(text.substr(0, 120));
    vq::ConfigDocument document;
    std::string error;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(document.Parse(text, error));
    EXPECT_NE(error, "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(document.Scopes(), vq::ConfigScopes{});
    EXPECT_FALSE(watch.Fetched());
  }

  vq::ConfigDocument document;
  std::string error;
  const auto nested = [](int depth) {
    std::string text = "<domain><scope name='s'><var name='v'>1";
    for (int i = 0; i < depth; ++i) text += "<d>";
    for (int i = 0; i < depth; ++i) text += "</d>";
    return text + "</var><var name='w'>2</var></scope></domain>";
  };
  EXPECT_FALSE(document.Parse(nested(100'000), error));
  EXPECT_THAT(error, HasSubstr("nested"));
  EXPECT_FALSE(document.Parse(nested(99), error));
  ASSERT_TRUE(document.Parse(nested(98), error)) << error;
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"v", "1"}, {"w", "2"}}}}));
  EXPECT_TRUE(
      document.Parse("<domain><scope name='s'><var name='v'>&amp;&#x41;&lt;</var></scope>"
                     "</domain>",
                     error))
      << error;
  EXPECT_EQ(document.Scopes(), (vq::ConfigScopes{{"s", {{"v", "&A<"}}}}));
}

}  // namespace
