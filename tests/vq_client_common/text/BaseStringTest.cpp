#include <vq_client_common/text/BaseString.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

// What `call` raises, as its kind and text.
template <typename Call>
std::string Raised(Call call) {
  try {
    call();
  } catch (const std::out_of_range& error) {
    return std::string("out_of_range ") + error.what();
  } catch (const std::length_error& error) {
    return std::string("length_error ") + error.what();
  } catch (const std::invalid_argument&) {
    return "invalid_argument";
  }
  return "nothing";
}

const std::string kPosition = "out_of_range invalid string position";
const std::string kTooLong = "length_error string too long";

TEST(BaseStringTest, IsMadeFromEachKindOfValue) {
  EXPECT_EQ(BaseString().Std(), "");
  EXPECT_EQ(BaseString("abc").Std(), "abc");
  EXPECT_EQ(BaseString(std::string("a\0b", 3)).GetLength(), 3U);
  EXPECT_EQ(BaseString(3, 'x').Std(), "xxx");
  EXPECT_EQ(BaseString('x').Std(), "x");
  BaseString text = "abc";
  const BaseString copy = text;
  text.Std() += "d";
  EXPECT_EQ(copy.Std(), "abc");
  EXPECT_STREQ(text, "abcd");
  EXPECT_STREQ(text.GetString(), text.c_str());
}

TEST(BaseStringTest, AppendsAndEmpties) {
  BaseString text = "a";
  text += BaseString("b");
  text += "c";
  text += 'd';
  text.append(2, 'e') += text;
  EXPECT_EQ(text.Std(), "abcdeeabcdee");
  EXPECT_EQ(text.length(), 12U);
  std::string seen;
  for (char& c : text) seen += c++;
  EXPECT_EQ(seen, "abcdeeabcdee");
  EXPECT_EQ(std::string(std::as_const(text).begin(), std::as_const(text).end()), "bcdeffbcdeff");
  text.FreeExtra();
  EXPECT_FALSE(text.IsEmpty());
  text.Empty();
  EXPECT_TRUE(text.empty());
  text = "again";
  text.clear();
  EXPECT_TRUE(text.IsEmpty());
}

TEST(BaseStringTest, AssigningACharacterOnlyResizes) {
  BaseString text = "abc";
  text = 'x';
  EXPECT_EQ(text.Std(), "a");
  text.Empty();
  text = 'x';
  EXPECT_EQ(text.Std(), "x");
}

TEST(BaseStringTest, PlusLeavesItsLeftSideAndGivesIt) {
  const BaseString text = "abc";
  EXPECT_EQ(&(text + BaseString("d")), &text);
  EXPECT_EQ(&(text + std::string("d")), &text);
  EXPECT_EQ(&(text + "d"), &text);
  EXPECT_EQ(text.Std(), "abc");
}

TEST(BaseStringTest, OnlyGetAtTestsItsPosition) {
  BaseString text = "abc";
  const BaseString& constant = text;
  EXPECT_EQ(text.GetAt(2), 'c');
  for (const int position : {3, 100, -1}) {
    EXPECT_EQ(Raised([&] { text.GetAt(position); }), kPosition);
    EXPECT_EQ(constant[position], '\0');
    text[position] = 'x';  // falls outside the text
    EXPECT_EQ(constant[position], '\0');
  }
  text[std::size_t{0}] = 'x';
  EXPECT_EQ(text[0L], 'x');
  EXPECT_STREQ(text, "xbc");
}

TEST(BaseStringTest, ChangesCaseByteByByte) {
  BaseString text = "aZ1\xE4";
  text.MakeUpper();
  EXPECT_EQ(text.Std(), "AZ1\xE4");
  text.MakeLower();
  EXPECT_EQ(text.Std(), "az1\xE4");
}

TEST(BaseStringTest, Searches) {
  const BaseString text = "abcabc";
  EXPECT_EQ(text.Find('b'), 1);
  EXPECT_EQ(text.Find('b', 2), 4);
  EXPECT_EQ(text.Find('x'), -1);
  EXPECT_EQ(text.Find('a', -1), -1);
  EXPECT_EQ(text.Find("ca"), 2);
  EXPECT_EQ(text.Find("bc", 2), 4);
  EXPECT_EQ(text.Find("", 6), 6);
  EXPECT_EQ(text.Find("", 7), -1);
  EXPECT_EQ(text.FindOneOf("xcb"), 1);
  EXPECT_EQ(text.FindOneOf(""), -1);
  EXPECT_EQ(text.ReverseFind('a'), 3);
  EXPECT_EQ(text.ReverseFind('x'), -1);

  EXPECT_EQ(BaseString("abc").FindNoCase("AB"), 1);
  EXPECT_EQ(BaseString("abc").FindNoCase("BC"), 1);  // found, not where
  EXPECT_EQ(BaseString("abc").FindNoCase("X"), 0);
}

TEST(BaseStringTest, Compares) {
  EXPECT_LT(BaseString("a").Compare("b"), 0);
  EXPECT_GT(BaseString("b").compare("a"), 0);
  EXPECT_EQ(BaseString("a").Compare("a"), 0);
  EXPECT_NE(BaseString("a").Compare("A"), 0);
  EXPECT_EQ(BaseString("aBc").CompareNoCase("AbC"), 0);
  EXPECT_LT(BaseString("A").CompareNoCase("b"), 0);
  EXPECT_EQ(BaseString("a").CompareNoLS("b"), -1);
  EXPECT_EQ(BaseString("b").CompareNoLS("a"), 1);
  EXPECT_EQ(BaseString("a").CompareNoLS("a"), 0);
  EXPECT_EQ(BaseString("\xFF").CompareNoLS("a"), 1);  // unsigned
  EXPECT_EQ(BaseString("a").CompareNoLS("abcdef"), -1);
}

