#include <vq_client_common/text/ConvertFunctions.h>

#include <cstddef>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <support/diagnostics/TDiag.h>

namespace {

struct Row {
  std::string in, expected;
};

using Formatter = void (*)(const std::string&, std::string&);

void Expect(Formatter format, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    std::string out = "old";
    format(row.in, out);
    EXPECT_EQ(out, row.expected) << '"' << row.in << '"';
    std::string inPlace = row.in;
    format(inPlace, inPlace);
    EXPECT_EQ(inPlace, row.expected) << '"' << row.in << "\" in place";
  }
}

TEST(FormatTest, ExecTime) {
  Expect(FormatExecTime, {{"", ""},
                          {"5", "005"},
                          {"+5%", "+005%"},
                          {"-12", "-012"},
                          {"1234", "1234"},
                          {"0005", "005"},
                          {"+", "+000"},
                          {"%", "%000"},
                          {"%%", "%000%"},
                          {"x7y", "x007"},
                          {"5%", "005%"},
                          {"--5", "--005"},
                          {" 12", " 012"},
                          {"1%2", "001"},
                          {"\xE4"
                           "9",
                           "\xE4"
                           "009"},
                          {"99999999999", "2147483647"}});
}

TEST(FormatTest, Interval) {
  Expect(FormatInterval, {{"", "00001M"},
                          {"5", "00005M"},
                          {"10h", "00010H"},
                          {"10H", "00010H"},
                          {"2D", "00002D"},
                          {"2d", "00002D"},
                          {"7x", "00007M"},
                          {"7m", "00007M"},
                          {"99999M", "99999M"},
                          {"100000M", "00000M"},
                          {"-3", "00000M"},
                          {"h", "00000H"},
                          {"99999999999d", "00000D"}});
}

TEST(FormatTest, ShiftNum) {
  Expect(FormatShiftNum, {{"", ""},
                          {"3", "+03"},
                          {"+12", "+12"},
                          {"0", "+00"},
                          {"100", "+100"},
                          {"-3", "--3"},
                          {"-12", "--12"},
                          {"-0", "+00"},
                          {"x", "+00"},
                          {"-100", "--100"}});
}

TEST(FormatTest, RetentionValues) {
  Expect([](const std::string& in, std::string& out) { FormatRetentionValues(in, out, false); },
         {{"7", "07"}, {"123", "123"}, {"1a", "1a"}, {"-1", "-1"}, {"007", "07"}, {" ", " "}});
  Expect([](const std::string& in, std::string& out) { FormatRetentionValues(in, out, true); },
         {{"7", "007"}, {"123", "123"}, {"1234", "1234"}, {"1a", "1a"}});
  std::string out = "kept";
  FormatRetentionValues("", out, false);
  EXPECT_EQ(out, "kept");
}

TEST(FormatTest, LogsWhatItDid) {
  std::vector<std::string> lines;
  TDiag::Instance()->SetMinimumDebugLevel(6);
  const auto sink = TDiag::Instance()->AddCallbackSink([&](const TDiagLine& line) {
    lines.push_back(std::to_string(line.level) + " " + std::string(line.scope) + " " +
                    std::string(line.text));
  });
  std::string out;
  FormatExecTime("", out);
  FormatInterval("5", out);
  FormatShiftNum("-3", out);
  FormatRetentionValues("7", out, true);
  TDiag::Instance()->RemoveSink(sink);
  TDiag::Instance()->SetMinimumDebugLevel(1);
  EXPECT_EQ(lines,
            (std::vector<std::string>{
                "6 FormatExecTime Enter", "5 FormatExecTime ExecTime: before - , after - ",
                "6 FormatInterval Enter", "5 FormatInterval Interval: before - 5, after - 00005M",
                "6 FormatShiftNum Enter", "5 FormatShiftNum ShiftNum: before - -3, after - --3",
                "6 FormatRetentionValues Enter"}));
}

// The result, the text so far, and "!" when the position error was raised.
std::string Decoded(const std::string& buffer) {
  std::string lines(500, '#');
  try {
    const int result = ConvertBuffer2Lines(buffer, lines);
    return std::to_string(result) + lines;
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "invalid string position");
    return "!" + lines;
  }
}

std::string Encoded(const std::string& lines, unsigned maxLine) {
  std::string buffer(500, '#');
  EXPECT_EQ(ConvertLines2Buffer(lines, buffer, maxLine), 1);
  return buffer;
}

TEST(LineBufferTest, Decodes) {
  for (const Row& row : std::vector<Row>{{"", "1"},
                                         {"0003abc", "1abc"},
                                         {"0003abc0000", "1abc\r\n"},
                                         {"00000000", "1\r\n"},
                                         {"0001a0002bc", "1a\r\nbc"},
                                         {"12", "0"},
                                         {"0001a00", "0a\r\n"},
                                         {"0001a-001b", "0a\r\n"},
                                         {"xxxx0001a", "1\r\na"},
                                         {" +2xab", "1ab"},
                                         {"2   ab", "1ab"},
                                         {"1x  a", "1a"},
                                         {"0005ab", "!ab"},
                                         {"0001a0005bc", "!a\r\nbc"},
                                         {"0001", "!"}}) {
    EXPECT_EQ(Decoded(row.in), row.expected) << row.in;
  }
}

