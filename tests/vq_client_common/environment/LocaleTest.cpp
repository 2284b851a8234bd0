#include <climits>
#include <clocale>

#include <gtest/gtest.h>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/Rows.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/environment/Collation.h>
#include <vq_client_common/environment/LanguageLocale.h>

namespace {

using vq::test::Variable;

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// Every test has its own file and leaves the locale of the process as it was. C.UTF-8 orders by
// code points on every machine.
class LocaleTest : public ::testing::Test {
 protected:
  LocaleTest() { std::setlocale(LC_ALL, "C.UTF-8"); }
  ~LocaleTest() override { std::setlocale(LC_ALL, m_former.c_str()); }
  void Write(const std::string& file) const { m_directory.Write("ini/locale.ini", file); }

  // "result locale" after looking up in a buffer that holds "before".
  static std::string Lookup(const char* language) {
    char locale[255] = "before";
    const int result = get_locale(language, locale);
    return std::to_string(result) + " " + locale;
  }

  const std::string m_former = std::setlocale(LC_ALL, nullptr);
  const vq::test::TemporaryDirectory m_directory;
  const Variable m_home{"VQ_HOME", m_directory.Path()};
};

TEST_F(LocaleTest, ReadsTheFile) {
  const std::string longest(254 - 2, 'n');
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"#french=no\nfrench= fr FR\t \v\r\n", "FRENCH", "1  fr FR"},
      {" french=x\nFrench=x\n", "French", "12 before"},
      {"french\nfrench=x\n", "french", "22 before"},
      {"english=e\nen=x\n", "en", "1 e"},
      {"a=b=c=d\n", "a=b", "1 b=c=d"},
      {"german= \t\n", "german", "1 "},
      {"# c\n\nfirst=f\n", "", "22 before"},
      {"#", "#", "12 before"},
      // A line counts up to its 254th character, and its rest is not another line.
      {longest + "=xyz\nx=1\n", longest, "1 x"},
      {std::string(254, '#') + "french=x\nfrench=y\n", "french", "1 y"},
      {"french=" + std::string(300, 'x'), "french", "1 " + std::string(247, 'x')},
      {std::string("french=a\0b\n", 11), "french", "1 a"}};
  for (const auto& [file, language, result] : cases) {
    Write(file);
    EXPECT_EQ(Lookup(language.c_str()), result) << file;
  }
  Write("# c\nfrench=fr_FR\n");
  EXPECT_EQ(Lookup(nullptr), "1 fr_FR");
  EXPECT_EQ(get_locale("french", nullptr), 1);
}

TEST_F(LocaleTest, SetsAndReturnsLocale) {
  const Variable account("LC_ALL", "POSIX");
  Write("utf=C.UTF-8\nplain=C\nmissing=xx_XX.none\nbroken\n");
  const auto set = [](const std::string& language) {  // what is returned and what is in force
    const std::string returned = SetLocaleByLanguage(language);
    return returned + " " + std::setlocale(LC_ALL, nullptr);
  };
  vq::test::ExpectRows(set, {"UTF -> C.UTF-8 C.UTF-8", "missing -> xx_XX.none C.UTF-8",
                             "none ->  C", "utf -> C.UTF-8 C.UTF-8", "broken ->  C"});
}

TEST_F(LocaleTest, AccountLocaleNeedsNoFile) {
  EXPECT_EQ(Lookup("french"), "42 before");
  const Variable home("VQ_HOME");
  EXPECT_EQ(Lookup("french"), "41 before");
  EXPECT_EQ(Lookup("Use_Account_Locale"), "1 before");
  EXPECT_EQ(Lookup("use_account_locale "), "41 before");
}

TEST_F(LocaleTest, Trims) {
  const auto trims = [](const std::string& given) {
    const char* text = given == "null" ? nullptr : given.c_str();
    return "[" + i18n_aux::strtrim(text) + "][" + i18n_aux::strtrim2(text) + "][" +
           i18n_aux::strtrim_left(text) + "][" + i18n_aux::strtrim_right(text) + "]";
  };
  vq::test::ExpectRows(
      trims, {"  a b   -> [a b][a b][a b  ][  a b]", "\t a \t -> [\t a \t][a][\t a \t][\t a \t]",
              " \ta\n  -> [\ta\n][a\n][\ta\n ][ \ta\n]", " \t  -> [\t][][\t ][ \t]",
              "   -> [][][][]", "null -> [][][][]"});
}

TEST_F(LocaleTest, CaseCountsInCJKMode) {
  const std::tuple<const char*, const char*, int, int> cases[] = {
      {"abc", "ABC", 0, 1},       {"a", "B", -1, 1},   {"\xc3\xa9", "\xc3\x89", 0, 1},
      {"a", "aa", -1, -1},        {nullptr, "", 0, 0}, {"a\xff", "A\xff", 0, 1},
      {"\xc3", "\xc3\xa9", 1, -1}};
  for (const auto& [a, b, folded, exact] : cases) {
    for (const bool isCJK : {false, true}) {
      Osl_UnicodeConfiguration::SetCJKMode(isCJK);
      EXPECT_EQ(Sign(stricoll(a, b, false)), isCJK ? exact : folded) << b;
      EXPECT_EQ(Sign(stricoll(a, b, true)), folded) << b;
    }
  }
  Osl_UnicodeConfiguration::SetCJKMode(false);
}

TEST_F(LocaleTest, CountsCharacters) {
  // "\xc3\xa9" is a character of two bytes.
  const std::tuple<const char*, const char*, unsigned, int> cases[] = {
      {"abc", "abd", 2, 0},
      {"abc", "abd", UINT_MAX, -1},
      {"a", "A", 1, 1},
      {"a", "b", 0, 0},
      {"ab", "a", 1, 0},
      {nullptr, "a", 5, -1},
      {"\xc3\xa9x", "\xc3\xa9y", 1, 0},
      {"\xc3\xa9x", "\xc3\xa9y", 2, -1},
      {"\xffx", "\xffy", 1, 0}};
  for (const auto& [a, b, most, order] : cases) EXPECT_EQ(Sign(strncoll(a, b, most)), order) << b;
}

}  // namespace
