#include <vq_client_common/authorizations/QCSGuiAuthActJobsDef.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(std::is_base_of_v<QCSSelectionDef, QCSGuiAuthActJobsDef>);
static_assert(sizeof(QCSGuiAuthActJobsDef) == sizeof(QCSSelectionDef));

// The slot that a pointer to a virtual member tells, by the common C++ ABI.
template <class Member>
std::size_t SlotOf(Member member) {
  std::size_t offset = 0;
  std::memcpy(&offset, &member, sizeof offset);
  return (offset - 1) / sizeof(void*);
}

// Classes of other libraries override these operations by their slots.
TEST(QCSGuiAuthActJobsDef, TheVirtualOperationsKeepTheirOrder) {
  using Def = QCSGuiAuthActJobsDef;
  // The destructor takes the first two.
  EXPECT_EQ(SlotOf(&Def::DoesItFit), 2U);
  EXPECT_EQ(SlotOf(&Def::AsString), 3U);
  EXPECT_EQ(SlotOf(&Def::HowToEvaluateMissingAttrsMatches), 4U);
  EXPECT_EQ(SlotOf(&Def::ValidateFields), 5U);
  EXPECT_EQ(SlotOf(&Def::IsValidField), 6U);
}

}  // namespace
