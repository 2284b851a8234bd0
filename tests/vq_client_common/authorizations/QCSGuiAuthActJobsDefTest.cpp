#include <vq_client_common/authorizations/QCSGuiAuthActJobsDef.h>

#include <cstring>

#include <gtest/gtest.h>

namespace {

static_assert(std::is_base_of_v<QCSSelectionDef, QCSGuiAuthActJobsDef>);
static_assert(sizeof(QCSGuiAuthActJobsDef) == sizeof(QCSSelectionDef));

// Classes of other libraries override these operations by their slots.
TEST(QCSGuiAuthActJobsDef, TheVirtualOperationsKeepTheirOrder) {
  using Def = QCSGuiAuthActJobsDef;
  std::size_t expected = 2;  // The destructor takes the first two.
  // The slot that a pointer to a virtual member tells, by the common C++ ABI.
  const auto expectNext = [&expected](auto member) {
    std::size_t offset = 0;
    std::memcpy(&offset, &member, sizeof offset);
    EXPECT_EQ((offset - 1) / sizeof(void*), expected++);
  };
  expectNext(&Def::DoesItFit);
  expectNext(&Def::AsString);
  expectNext(&Def::HowToEvaluateMissingAttrsMatches);
  expectNext(&Def::ValidateFields);
  expectNext(&Def::IsValidField);
}

}  // namespace
