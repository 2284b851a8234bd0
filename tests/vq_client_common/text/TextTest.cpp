// Conversions of texts, table paths, the lengths of fields, and a server's error messages.
#include <vq_client_common/text/ConvertFunctions.h>
#include <vq_client_common/text/FieldLength.h>
#include <vq_client_common/text/TErrMsg.h>
#include <vq_client_common/text/TablePath.h>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string_literals::operator""s;
using std::string;
using List = std::list<string>;

template <bool kWide>
void FormatRetention(const string& in, string& out) {
  FormatRetentionValues(in, out, kWide);
}

template <auto kConvert>
string Converted(const string& in) {
  string out = "old";
  kConvert(in, out);
  string inPlace = in;
  kConvert(inPlace, inPlace);
  EXPECT_EQ(inPlace, out);
  return out;
}

string Encoded(const string& lines, unsigned maxLine) {
  string buffer(500, '#');
  EXPECT_EQ(ConvertLines2Buffer(lines, buffer, maxLine), 1);
  return buffer;
}

// The result and the text; "!" when the position error was raised.
string Decoded(const string& buffer) {
  string lines(500, '#');
  try {
    return std::to_string(ConvertBuffer2Lines(buffer, lines)) + lines;
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "invalid string position");
    return "!" + lines;
  }
}

TEST(ConversionTest, Formats) {
  const string k9999(9999, 'x');
  const struct {
    std::function<string(const string&)> convert;
    std::vector<string> rows;  // a text, "=", its form
  } kTables[] = {
      {Converted<FormatExecTime>,
       {"=", "5=005", "+5%=+005%", "-12=-012", "1234=1234", "0005=005", "+=+000", "%=%000",
        "%%=%000%", "x7y=x007", "--5=--005", " 12= 012", "1%2=001", "\xE4-9=\xE4-009",
        "99999999999=2147483647"}},
      {Converted<FormatInterval>,
       {"=00001M", "5=00005M", "10h=00010H", "10H=00010H", "2D=00002D", "2d=00002D", "7x=00007M",
        "7m=00007M", "99999M=99999M", "100000M=00000M", "-3=00000M", "h=00000H",
        "99999999999d=00000D"}},
      {Converted<FormatShiftNum>,
       {"=", "3=+03", "+12=+12", "0=+00", "100=+100", "-3=--3", "-12=--12", "-0=+00", "x=+00"}},
      {Converted<FormatRetention<false>>, {"7=07", "123=123", "1a=1a", "-1=-1", "007=07", " = "}},
      {Converted<FormatRetention<true>>, {"7=007", "1234=1234", "1a=1a"}},
      {Converted<ConvertWindowsToUnix>,
       {"=", "a\r\nb=a\nb", "\r\r\n=\r\n", "a\rb\n=a\rb\n", "\r\n\r\n=\n\n"}},
      {Converted<ConvertUnixToWindows>,
       {"=", "a\nb=a\r\nb", "a\r\nb=a\r\r\nb", "\r=\r", "\n\n=\r\n\r\n"}},
      {Decoded,
       {"=1", "0003abc=1abc", "0003abc0000=1abc\r\n", "00000000=1\r\n", "0001a0002bc=1a\r\nbc",
        "12=0", "0001a00=0a\r\n", "0001a-001b=0a\r\n", "xxxx0001a=1\r\na", " +2xab=1ab",
        "2   ab=1ab", "0005ab=!ab", "0001a0005bc=!a\r\nbc", "0001=!"}},
      {[](const string& lines) { return Encoded(lines, 20000); },
       {"=", "abc=0003abc", "abc\r\n=0003abc0000", "\r\n=00000000", "ab  \r\ncd  =0004ab  0002cd",
        " =0000", "  =0002  ", "a\rb\nc\n\r=0007a\rb\nc\n\r", "a\r\r\nb=0002a\r0001b",
        k9999 + "=9999" + k9999, k9999 + "x=10000" + k9999 + "x"}},
      {[](const string& lines) { return Encoded(lines, 3); },
       {"abcdef=0003abc0003def", "abcdef\r\n=0003abc0003def0000", "ab cd=0002ab0002cd",
        "ab cd\r\n=0003ab 0002cd0000"}}};
  for (const auto& table : kTables) {
    for (const string& row : table.rows) {
      const std::size_t end = row.find('=');
      EXPECT_EQ(table.convert(row.substr(0, end)), row.substr(end + 1)) << row;
    }
  }
  string out = "kept";
  FormatRetentionValues("", out, false);
  EXPECT_EQ(out, "kept");
  EXPECT_EQ(Encoded("", 0), "");
  EXPECT_THROW(Encoded("abc", 0), std::invalid_argument);
}

TEST(TablePathTest, Appends) {
  const auto joined = [](string name) {  // the path, the output before, and the name
    const string path = vq::test::Take(name, '|');
    string out = vq::test::Take(name, '|');
    EXPECT_TRUE(AppendToTablePath(path, name, out));
    return out;
  };
  vq::test::ExpectRows(joined, {"T1|old|T2 -> T1/T2", "T1/||T2 -> T1/T2", "T1|| -> T1/",
                                "|kept|T -> keptT", "a//||/b -> a///b"});
}

