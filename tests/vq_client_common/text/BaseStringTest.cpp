#include <vq_client_common/text/BaseString.h>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string;
using Text = BaseString;

const auto kBadPosition = testing::ThrowsMessage<std::out_of_range>("invalid string position");
const auto kTooLong = testing::ThrowsMessage<std::length_error>("string too long");
const auto kRefused = testing::Throws<std::invalid_argument>();

TEST(BaseStringTest, Changes) {
  const struct {
    string before;
    std::function<void(Text&)> change;
    string after;
  } kRows[] = {
      {"abc", [](Text& text) { text = Text(3, 'x'); }, "xxx"},
      {"abc", [](Text& text) { text = text.c_str() + 1; }, "bc"},
      {"abc", [](Text& text) { text = 'x'; }, "a"},  // only a length is set
      {"", [](Text& text) { text = 'x'; }, "x"},
      {"a", [](Text& text) { ((text += Text('b')) += "c") += 'd'; }, "abcd"},
      {"a", [](Text& text) { text.append(2, 'e') += text; }, "aeeaee"},
      {"abc", [](Text& text) { *text.begin() = text.end()[-1]; }, "cbc"},
      {"abc", [](Text& text) { text[0L] = text[std::size_t{2}]; }, "cbc"},
      {"abc", [](Text& text) { text[3] = text[-1] = text[100] = 'x'; }, "abc"},  // falls outside
      {"abc", &Text::FreeExtra, "abc"},
      {"abc", &Text::Empty, ""},
      {"abc", &Text::clear, ""},
      {"aZ1\xE4", &Text::MakeUpper, "AZ1\xE4"},
      {"aZ1\xE4", &Text::MakeLower, "az1\xE4"},
      // The two ends differ.
      {"\n\t \r x\t \r\n", &Text::TrimLeft, "\r x\t \r\n"},
      {"\n\t \r x\t \r\n", &Text::TrimRight, "\n\t \r x"},
      {"\n\t \r x\t \r\n", &Text::Trim, "\r x"},
      {" \t\r\n", &Text::Trim, ""},
      {"abc", [](Text& text) { text.GetBufferSetLength(5)[3] = 'd'; }, {"abcd\0", 5}},
      {{"ab\0c", 4}, [](Text& text) { text.ReleaseBuffer(); }, {"ab\0c", 4}},
      {"abc", [](Text& text) { text.ReleaseBuffer(2); }, "ab"},
      {"abc", [](Text& text) { text.ReleaseBuffer(5); }, {"abc\0\0", 5}},
      {"old", [](Text& text) { text.Format("%s-%03d%c%s", text.c_str(), 7, 0, "x"); }, "old-007"},
      {"", [](Text& text) { text.Format("%0999d", 7); }, string(998, '0') + '7'},
      {"", [](Text& text) { text.Format("%01000d%500d", 7, 7); }, string(999, '0')},
      // With as many "#" behind it as there were replacements.
      {"aXbX", [](Text& text) { text.append(text.Replace("X", "YY"), '#'); }, "aYYbYY##"},
      {"aaa", [](Text& text) { text.append(text.Replace("aa", "a"), '#'); }, "aa#"},
      {"abc", [](Text& text) { text.append(text.Replace("", "x"), '#'); }, "abc"},
      {"aaa", [](Text& text) { text.append(text.Replace("a", text.Std()), '#'); }, "aaaaaaaaa###"}};
  for (const auto& row : kRows) {
    Text text = row.before;
    row.change(text);
    EXPECT_EQ(text.Std(), row.after) << "row " << &row - kRows;
    EXPECT_EQ(text.GetLength(), row.after.size());
    EXPECT_EQ(text.IsEmpty() && text.empty(), row.after.empty());
    EXPECT_STREQ(text, text.GetString());
    // The left side as it was, and not the joined text.
    EXPECT_TRUE(&(text + Text("d")) == &text && &(text + row.after) == &text &&
                &(text + "d") == &text);
    EXPECT_EQ(text.Std(), row.after);
  }
}

TEST(BaseStringTest, SearchesAndCompares) {
  const Text text = "abcabc";
  using Found = std::vector<int>;
  EXPECT_EQ((Found{text.Find('b'), text.Find('b', 2), text.Find('x')}), (Found{1, 4, -1}));
  EXPECT_EQ((Found{text.Find("ca"), text.Find("bc", 2), text.Find("", 6)}), (Found{2, 4, 6}));
  EXPECT_EQ((Found{text.Find('a', -1), text.Find("", 7)}), (Found{-1, -1}));
  EXPECT_EQ((Found{text.FindOneOf("xcb"), text.FindOneOf("")}), (Found{1, -1}));
  EXPECT_EQ((Found{text.ReverseFind('a'), text.ReverseFind('x')}), (Found{3, -1}));
  EXPECT_EQ((Found{text.FindNoCase("BC"), text.FindNoCase("X")}), (Found{1, 0})) << "not where";
  EXPECT_TRUE(Text("a").Compare("b") < 0 && Text("b").compare("a") > 0);
  EXPECT_TRUE(Text("aBc").CompareNoCase("AbC") == 0 && Text("A").CompareNoCase("b") < 0);
  EXPECT_EQ(Text("\xFF").CompareNoLS("a"), 1);  // unsigned
  EXPECT_EQ(Text("a").CompareNoLS("a"), 0);
  EXPECT_EQ(Text("a").CompareNoLS("cdef"), -1);
}

TEST(BaseStringTest, RefusesBadPositionsLengthsAndNull) {
  Text text = "abc";
  EXPECT_EQ(text.GetAt(2), 'c');
  for (const int position : {3, 100, -1}) {
    EXPECT_THAT([&] { text.GetAt(position); }, kBadPosition);
    EXPECT_EQ(text[position], '\0');
  }
  EXPECT_THAT([&] { text.Mid(-1, 1); }, kBadPosition);
  EXPECT_THAT([&] { text.GetBufferSetLength(-1); }, kTooLong);
  EXPECT_THAT([&] { text.ReleaseBuffer(-2); }, kTooLong);
  EXPECT_THAT([&] { text.append(-1, 'x'); }, kTooLong);
  EXPECT_THAT([] { Text(-1, 'x'); }, kTooLong);
  const char* const null = nullptr;
  EXPECT_THAT([&] { text = null; }, kRefused);
  EXPECT_THAT([&] { text.Find(null); }, kRefused);
  EXPECT_THAT([&] { text.Compare(null); }, kRefused);
  EXPECT_STREQ(text, "abc");
}

TEST(BaseStringTest, GivesParts) {
  const Text text = "abc";
  const auto parts = [&](const string& number) {
    const int count = std::stoi(number);
    return text.Left(count).Std() + "|" + text.Right(count).Std() + "|" + text.Mid(1, count).Std();
  };
  vq::test::ExpectRows(
      parts, {"0 -> ||", "1 -> a|c|b", "2 -> ab|bc|bc", "5 -> abc|abc|bc", "-1 -> abc|abc|bc"});
  EXPECT_TRUE(text.Mid(3).IsEmpty() && text.Mid(9, 1).IsEmpty());
}

}  // namespace
