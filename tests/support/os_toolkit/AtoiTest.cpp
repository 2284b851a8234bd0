#include <support/os_toolkit/Atoi.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

TEST(AtoiTest, ReadsWhatFitsAsTheCLibraryDoes) {
  for (const char* text : {"",
                           " ",
                           "0",
                           "0730",
                           "  42",
                           "\t\n\v\f\r7",
                           "+8",
                           "-9",
                           "+",
                           "-",
                           "+-5",
                           "- 5",
                           "12ab",
                           "ab12",
                           "1 2",
                           "2147483647",
                           "-2147483648",
                           "00000000000000000000012",
                           "0x10",
                           "\xA0"
                           "5",
                           "1e3"}) {
    EXPECT_EQ(vq::Atoi(text), std::atoi(text)) << '"' << text << '"';
  }
}

TEST(AtoiTest, GivesTheNearestIntForTheRest) {
  EXPECT_EQ(vq::Atoi("2147483648"), INT_MAX);
  EXPECT_EQ(vq::Atoi("-2147483649"), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string(1000, '9')), INT_MAX);
  EXPECT_EQ(vq::Atoi("-" + std::string(1000, '9')), INT_MIN);
}

TEST(AtoiTest, StopsAtAZeroByteAndAtTheEndOfTheView) {
  EXPECT_EQ(vq::Atoi(std::string_view("12\0"
                                      "34",
                                      5)),
            12);
  EXPECT_EQ(vq::Atoi(std::string_view("1234").substr(1, 2)), 23);
}

}  // namespace
