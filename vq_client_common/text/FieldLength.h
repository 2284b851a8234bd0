// The greatest length of each job field in bytes, for input forms.
//
//   GetFieldLength(QCS_FIELD_1, false);   // 255
//   GetFieldLength640(QCS_FIELD_10);      // 30
#ifndef VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H
#define VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H

#include <cstdint>

#include <support/Export.h>

// The job fields, which have numbers only. The underlying type is fixed, so that any number may be
// cast to this type.
enum QCSFieldName : std::int32_t {
  QCS_FIELD_0,
  QCS_FIELD_1,
  QCS_FIELD_2,
  QCS_FIELD_3,
  QCS_FIELD_4,  // an encoded password
  QCS_FIELD_5,
  QCS_FIELD_6,
  QCS_FIELD_7,
  QCS_FIELD_8,
  QCS_FIELD_9,
  QCS_FIELD_10,
  QCS_FIELD_11,
  QCS_FIELD_12,
  QCS_FIELD_13,
  QCS_FIELD_14,
  QCS_FIELD_15,
  QCS_FIELD_16,
  QCS_FIELD_17,
  QCS_FIELD_18,
  QCS_FIELD_19,
  QCS_FIELD_20,
  QCS_FIELD_21,
  QCS_FIELD_22,
  QCS_FIELD_23,
  QCS_FIELD_24,
  QCS_FIELD_25,
  QCS_FIELD_26,
  QCS_FIELD_27,
  QCS_FIELD_28,
  QCS_FIELD_29,
  QCS_FIELD_30,
  QCS_FIELD_31,
};

// The length of a field in bytes; 0 for a number that is no field. `shortForm` changes QCS_FIELD_10
// only: 8 bytes with it, 10 without.
VQ_CLIENT_COMMON_API std::int32_t GetFieldLength(QCSFieldName field, bool shortForm);

// The length of a field in bytes for schedulers of version 640: 30 for QCS_FIELD_10, 4000 for
// QCS_FIELD_11, any other as above without `shortForm`.
VQ_CLIENT_COMMON_API std::int32_t GetFieldLength640(QCSFieldName field);

#endif  // VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H
