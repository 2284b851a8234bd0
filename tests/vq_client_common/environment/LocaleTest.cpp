#include <clocale>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <tests/fixture/UnitTest.h>
#include <vq_client_common/environment/Collation.h>
#include <vq_client_common/environment/LanguageLocale.h>

namespace {

using std::string_literals::operator""s;
using vq::test::Variable;

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// Every test has its own file and restores the process's locale. C.UTF-8 orders by code points on
// every host.
class LocaleTest : public ::testing::Test {
 protected:
  LocaleTest() { std::setlocale(LC_ALL, "C.UTF-8"); }
  ~LocaleTest() override { std::setlocale(LC_ALL, m_former.c_str()); }
  void Write(const std::string& file) const { m_directory.Write("ini/locale.ini", file); }

  // "result locale" of a look-up into a buffer with the content "before".
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
  const auto found = [&](std::string file) {
    const std::string language = vq::test::Take(file, '|');
    Write(file);
    return Lookup(language.c_str());
  };
  vq::test::ExpectRows(
      found, {"FRENCH|#french=no\nfrench= fr FR\t \v\r\n -> 1  fr FR",
              "French| french=x\nFrench=x\n -> 12 before", "french|french\nfrench=x\n -> 22 before",
              "en|english=e\nen=x\n -> 1 e", "a=b|a=b=c=d\n -> 1 b=c=d",
              "german|german= \t\n -> 1 ", "|# c\n\nfirst=f\n -> 22 before", "#|# -> 12 before",
              // A line counts up to its 254th character, and its rest is not another line.
              longest + "|" + longest + "=xyz\nx=1\n -> 1 x",
              "french|" + std::string(254, '#') + "french=x\nfrench=y\n -> 1 y",
              "french|french=" + std::string(300, 'x') + " -> 1 " + std::string(247, 'x'),
              "french|french=a\0b\n -> 1 a"s});
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

TEST_F(LocaleTest, Orders) {
  // Two texts: their order without case, in CJK mode and without case in CJK mode.
  const auto order = [](std::string b) {
    const std::string a = vq::test::Take(b);
    std::string signs;
    for (const bool isCJK : {false, true}) {
      Osl_UnicodeConfiguration::SetCJKMode(isCJK);
      signs += "<=>"[1 + Sign(stricoll(a.c_str(), b.c_str(), false))];
      signs += "<=>"[1 + Sign(stricoll(a.c_str(), b.c_str(), true))];
    }
    Osl_UnicodeConfiguration::SetCJKMode(false);
    return signs;
  };
  vq::test::ExpectRows(
      order, {"abc ABC -> ==>=", "a B -> <<><", "\xc3\xa9 \xc3\x89 -> ==>=", "a aa -> <<<<",
              "a\xff A\xff -> ==>=", "\xc3 \xc3\xa9 -> >><>", "\xe2\x82\xa9 \xe2\x82 -> <<><"});
  EXPECT_EQ(stricoll(nullptr, "", false), 0);
}

TEST_F(LocaleTest, CountsCharacters) {
  const auto order = [](std::string most) {  // "\xc3\xa9" is a character of two bytes
    const std::string a = vq::test::Take(most), b = vq::test::Take(most);
    const auto count = static_cast<unsigned>(std::stoul(most));
    return std::to_string(Sign(strncoll(a.c_str(), b.c_str(), count)));
  };
  vq::test::ExpectRows(order, {"abc abd 2 -> 0", "abc abd 4294967295 -> -1", "a A 1 -> 1",
                               "a b 0 -> 0", "ab a 1 -> 0", "\xc3\xa9x \xc3\xa9y 1 -> 0",
                               "\xc3\xa9x \xc3\xa9y 2 -> -1", "\xffx \xffy 1 -> 0"});
  EXPECT_LT(strncoll(nullptr, "a", 5), 0);
}

}  // namespace