TEST(LineBufferTest, Encodes) {
  const struct {
    std::string lines;
    unsigned maxLine;
    std::string expected;
  } kRows[] = {
      {"", 80, ""},
      {"", 0, ""},
      {"abc", 80, "0003abc"},
      {"abc\r\n", 80, "0003abc0000"},
      {"\r\n", 80, "00000000"},
      {"abcdef", 3, "0003abc0003def"},
      {"abcdef\r\n", 3, "0003abc0003def0000"},
      {"ab  \r\ncd  ", 80, "0004ab  0002cd"},
      {"ab cd", 3, "0002ab0002cd"},  // each piece of the last line is trimmed
      {"ab cd\r\n", 3, "0003ab 0002cd0000"},
      {" ", 80, "0000"},
      {"  ", 80, "0002  "},
      {"a\rb\nc\n\r", 80, "0007a\rb\nc\n\r"},
      {"a\r\r\nb", 80, "0002a\r0001b"},
      {std::string(9999, 'x'), 20000, "9999" + std::string(9999, 'x')},
      {std::string(12345, 'x'), 20000, "12345" + std::string(12345, 'x')},
  };
  for (const auto& row : kRows) EXPECT_EQ(Encoded(row.lines, row.maxLine), row.expected);

  std::string lineEnds;  // a buffer twice as long as its text
  for (int i = 0; i < 999; ++i) lineEnds += "\r\n";
  EXPECT_EQ(Encoded(lineEnds, 80), std::string(4000, '0'));
}

TEST(LineBufferTest, RefusesALimitOfZero) {
  std::string buffer = "kept";
  EXPECT_THROW(ConvertLines2Buffer("abc", buffer, 0), std::invalid_argument);
  EXPECT_EQ(buffer, "kept");
}

// The conversions as they are defined, step by step on copies.
std::string PlainDecoded(std::string copy) {
  std::string lines;
  while (!copy.empty()) {
    if (copy.size() < 4) return "0" + lines;
    const int n = std::atoi(copy.substr(0, 4).c_str());
    if (n < 0) return "0" + lines;
    lines += copy.substr(4, static_cast<std::size_t>(n));
    if (copy.size() < 4 + static_cast<std::size_t>(n)) return "!" + lines;
    copy.erase(0, 4 + static_cast<std::size_t>(n));
    if (!copy.empty()) lines += "\r\n";
  }
  return "1" + lines;
}

std::string PlainEncoded(std::string copy, std::size_t maxLine) {
  std::string buffer;
  const auto append = [&](const std::string& line) {
    std::string digits = std::to_string(line.size());
    while (digits.size() < 4) digits.insert(0, "0");
    buffer += digits + line;
  };
  while (!copy.empty()) {
    const std::size_t p = copy.find("\r\n");
    std::string line = copy.substr(0, p);
    if (line.size() > maxLine) {
      line.resize(maxLine);
      copy.erase(0, maxLine);
    } else {
      copy.erase(0, p == std::string::npos ? p : p + 2);
    }
    if (p == std::string::npos &&
        (line == " " || line.find_first_not_of(' ') != std::string::npos)) {
      while (!line.empty() && line.back() == ' ') line.pop_back();
    }
    append(line);
    if (p != std::string::npos && copy.empty()) append("");
  }
  return buffer;
}

TEST(LineBufferTest, AgreesWithThePlainFormOnRandomTexts) {
  std::mt19937 random(53);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t i = 0, size = random() % 24; i < size; ++i) {
      static const std::vector<std::string> kPieces = {"a", " ",    "\r", "\n", "\r\n",
                                                       "0", "0000", "2",  "-",  "0003"};
      text += kPieces[random() % kPieces.size()];
    }
    const unsigned maxLine = 1 + static_cast<unsigned>(random() % 9);
    ASSERT_EQ(Encoded(text, maxLine), PlainEncoded(text, maxLine)) << text;
    ASSERT_EQ(Decoded(text), PlainDecoded(text)) << text;
    std::string inPlace = text;
    ConvertLines2Buffer(inPlace, inPlace, maxLine);
    ASSERT_EQ(inPlace, Encoded(text, maxLine));
  }
}

TEST(LineBufferTest, LinesComeBack) {
  std::mt19937 random(54);
  for (int round = 0; round < 2000; ++round) {
    std::string lines;
    for (std::size_t i = 0, count = random() % 6; i < count; ++i) {
      lines.append(random() % 300, static_cast<char>('!' + random() % 90)).append("\r\n");
    }
    if (random() % 2 == 0) lines += "end";
    const std::string buffer = Encoded(lines, 9999);
    ASSERT_EQ(buffer, PlainEncoded(lines, 9999));
    ASSERT_EQ(Encoded(lines, 77), PlainEncoded(lines, 77));
    ASSERT_EQ(Decoded(buffer), "1" + lines);
    std::string inPlace = buffer;
    ASSERT_EQ(ConvertBuffer2Lines(inPlace, inPlace), 1);
    ASSERT_EQ(inPlace, lines);
  }
}

TEST(LineEndTest, ConvertsLeftToRight) {
  const struct {
    int (*convert)(const std::string&, std::string&);
    std::vector<Row> rows;
  } kTables[] = {
      {ConvertWindowsToUnix,
       {{"", ""},
        {"a\r\nb", "a\nb"},
        {"\r\r\n", "\r\n"},
        {"a\rb\n", "a\rb\n"},
        {"\r\n\r\n", "\n\n"}}},
      {ConvertUnixToWindows,
       {{"", ""}, {"a\nb", "a\r\nb"}, {"a\r\nb", "a\r\r\nb"}, {"\r", "\r"}, {"\n\n", "\r\n\r\n"}}},
  };
  for (const auto& table : kTables) {
    for (const Row& row : table.rows) {
      std::string out = "old";
      EXPECT_EQ(table.convert(row.in, out), 1);
      EXPECT_EQ(out, row.expected);
      out = row.in;
      table.convert(out, out);
      EXPECT_EQ(out, row.expected);
    }
  }
}

}  // namespace
