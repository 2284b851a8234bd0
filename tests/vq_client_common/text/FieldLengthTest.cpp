#include <vq_client_common/text/FieldLength.h>

#include <sstream>

#include <gtest/gtest.h>

namespace {

TEST(FieldLengthTest, EveryFieldHasItsLengthAndNoOtherNumberHasOne) {
  // By length here and by field in the code, so that one slip does not hide in the other.
  int count = 0;
  for (const char* row :
       {"64: 0 2 3 5 15 17 20", "255: 1 6 9 16", "32: 4", "6: 7", "4000: 8 30", "10: 10 13",
        "50: 11", "20: 12 19 31", "44: 14", "5: 18 23", "3: 21 22", "200: 24 26", "400: 25 27",
        "300: 28", "500: 29", "0: 32 33 1000 2147483647 -1 -10 -2147483648"}) {
    std::istringstream numbers(row);
    int length = 0;
    numbers >> length;
    numbers.ignore();
    for (int number = 0; numbers >> number; ++count) {
      const auto field = static_cast<QCSFieldName>(number);
      EXPECT_EQ(GetFieldLength(field, false), length) << number;
      EXPECT_EQ(GetFieldLength(field, true), number == 10 ? 8 : length) << number;
      const int length640 = number == 10 ? 30 : number == 11 ? 4000 : length;
      EXPECT_EQ(GetFieldLength640(field), length640) << number;
    }
  }
  EXPECT_EQ(count, 32 + 7);
}

}  // namespace
