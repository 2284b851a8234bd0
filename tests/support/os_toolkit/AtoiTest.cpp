#include <support/os_toolkit/Atoi.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

TEST(AtoiTest, ReadsWhatFitsAsTheCLibraryDoesAndTheNearestIntForTheRest) {
  for (const std::string& text : {""s, " "s, "0730"s, "\t\n\v\f\r 7"s, "+8"s, "-9"s, "+"s, "-"s,
                                  "+-5"s, "- 5"s, "12ab"s, "ab12"s, "2147483647"s, "-2147483648"s,
                                  "00000000000000000000012"s, "0x10"s, "\xA0\x35"s, "1e3"s,
                                  "12\0"
                                  "34"s}) {
    EXPECT_EQ(vq::Atoi(text), std::atoi(text.c_str())) << '"' << text << '"';
  }
  EXPECT_EQ(vq::Atoi("2147483648"), INT_MAX);
  EXPECT_EQ(vq::Atoi("-2147483649"), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string(1000, '9')), INT_MAX);
  EXPECT_EQ(vq::Atoi("-" + std::string(1000, '9')), INT_MIN);
  EXPECT_EQ(vq::Atoi(std::string_view("1234").substr(1, 2)), 23);
}

}  // namespace
