#include <vq_client_common/datacenters/TArchive.h>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <support/security/StupidEncrypt.h>

namespace {

std::string Hidden(const std::string& text) {
  std::string out;
  StupidEncrypt(text, out);
  return out;
}

std::string Record(const std::string& text) {
  return std::to_string(text.size() + 1) + ";" + Hidden(text) + "\n";
}

template <typename T>
std::string Stored(const T& value, bool encrypt = true) {
  std::stringstream stream;
  TArchive archive(&stream, 0, 0, nullptr);
  archive.SetEncrptFlag(encrypt);
  archive << value;
  return stream.str();
}

// Loads one T from `bytes`. `left` gets what stays in the stream; a failure gives `failed`.
template <typename T>
T Loaded(const std::string& bytes, int type, T before, T failed, std::string* left = nullptr) {
  std::stringstream stream(bytes);
  TArchive archive(&stream, 1, 0, nullptr);
  archive.SetDecryptType(type);
  try {
    archive >> before;
  } catch (const TArchiveException& error) {
    EXPECT_EQ(error.GetCode(), 0);
    EXPECT_EQ(error.GetMessage(), "");
    return failed;
  }
  if (left != nullptr) *left = std::string(std::istreambuf_iterator<char>(stream), {});
  return before;
}

std::string LoadedText(const std::string& bytes, int type = 3) {
  std::string left;
  const std::string text = Loaded<std::string>(bytes + "rest", type, "before", "FAILED", &left);
  EXPECT_TRUE(text == "FAILED" || left == "rest") << left;
  return text;
}

TEST(TArchiveTest, WritesRecords) {
  EXPECT_EQ(Stored(std::string()), "1;\n");
  EXPECT_EQ(Stored(std::string("T1\nT2")), Record("T1\nT2"));
  EXPECT_EQ(Stored(4294967296UL), Record("4294967296"));
  EXPECT_EQ(Stored(-1L), Record("4294967295"));
  EXPECT_EQ(Stored(std::numeric_limits<long>::min()), Record("0"));
  EXPECT_EQ(Stored(-1), Record("4294967295"));
  EXPECT_EQ(Stored(static_cast<short>(-1)), Record("4294967295"));
  EXPECT_EQ(Stored(static_cast<char>(-1)), Record("4294967295"));
  EXPECT_EQ(Stored(static_cast<unsigned char>(255)), Record("255"));
  EXPECT_EQ(Stored(static_cast<unsigned short>(65535)), Record("65535"));
  EXPECT_EQ(Stored(4294967295U), Record("4294967295"));
  EXPECT_EQ(Stored(true), Record("1"));
  EXPECT_EQ(Stored(1234.5), Record(" 1.234500000000000E+03"));
  EXPECT_EQ(Stored(-1.5F), Record("-1.500000000000000E+00"));
  EXPECT_EQ(Stored(-std::numeric_limits<double>::max()), Record("-1.797693134862316E+308"));
}

TEST(TArchiveTest, WritesNumbersPlainlyWithoutTheFlag) {
  EXPECT_EQ(Stored(42UL, false), "42\n");
  EXPECT_EQ(Stored(-1, false), "4294967295\n");
  EXPECT_EQ(Stored('A', false), "65\n");
  EXPECT_EQ(Stored(true, false), "1\n");
  EXPECT_EQ(Stored(1234.5, false), "1234.5\n");
  // No plain form of a string exists: zero bytes stand for it.
  EXPECT_EQ(Stored(std::string("abc"), false), std::string("4;\0\0\0\n", 6));
}

// The text that a record of each length and each byte value gives back, around the 512 bytes too.
TEST(TArchiveTest, TheRecordCipherUndoesStupidEncrypt) {
  for (int before = 0; before < 256; ++before) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) {
      text += static_cast<char>(before);  // puts the cipher into another state
      text += static_cast<char>(byte);
    }
    ASSERT_EQ(LoadedText(Stored(text)), text);
  }
  std::mt19937 random(44);
  std::string text;
  for (std::size_t length = 0; length < 1100; ++length) {
    ASSERT_EQ(LoadedText(Stored(text)), text) << length;
    text += static_cast<char>(random() % 256);
  }
  text.assign(100000, '\xE9');
  EXPECT_EQ(LoadedText(Stored(text)), text);
}

