#include <vq_client_common/text/FieldLength.h>

#include <initializer_list>
#include <limits>
#include <map>
#include <vector>

#include <gtest/gtest.h>

namespace {

QCSFieldName Field(int number) {
  return static_cast<QCSFieldName>(number);
}

TEST(FieldLengthTest, EveryFieldHasItsLength) {
  // By length here and by field in the code, so that one slip does not hide in the other.
  const std::map<int, std::vector<int>> kFieldsOfLength = {
      {64, {0, 2, 3, 5, 15, 17, 20}},
      {255, {1, 6, 9, 16}},
      {32, {4}},
      {6, {7}},
      {4000, {8, 30}},
      {10, {10, 13}},
      {50, {11}},
      {20, {12, 19, 31}},
      {44, {14}},
      {5, {18, 23}},
      {3, {21, 22}},
      {200, {24, 26}},
      {400, {25, 27}},
      {300, {28}},
      {500, {29}},
  };
  int count = 0;
  for (const auto& [length, fields] : kFieldsOfLength) {
    for (const int field : fields) {
      ++count;
      EXPECT_EQ(GetFieldLength(Field(field), false), length) << field;
      EXPECT_EQ(GetFieldLength(Field(field), true), field == 10 ? 8 : length) << field;
      EXPECT_EQ(GetFieldLength640(Field(field)), field == 10   ? 30
                                                 : field == 11 ? 4000
                                                               : length)
          << field;
    }
  }
  EXPECT_EQ(count, 32);
}

TEST(FieldLengthTest, ANumberThatIsNoFieldHasNoLength) {
  for (const int number :
       {32, 33, 1000, std::numeric_limits<int>::max(), -1, -10, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(GetFieldLength(Field(number), false), 0) << number;
    EXPECT_EQ(GetFieldLength(Field(number), true), 0) << number;
    EXPECT_EQ(GetFieldLength640(Field(number)), 0) << number;
  }
}

}  // namespace
