#include <vq_client_common/datacenters/TArchive.h>

#include <iomanip>
#include <limits>
#include <sstream>

#include <support/security/StupidEncrypt.h>
#include <tests/fixture/UnitTest.h>

namespace {

using std::string;

string Hidden(const string& text) {
  string out;
  StupidEncrypt(text, out);
  return out;
}

string Record(const string& text) {
  return std::to_string(text.size() + 1) + ";" + Hidden(text) + "\n";
}

template <typename... T>
string Stored(const T&... values) {
  std::stringstream stream;
  TArchive archive(&stream, 0, 0, nullptr);
  (archive << ... << values);
  return stream.str();
}

// Loads one T over `value`. Returns it, "|" and the rest of the stream.
template <typename T>
string Loaded(const string& bytes, int type, T value = {}) {
  std::stringstream stream(bytes);
  TArchive archive(&stream, 1, 0, nullptr);
  archive.SetDecryptType(type);
  try {
    archive >> value;
  } catch (const TArchiveException& error) {
    return "FAILED" + error.GetMessage() + (error.GetCode() == 0 ? "" : "!");
  }
  return (std::ostringstream() << std::setprecision(20) << value << '|' << stream.rdbuf()).str();
}

template <typename T>
void Expect(int type, T value, const std::vector<string>& rows) {
  vq::test::ExpectRows([&](const string& bytes) { return Loaded(bytes, type, value); }, rows);
}

TEST(TArchiveTest, WritesRecords) {
  const string kAllBits = Record("4294967295");
  EXPECT_EQ(Stored(string(), string("T1\nT2"), 4294967296UL, 4294967295U, true, 'A', -1L),
            "1;\n" + Record("T1\nT2") + Record("4294967296") + kAllBits + Record("1") +
                Record("65") + kAllBits);
  EXPECT_EQ(Stored(-1, short{-1}, '\xFF', std::numeric_limits<long>::min(), std::uint8_t{255},
                   std::uint16_t{65535}),
            kAllBits + kAllBits + kAllBits + Record("0") + Record("255") + Record("65535"));
  EXPECT_EQ(Stored(1234.5, -1.5F),
            Record(" 1.234500000000000E+03") + Record("-1.500000000000000E+00"));
  std::stringstream stream;
  TArchive out(&stream, 0, 0, nullptr);
  out.SetEncrptFlag(false);
  out << -1 << 'A' << 1234.5 << string("abc");  // A text has no plain form.
  EXPECT_EQ(stream.str(), "4294967295\n65\n1234.5\n" + string("4;\0\0\0\n", 6));
}

TEST(TArchiveTest, LoadsByDecryptType) {
  const string k512(512, 'x');
  // What follows a value is skipped up to the line end.
  Expect<string>(1, "old",
                 {" \t\n+4;abcdef\nr -> abc|r", "4,a\nb\nr -> a\nb|r", "-4;abc\n -> FAILED",
                  "99999999999999999999;abc\n -> FAILED"});
  Expect<string>(2, "old",
                 {Hidden("a;b") + "\nr -> a;b|r", "\nr -> |r",
                  Hidden(k512) + "\nr -> " + k512 + "|r", Hidden(k512 + "x") + "\n -> FAILED"});
  Expect<string>(3, "old", {"1;\nr -> |r", "0;\nr -> |r", "x\n -> FAILED"});
  Expect<string>(7, "old", {"4;abc\nr -> abc|r"});
  Expect(1, 5UL, {"12\n -> 12|\n", "x\n -> FAILED"});
  Expect(2, 5UL, {Hidden("12") + "\nr -> 12|r"});
  Expect(3, 5UL,
         {"1;\nr -> 0|r", "0;\n -> FAILED", Record("12x") + "r -> 12|r",
          Record("99999999999999999999") + " -> 18446744073709551615|",
          Record(string(49, '0') + "7") + " -> 7|", Record(string(49, '0') + "07") + " -> FAILED",
          Stored(-1L) + " -> 4294967295|"});
  Expect(7, 5UL, {"3;12\nr -> 12|r"});
  Expect(1, 5.0, {"1234.5\n -> 1234.5|\n"});
  Expect(2, 5.0, {Hidden("42") + "\nr -> 5|r"});  // the value is dropped
  // Only the digits before the point; the line end stays and may be missing. "1;" makes it a line,
  // not deciphered.
  Expect(3, 5.0,
         {Stored(1234.5) + " -> 1|\n", Stored(-1.5) + " -> 4294967295|\n",
          Record("9999999999") + " -> 1410065407|\n", "9;" + Hidden("42") + "\n -> 42|\n",
          "3;" + Hidden("42") + "7\n -> 42|7\n", "1;17\n -> 17|", "1;" + k512 + "x\n -> FAILED",
          "0;\n -> FAILED", "-5;1234\n -> FAILED", "5;\n -> FAILED", " -> FAILED", "4 -> FAILED",
          "4; -> FAILED", "4;abc -> 0|"});
  Expect(7, 5.0, {Record("42") + " -> 42|\n"});  // deciphered at every type
  const std::vector<string> kShort = {" -> FAILED", "4 -> FAILED", "4;a -> FAILED",
                                      "4;abc -> FAILED"};
  for (const int type : {2, 3, 7}) {
    Expect<string>(type, "old", kShort);
    Expect(type, 5UL, kShort);
  }
  // Other integers are reduced to their low bits, and are extracted at type 1.
  Expect(3, true, {Record("4294967296") + " -> 0|"});
  Expect(1, 'a', {"x -> x|"});
  Expect(1, 5.0F, {"3.5  -> 3.5| "});
}

TEST(TArchiveTest, EveryTypeComesBack) {
  const auto comesBack = []<typename T>(T value) {
    return Loaded<T>(Stored(value), 3) == (std::ostringstream() << value << '|').str();
  };
  EXPECT_TRUE(comesBack(string("T1\nT2")) && comesBack(string(5000, '\xF5')) && comesBack(true));
  EXPECT_TRUE(comesBack('A') && comesBack('\xFF') && comesBack(std::uint8_t{200}));
  EXPECT_TRUE(comesBack(short{-300}) && comesBack(std::uint16_t{65535}) && comesBack(-70000));
  EXPECT_TRUE(comesBack(4000000000U) && comesBack(-1L) && comesBack(1UL << 40U));
}

TEST(TArchiveTest, PrefixClaimsNoMemory) {
  std::stringstream stream("2147483647;abc");
  TArchive archive(&stream, 1, 0, nullptr);
  string text;
  EXPECT_THROW(archive >> text, TArchiveException);
  EXPECT_LT(text.capacity(), 100'000U);
  stream.clear();
  stream.str(" " + Record(string(16, 'x')));
  stream >> std::hex >> std::noskipws;  // The caller's formatting does not count, and stays.
  archive >> text;
  EXPECT_EQ(text, string(16, 'x'));
  EXPECT_EQ(stream.flags() & std::ios_base::basefield, std::ios_base::hex);
}

TEST(TArchiveTest, FlushesOnce) {
  struct CountingBuffer : std::stringbuf {
    int flushed = 0;
    int sync() override { return ++flushed, 0; }
  } buffer;
  std::iostream stream(&buffer);
  int value = 1;
  {
    TArchive archive(&stream, 0, 0, nullptr);
    (archive << value).Ignore();  // leaves a storing archive's stream alone
    for (int time = 0; time < 2; ++time) archive.Close();
    EXPECT_THROW(archive << value, TArchiveException);
  }
  TArchive(&stream, 0, 0, nullptr).Abort();
  EXPECT_EQ(buffer.flushed, 1);
  TArchive(&stream, 2, 0, nullptr).Ignore();
  EXPECT_EQ(buffer.flushed, 2);
  EXPECT_EQ(stream.peek(), ';');
}

TEST(TArchiveTest, FailsOnBrokenStream) {
  struct BrokenBuffer : std::streambuf {
    int_type underflow() override { throw 5; }  // no std::exception
    int sync() override { throw 5; }
  } buffer;
  std::iostream stream(&buffer);
  string text;
  TArchive archive(&stream, 1, 0, nullptr);
  EXPECT_THROW(archive >> text, TArchiveException);
  stream.clear();
  stream.exceptions(std::ios_base::badbit);  // the destructor raises nothing nevertheless
  const TArchiveException error(7, "text");
  EXPECT_EQ(std::to_string(error.GetCode()) + error.GetMessage(), "7text");
  EXPECT_EQ(TArchiveException(0, nullptr).GetMessage(), "");
}

}  // namespace