TEST(TArchiveTest, LoadsStrings) {
  const struct {
    std::string bytes;
    int type;
    std::string expected;
  } kRows[] = {
      {"1;\n", 3, ""},
      {"0;\n", 3, ""},
      {"1;\n", 1, ""},
      {"4;abc\n", 1, "abc"},
      {"4;abc\n", 7, "abc"},
      {" \t\n+4;abcdef\n", 1, "abc"},  // what follows the value is skipped up to the line end
      {"4;a\nb\n", 1, "a\nb"},
      {"4,abc\n", 1, "abc"},
      {"-4;abc\n", 1, "FAILED"},
      {"x\n", 3, "FAILED"},
      {"99999999999999999999;abc\n", 1, "FAILED"},
      {"2147483648;abc\n", 1, "FAILED"},
      {"2147483647;abc\n", 1, "FAILED"},  // ends long before: no memory is taken for it
      {Hidden("a;b") + "\n", 2, "a;b"},
      {Hidden(std::string("a\0b", 3)) + "\n", 2, std::string("a\0b", 3)},
      {"\n", 2, ""},
      {Hidden(std::string(512, 'x')) + "\n", 2, std::string(512, 'x')},
      {Hidden(std::string(513, 'x')) + "\n", 2, "FAILED"},
  };
  for (const auto& row : kRows) EXPECT_EQ(LoadedText(row.bytes, row.type), row.expected);
}

TEST(TArchiveTest, AStreamThatEndsTooSoonFails) {
  for (const int type : {1, 2, 3}) {
    for (const char* bytes : {"", " ", "4", "4;", "4;a", "4;abc"}) {
      EXPECT_EQ(Loaded<std::string>(bytes, type, "", "FAILED"), "FAILED") << type << bytes;
      EXPECT_EQ(Loaded<unsigned long>(bytes, type == 1 ? 3 : type, 5, 99), 99U) << type << bytes;
      // A double leaves its line end in the stream, and so does not need one.
      const bool whole = type != 2 && std::string(bytes) == "4;abc";
      EXPECT_EQ(Loaded<double>(bytes, type == 1 ? 3 : type, 5, 99), whole ? 0 : 99)
          << type << bytes;
    }
  }
}

TEST(TArchiveTest, LoadsUnsignedLongs) {
  const struct {
    std::string bytes;
    int type;
    unsigned long expected;
  } kRows[] = {
      {"1;\n", 3, 0},
      {"0;\n", 3, 99},
      {Record("18446744073709551615"), 3, 18446744073709551615UL},
      {Record("99999999999999999999"), 3, 18446744073709551615UL},
      {Record("12x"), 3, 12},
      {Record(std::string(49, '0') + "7"), 3, 7},   // 50 bytes
      {Record(std::string(50, '0') + "7"), 3, 99},  // 51
      {"3;12\n", 7, 12},
      {"12\n", 1, 12},
      {"x\n", 1, 99},
      {Hidden("12") + "\n", 2, 12},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(Loaded<unsigned long>(row.bytes, row.type, 5, 99), row.expected) << row.bytes;
  }
  EXPECT_EQ(Loaded<unsigned long>(Stored(-1L), 3, 5, 99), 4294967295UL);
  EXPECT_EQ(Loaded<long>(Stored(-1L), 3, 5, 99), -1);
  EXPECT_EQ(Loaded<bool>(Record("4294967296"), 3, true, true), false);  // the low 32 bits
}

TEST(TArchiveTest, LoadsDoublesInTheirOwnWay) {
  const struct {
    std::string bytes;
    int type;
    double expected;
    std::string left;
  } kRows[] = {
      {Stored(1234.5), 3, 1, "\n"},  // only the digits before the point; the line end stays
      {Stored(-1.5), 3, 4294967295, "\n"},
      {Stored(0.0), 3, 0, "\n"},
      {Record("9999999999"), 3, 1410065407, "\n"},
      {Record("42"), 7, 42, "\n"},  // deciphered at every type
      {"9;" + Hidden("42") + "\n", 3, 42, "\n"},
      {"3;" + Hidden("4217") + "\n", 3, 42, Hidden("4217").substr(2) + "\n"},
      {"1;17\n", 3, 17, ""},  // a line, and not deciphered
      {"1;\n", 3, 0, ""},
      {"1;" + std::string(513, '1') + "\n", 3, 99, ""},
      {"0;\n", 3, 99, ""},
      {"-5;1234\n", 3, 99, ""},
      {"5;\n", 3, 99, ""},
      {Hidden("42") + "\n", 2, 5, ""},  // the value is dropped
      {"1234.5\n", 1, 1234.5, "\n"},
  };
  for (const auto& row : kRows) {
    std::string left;
    EXPECT_EQ(Loaded<double>(row.bytes, row.type, 5, 99, &left), row.expected) << row.bytes;
    EXPECT_EQ(left, row.left) << row.bytes;
    if (row.expected != 4294967295 && row.expected != 1410065407) {
      EXPECT_EQ(Loaded<float>(row.bytes, row.type, 5, 99), static_cast<float>(row.expected));
    }
  }
}

