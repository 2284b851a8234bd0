#include <support/diagnostics/Osl_UnicodeConfiguration.h>

#include <gtest/gtest.h>

namespace {

TEST(UnicodeConfigurationTest, TheModeSettlesTheEncodingAndNotTheCJKFlag) {
  EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().mode, "latin1");
  EXPECT_FALSE(i18n_aux::IsCJK_mode());
  const struct {
    const char* mode;
    const char* encoding;
  } cases[] = {{"cjk", "UTF-8"},
               {"utf8", "UTF-8"},
               {"latin1", "ISO-8859-1"},
               {"CJK", "ISO-8859-1"},
               {"", "ISO-8859-1"}};
  for (const auto& [mode, encoding] : cases) {
    Osl_UnicodeConfiguration::Init({mode, "/tables"});
    EXPECT_EQ(Osl_UnicodeConfiguration::GetCurrentEncoding(), encoding) << mode;
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().directory, "/tables");
    EXPECT_FALSE(i18n_aux::IsCJK_mode());
  }
  Osl_UnicodeConfiguration::SetCJKMode(true);
  EXPECT_TRUE(i18n_aux::IsCJK_mode());
  Osl_UnicodeConfiguration::SetCJKMode(false);
  EXPECT_FALSE(i18n_aux::IsCJK_mode());
  Osl_UnicodeConfiguration::Init({"latin1", ""});
}

}  // namespace
