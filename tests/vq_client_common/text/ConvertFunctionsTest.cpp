#include <vq_client_common/text/ConvertFunctions.h>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string;

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

}  // namespace
