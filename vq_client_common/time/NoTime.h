// The mark for a time that is absent, in every time field of the suite.
//
// It stands just under the largest value of 32 bits. Conversions pass it through, and it shows as
// an empty text.
//
//   if (order.startTime != NO_TIME) Show(times.ConvertTimeToString(order.startTime, "DC1"));
#ifndef VQ_CLIENT_COMMON_TIME_NOTIME_H
#define VQ_CLIENT_COMMON_TIME_NOTIME_H

#include <cstdint>

// No time at all.
inline constexpr std::int32_t NO_TIME = 2147483638;

#endif  // VQ_CLIENT_COMMON_TIME_NOTIME_H
