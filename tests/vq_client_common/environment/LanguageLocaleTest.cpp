#include <vq_client_common/environment/LanguageLocale.h>

#include <clocale>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tests/TestEnvironment.h>
#include <tests/support/diagnostics/LogLines.h>
#include <vq_client_common/environment/Trim.h>

namespace {

using ::testing::ElementsAre;
using vq::test::TemporaryDirectory;
using vq::test::Variable;

// "result locale" after looking up in a buffer that holds "before".
std::string Lookup(const char* language) {
  char locale[255] = "before";
  const int result = get_locale(language, locale);
  return std::to_string(result) + " " + locale;
}

TEST(GetLocaleTest, TheFileIsSearchedLineByLine) {
  const std::string name254 = std::string(254 - 2, 'n');
  const struct {
    std::string file;
    std::string language;
    std::string result;
  } cases[] = {
      {"french=fr_FR  \n", "FRENCH", "1 fr_FR"},
      {"#french=no\nfrench=fr_FR", "french", "1 fr_FR"},
      {"french= fr FR\t \v\r\n", "french", "1  fr FR"},
      {" french=x\n", "french", "12 before"},
      {"French=x\n", "French", "12 before"},
      {"french\n", "french", "22 before"},
      {"french\nfrench=x\n", "french", "22 before"},
      {"english=e\nen=x\n", "en", "1 e"},
      {"german=a=b\n", "german", "1 a=b"},
      {"a=b=c\n", "a=b", "1 b=c"},
      {"german= \t\n", "german", "1 "},
      {"# c\nfirst=f\nsecond=s\n", "", "1 f"},
      {"# c\n\nfirst=f\n", "", "22 before"},
      {"", "french", "12 before"},
      {"#", "#", "12 before"},
      // A line counts up to its 254th character, and its rest is not another line.
      {name254 + "=xyz\nx=1\n", name254, "1 x"},
      {name254 + "nn=x\n", name254, "22 before"},
      {std::string(254, '#') + "french=x\nfrench=y\n", "french", "1 y"},
      {"french=" + std::string(300, 'x'), "french", "1 " + std::string(247, 'x')},
      {std::string("french=a\0b\n", 11), "french", "1 a"},
  };
  for (const auto& [file, language, result] : cases) {
    const TemporaryDirectory directory;
    const Variable home("VQ_HOME", directory.Path());
    directory.Write("ini/locale.ini", file);
    EXPECT_EQ(Lookup(language.c_str()), result) << file;
  }
}

TEST(GetLocaleTest, TheAccountsLocaleNeedsNoFile) {
  const Variable home("VQ_HOME");
  EXPECT_EQ(Lookup("Use_Account_Locale"), "1 before");
  EXPECT_EQ(Lookup("use_account_locale "), "41 before");
}

TEST(GetLocaleTest, NullIsTheEmptyTextAndIsNotWritten) {
  const TemporaryDirectory directory;
  const Variable home("VQ_HOME", directory.Path());
  directory.Write("ini/locale.ini", "french=fr_FR\n");
  EXPECT_EQ(Lookup(nullptr), "1 fr_FR");
  EXPECT_EQ(get_locale("french", nullptr), 1);
}

// Every test leaves the locale of the process as it was.
class SetLocaleTest : public ::testing::Test {
 protected:
  ~SetLocaleTest() override { std::setlocale(LC_ALL, m_former.c_str()); }
  const std::string m_former = std::setlocale(LC_ALL, nullptr);
};

TEST_F(SetLocaleTest, TheLanguagesLocaleIsSetAndReturned) {
  const TemporaryDirectory directory;
  const Variable home("VQ_HOME", directory.Path());
  const Variable account("LC_ALL", "POSIX");
  directory.Write("ini/locale.ini", "utf=C.UTF-8\nplain=C\nmissing=xx_XX.none\nbroken\n");
  const struct {
    const char* language;
    const char* returned;
    const char* inForce;
    const char* log;
  } cases[] = {
      {"UTF", "C.UTF-8", "C.UTF-8", "4 Language locale is: UTF and the string locale is: C.UTF-8"},
      {"missing", "xx_XX.none", "C.UTF-8",
       "4 Language locale is: missing and the string locale is: xx_XX.none"},
      {"plain", "C", "C", "4 Language locale is: plain and the string locale is: C"},
      {"utf", "C.UTF-8", "C.UTF-8", "4 Language locale is: utf and the string locale is: C.UTF-8"},
      {"none", "", "C", "4 Language not found in file locale.ini. Using Default language - "},
      {"utf", "C.UTF-8", "C.UTF-8", "4 Language locale is: utf and the string locale is: C.UTF-8"},
      {"use_account_locale", "", "C",
       "4 Language locale is: use_account_locale and the string locale is: "},
      {"broken", "", "C", "4 Locale not found in file locale.ini. Using Default language - "},
  };
  for (const auto& [language, returned, inForce, line] : cases) {
    SCOPED_TRACE(language);
    LogLines log(4);
    EXPECT_EQ(SetLocaleByLanguage(language), returned);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), inForce);
    EXPECT_THAT(log.Take(), ElementsAre(line));
  }
}

TEST_F(SetLocaleTest, AMissingHomeOrFileIsToldAndLogged) {
  LogLines log(4);
  {
    const Variable home("VQ_HOME");
    EXPECT_EQ(Lookup("french"), "41 before");
    EXPECT_EQ(SetLocaleByLanguage("french"), "");
  }
  const TemporaryDirectory directory;
  const Variable home("VQ_HOME", directory.Path());
  EXPECT_EQ(Lookup("french"), "42 before");
  EXPECT_EQ(SetLocaleByLanguage("french"), "");
  EXPECT_THAT(log.Take(),
              ElementsAre("4 Missing VQ home environment variable. Using Default language - ",
                          "4 Failed opening file locale.ini. Using Default language - "));
}

TEST(TrimTest, EndsAreTakenOff) {
  const struct {
    const char* text;
    const char* both;
    const char* bothWithTabs;
    const char* left;
    const char* right;
  } cases[] = {
      {"  a b  ", "a b", "a b", "a b  ", "  a b"},
      {"\t a \t", "\t a \t", "a", "\t a \t", "\t a \t"},
      {" \ta\n ", "\ta\n", "a\n", "\ta\n ", " \ta\n"},
      {"   ", "", "", "", ""},
      {" \t ", "\t", "", "\t ", " \t"},
      {"", "", "", "", ""},
      {nullptr, "", "", "", ""},
  };
  for (const auto& [text, both, bothWithTabs, left, right] : cases) {
    SCOPED_TRACE(text != nullptr ? text : "null");
    EXPECT_EQ(i18n_aux::strtrim(text), both);
    EXPECT_EQ(i18n_aux::strtrim2(text), bothWithTabs);
    EXPECT_EQ(i18n_aux::strtrim_left(text), left);
    EXPECT_EQ(i18n_aux::strtrim_right(text), right);
  }
}

}  // namespace