// Has one byte in memory at a time, so that no record is ever there whole.
class ByteWiseBuffer : public std::stringbuf {
 protected:
  int_type underflow() override {
    const int_type next = std::stringbuf::underflow();
    if (next != traits_type::eof()) setg(eback(), gptr(), gptr() + 1);
    return next;
  }
};

template <typename T>
void ExpectAllComeBack(std::streambuf& buffer) {
  std::mt19937_64 random(7);
  std::iostream stream(&buffer);
  TArchive out(&stream, 0, 0, nullptr);
  TArchive in(&stream, 1, 0, nullptr);
  for (int round = 0; round < 2000; ++round) {
    T value{};
    if constexpr (std::is_same_v<T, std::string>) {
      value.resize(random() % 600);
      for (char& c : value) c = static_cast<char>(random());
    } else if constexpr (std::is_same_v<T, long>) {
      value = static_cast<std::int32_t>(random());
    } else if constexpr (std::is_floating_point_v<T>) {
      value = static_cast<T>(random() % 10);
    } else {
      value = static_cast<T>(random());
    }
    T loaded{};
    out << value;
    in >> loaded;
    ASSERT_EQ(loaded, value);
  }
}

template <typename... T>
void ExpectEachComesBack() {
  std::stringbuf whole;
  (ExpectAllComeBack<T>(whole), ...);
  ByteWiseBuffer byteWise;
  (ExpectAllComeBack<T>(byteWise), ...);
}

TEST(TArchiveTest, EveryTypeComesBack) {
  ExpectEachComesBack<std::string, bool, char, unsigned char, short, unsigned short, int,
                      unsigned int, long, unsigned long, float, double>();
}

TEST(TArchiveTest, PlainNumbersExtractTheirOwnType) {
  std::stringstream stream("1 -2 x 3.5 7 ");
  TArchive in(&stream, 1, 0, nullptr);
  in.SetDecryptType(1);
  bool flag = false;
  short number = 0;
  char character = 0;
  float real = 0;
  long wide = 0;
  in >> flag >> number >> character >> real >> wide;
  EXPECT_TRUE(flag);
  EXPECT_EQ(number, -2);
  EXPECT_EQ(character, 'x');
  EXPECT_EQ(real, 3.5F);
  EXPECT_EQ(wide, 7);
}

TEST(TArchiveTest, LetsGoOfItsStream) {
  struct CountingBuffer : std::stringbuf {
    int flushed = 0;
    int sync() override { return ++flushed, 0; }
  } buffer;
  std::iostream stream(&buffer);
  {
    TArchive archive(&stream, 0, 0, nullptr);
    EXPECT_TRUE(archive.IsStoring());
    archive << 1;
    archive.Ignore();  // leaves a storing archive's stream alone
    archive.Close();
    archive.Close();
    EXPECT_EQ(buffer.flushed, 1);
    int value = 0;
    EXPECT_THROW(archive << 1, TArchiveException);
    EXPECT_THROW(archive >> value, TArchiveException);
    archive.Abort();
  }
  EXPECT_EQ(buffer.str(), Record("1"));
  { TArchive(&stream, 0, 0, nullptr).Abort(); }
  EXPECT_EQ(buffer.flushed, 1);
  { const TArchive archive(&stream, 2, 0, nullptr); }
  EXPECT_EQ(buffer.flushed, 2);
  TArchive loading(&stream, 5, 0, nullptr);
  EXPECT_TRUE(loading.IsLoading());
  loading.Ignore();
  EXPECT_EQ(stream.peek(), ';');
}

TEST(TArchiveTest, ABrokenStreamFails) {
  struct BrokenBuffer : std::streambuf {
    int_type underflow() override { throw std::ios_base::failure("broken"); }
  } buffer;
  std::iostream stream(&buffer);
  TArchive archive(&stream, 1, 0, nullptr);
  std::string text;
  EXPECT_THROW(archive >> text, TArchiveException);
  EXPECT_TRUE(stream.bad());
  EXPECT_THROW(archive << text, TArchiveException);
}

TEST(TArchiveTest, SerializeElementFollowsTheDirection) {
  std::stringstream stream;
  std::string text = "T1";
  {
    TArchive out(&stream, 0, 0, nullptr);
    SerializeElement(out, text);
  }
  text.clear();
  TArchive in(&stream, 1, 0, nullptr);
  SerializeElement(in, text);
  EXPECT_EQ(text, "T1");
}

TEST(TArchiveExceptionTest, CarriesCodeAndMessage) {
  TArchiveException error(7, "text");
  EXPECT_EQ(error.GetCode(), 7);
  EXPECT_EQ(error.GetMessage(), "text");
  error = TArchiveException(0, nullptr);
  EXPECT_EQ(error.GetCode(), 0);
  EXPECT_EQ(error.GetMessage(), "");
}

}  // namespace
