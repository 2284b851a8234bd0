#include <vq_client_common/text/FieldLength.h>

#include <array>

namespace {

constexpr std::array<std::int32_t, 32> kLengths{
    64,   255, 64,  64,  32,  64,  255,  6,    //  0 to  7
    4000, 255, 10,  50,  20,  10,  44,   64,   //  8 to 15
    255,  64,  5,   20,  64,  3,   3,    5,    // 16 to 23
    200,  400, 200, 400, 300, 500, 4000, 20};  // 24 to 31

}  // namespace

std::int32_t GetFieldLength(QCSFieldName field, bool shortForm) {
  if (field == QCS_FIELD_10 && shortForm) return 8;
  const auto index = static_cast<std::uint32_t>(field);  // a negative number becomes a large one
  return index < kLengths.size() ? kLengths[index] : 0;
}

std::int32_t GetFieldLength640(QCSFieldName field) {
  if (field == QCS_FIELD_10) return 30;
  if (field == QCS_FIELD_11) return 4000;
  return GetFieldLength(field, false);
}
