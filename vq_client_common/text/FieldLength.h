// The maximal length of a job field, by the field's number.
//
// A client limits what a user types into a field by it. Lengths are in bytes.
//
//   GetFieldLength(QCS_FIELD_1, false)   255
//   GetFieldLength640(QCS_FIELD_10)      30
#ifndef VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H
#define VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H

#include <cstdint>

#include <support/Export.h>

// The fields have numbers and no names of their own. The type is fixed so that a number from
// elsewhere, too high or negative, may be cast to it and asked about.
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

// Thread contract: both functions may be called from any thread.

// The length of `field`, 0 for a number that is no field. `shortForm` matters to QCS_FIELD_10 only,
// which has 8 bytes with it and 10 without.
VQ_CLIENT_COMMON_API std::int32_t GetFieldLength(QCSFieldName field, bool shortForm);

// The same for data centers whose scheduler is of version 640, where QCS_FIELD_10 has 30 bytes and
// QCS_FIELD_11 has 4000.
VQ_CLIENT_COMMON_API std::int32_t GetFieldLength640(QCSFieldName field);

#endif  // VQ_CLIENT_COMMON_TEXT_FIELDLENGTH_H