TEST(TablePathTest, Splits) {
  const auto parts = [](const string& path) {  // all, the left-most and the right-most
    List names = {"old", path};
    EXPECT_TRUE(SplitTablePath(names.back(), names));
    string all, left = path, rest = "old", front = "old", right = path;
    for (const string& name : names) all += "[" + name + "]";
    EXPECT_TRUE(SplitLeftMost(left, left, rest) && SplitRightMost(right, front, right));
    EXPECT_EQ(IsOuterMostTableName(path), path.find('/') == string::npos);
    return all + " " + left + "," + rest + " " + front + "," + right;
  };
  vq::test::ExpectRows(parts, {"T1/T2/T3 -> [T1][T2][T3] T1,T2/T3 T1/T2,T3", "T1 -> [T1] T1, T1,T1",
                               " ->  , ,", "/T1 -> [][T1] ,T1 ,T1", "T1/ -> [T1] T1, T1,",
                               "a//b -> [a][][b] a,/b a/,b", "a/b\0c -> [a][b\0c] a,b\0c a,b"s});
}

TEST(TablePathTest, BelongsByLength) {
  for (const char* second : {"CD", "CD/E"}) EXPECT_TRUE(DoesTableBelongToTable("AB", second));
  for (const char* second : {"AB", "AB/T", "T/AB", "CDE", "CD/", "CDE/F", "C/DE", "D", ""}) {
    EXPECT_FALSE(DoesTableBelongToTable("AB", second)) << second;
  }
  EXPECT_FALSE(DoesTableBelongToTable("", "/a"));
}

TEST(FieldLengthTest, EveryFieldHasItsLength) {
  const auto lengths = [](const std::function<int(QCSFieldName)>& length) {
    string text;
    for (int field = -1; field <= 32; ++field) {
      text += std::to_string(length(static_cast<QCSFieldName>(field))) + " ";
    }
    return text;
  };
  const string before = "0 64 255 64 64 32 64 255 6 4000 255 ";
  const string after = " 20 10 44 64 255 64 5 20 64 3 3 5 200 400 200 400 300 500 4000 20 0 ";
  EXPECT_EQ(lengths([](auto field) { return GetFieldLength(field, false); }),
            before + "10 50" + after);
  EXPECT_EQ(lengths([](auto field) { return GetFieldLength(field, true); }),
            before + "8 50" + after);
  EXPECT_EQ(lengths(GetFieldLength640), before + "30 4000" + after);
}

TEST(TErrMsgTest, PrintsAndResets) {
  TErrMsg message;
  EXPECT_STREQ(message.GetAsString(), "UNK [UNK]\t[00]\t1\t");
  EXPECT_TRUE(message.IsValidMessage() && !message.IsInternalErr());
  message.SetMemName("MEMBER");
  message.SetIndex(7);
  message.SetTRC(36);
  message.SetMsg("100%s full");
  message.SetConvertErr(true);
  message.SetConvertMsg("cannot convert");
  TErrMsg copy;
  copy = message;
  message.ResetMessage();
  EXPECT_STREQ(message.GetAsString(), "UNK [unk]\t[00]\t1\t");
  EXPECT_STREQ(copy.GetAsString(), "UNK [UNK]\t[07]\t36\t100%s full");
  EXPECT_TRUE(copy.IsInternalErr());
  for (const TErrMsg& one : {message, copy}) {
    EXPECT_STREQ(one.GetMemName(), "MEMBER");
    EXPECT_STREQ(one.GetConvertMsg(), "cannot convert");
    EXPECT_TRUE(one.IsConvertErr() && !one.IsValidMessage());
  }
  copy.SetConvertErr(false);
  EXPECT_FALSE(copy.IsValidMessage()) << "the code is 36";
  copy.SetIndex(-123);
  copy.SetMsg(BaseString(2000, 'x'));
  EXPECT_EQ(copy.GetAsString().Std(), "UNK [UNK]\t[-123]\t36\t" + string(979, 'x'));
}

TEST(TErrMsgsTest, RefusesBadIndex) {
  TErrMsgs messages;
  for (int i = 0; i < 2; ++i) messages.AddMsg(TErrMsg());
  const TErrMsgs& constant = messages;
  messages.GetMsg(1).SetTRC(36);
  constant.GetMsg(1).SetTRC(1);  // a copy
  EXPECT_TRUE(constant.GetMsgRef(1).IsInternalErr() && !constant.GetMsgRef(0).IsInternalErr());
  const auto kRaises = testing::ThrowsMessage<std::out_of_range>("invalid vector<T> subscript");
  EXPECT_THAT([&] { messages.GetMsg(2); }, kRaises);
  EXPECT_THAT([&] { constant.GetMsg(4000000000U); }, kRaises);
  messages.RemoveAll();
  EXPECT_EQ(messages.GetSize(), 0U);
}

}  // namespace