TEST(BaseStringTest, SetsItsLength) {
  BaseString text = "abc";
  text.GetBufferSetLength(5)[3] = 'd';
  EXPECT_EQ(text.Std(), std::string("abcd\0", 5));
  text.ReleaseBuffer(-1);
  EXPECT_EQ(text.GetLength(), 5U);
  text.ReleaseBuffer(2);
  EXPECT_EQ(text.Std(), "ab");
  text.ReleaseBuffer(3);
  EXPECT_EQ(text.Std(), std::string("ab\0", 3));
  text.GetBufferSetLength(0);
  EXPECT_TRUE(text.IsEmpty());
}

TEST(BaseStringTest, RefusesWhatNoTextCanHave) {
  BaseString text = "abc";
  EXPECT_EQ(Raised([&] { text.GetBufferSetLength(-1); }), kTooLong);
  EXPECT_EQ(Raised([&] { text.ReleaseBuffer(-2); }), kTooLong);
  EXPECT_EQ(Raised([&] { text.append(-1, 'x'); }), kTooLong);
  EXPECT_EQ(Raised([] { BaseString(-1, 'x'); }), kTooLong);
  EXPECT_EQ(Raised([&] { text.Mid(-1); }), kPosition);
  EXPECT_EQ(Raised([&] { text.Mid(-1, 1); }), kPosition);
  const char* const null = nullptr;
  EXPECT_EQ(Raised([&] { text = null; }), "invalid_argument");
  EXPECT_EQ(Raised([&] { text.Find(null); }), "invalid_argument");
  EXPECT_EQ(Raised([&] { text.Compare(null); }), "invalid_argument");
  EXPECT_EQ(text.Std(), "abc");
}

TEST(BaseStringTest, FormatKeeps999Bytes) {
  BaseString text = "old";
  text.Format("%s-%03d%c%s", text.c_str(), 7, '\0', "lost");
  EXPECT_EQ(text.Std(), "old-007");
  std::mt19937 random(1);
  for (const int size : {0, 1, 998, 999, 1000, 1500, 5000}) {
    std::string value(static_cast<std::size_t>(size), ' ');
    for (char& c : value) c = static_cast<char>('a' + random() % 26);
    text.Format("%s", value.c_str());
    EXPECT_EQ(text.Std(), value.substr(0, 999));
  }
}

TEST(BaseStringTest, Replaces) {
  const struct {
    const char *text, *from, *to, *expected;
    int count;
  } kRows[] = {
      {"aXbX", "X", "YY", "aYYbYY", 2}, {"aaa", "aa", "a", "aa", 1}, {"abc", "x", "y", "abc", 0},
      {"aa", "a", "aa", "aaaa", 2},     {"abc", "b", "", "ac", 1},   {"abc", "", "x", "abc", 0},
  };
  for (const auto& row : kRows) {
    BaseString text = row.text;
    EXPECT_EQ(text.Replace(row.from, row.to), row.count);
    EXPECT_EQ(text.Std(), row.expected);
  }
  BaseString text = "abc";
  EXPECT_EQ(text.Replace(text.Std(), text.Std()), 1);
  EXPECT_EQ(text.Std(), "abc");
}

TEST(BaseStringTest, GivesParts) {
  const BaseString text = "abc";
  const struct {
    std::int32_t count;
    const char *left, *right, *middle;
  } kRows[] = {{0, "", "", ""},          {2, "ab", "bc", "bc"},     {5, "abc", "abc", "bc"},
               {-1, "abc", "abc", "bc"}, {100, "abc", "abc", "bc"}, {1, "a", "c", "b"}};
  for (const auto& row : kRows) {
    EXPECT_EQ(text.Left(row.count).Std(), row.left) << row.count;
    EXPECT_EQ(text.Right(row.count).Std(), row.right) << row.count;
    EXPECT_EQ(text.Mid(1, row.count).Std(), row.middle) << row.count;
  }
  EXPECT_EQ(text.Mid(0).Std(), "abc");
  EXPECT_EQ(text.Mid(3).Std(), "");
  EXPECT_EQ(text.Mid(9, 1).Std(), "");
}

// Against plain loops: every text of up to six of these characters.
TEST(BaseStringTest, TrimsTheTwoEndsDifferently) {
  const std::string kAlphabet = " \t\r\nx";
  const auto right = [](std::string text) {
    while (!text.empty() && std::string(" \t\r\n").find(text.back()) != std::string::npos) {
      text.pop_back();
    }
    return text;
  };
  const auto left = [](std::string text) {
    while (!text.empty() && (text[0] == '\n' || text[0] == ' ' || text[0] == '\t'))
      text.erase(0, 1);
    return text;
  };
  for (int number = 0; number < 5 * 5 * 5 * 5 * 5 * 5; ++number) {
    std::string value;
    for (int rest = number; rest > 0; rest /= 5)
      value += kAlphabet[static_cast<unsigned>(rest % 5)];
    BaseString text = value;
    text.TrimRight();
    ASSERT_EQ(text.Std(), right(value));
    text.Std() = value;
    text.TrimLeft();
    ASSERT_EQ(text.Std(), left(value));
    text.Std() = value;
    text.Trim();
    ASSERT_EQ(text.Std(), right(left(value)));
  }
}

}  // namespace
