#include <vq_client_common/datacenters/ArrayWrap.h>
#include <vq_client_common/datacenters/TString2Enum.h>

#include <climits>
#include <stdexcept>

#include <gmock/gmock.h>

namespace {

using namespace std::string_literals;

TEST(TString2EnumTest, RegistersLooksUpAndCopies) {
  TString2Enum registry;
  EXPECT_EQ(registry.enum_lookup("RED"), -1);
  EXPECT_EQ(registry.enum_register("RED", 3), 1);
  EXPECT_EQ(registry.enum_register("RED", 4), 1);
  EXPECT_EQ(registry.enum_register("RED", -1), 0);
  EXPECT_EQ(registry.enum_register("A\0B"s, INT_MIN), 1);
  const TString2Enum copy = registry;
  registry.enum_register("RED", 5);
  EXPECT_EQ(copy.enum_lookup("RED"), 4);
  EXPECT_EQ(copy.enum_lookup("red"), -1);
  EXPECT_EQ(copy.enum_lookup("A\0C"s), INT_MIN);  // Names count up to their first zero byte.
}

TEST(ArrayWrapTest, AppendReturnsTheNewIndexAndABadIndexRaises) {
  ArrayWrap<std::string> array;
  EXPECT_EQ(array.Append("a"), 0U);
  EXPECT_EQ(array.Append("b"), 1U);
  EXPECT_THAT(array, testing::ElementsAre("a", "b"));
  EXPECT_EQ(array[1], "b");
  EXPECT_THROW(array[2], std::out_of_range);
  array.Clear();
  EXPECT_EQ(array.size(), 0U);
}

}  // namespace
