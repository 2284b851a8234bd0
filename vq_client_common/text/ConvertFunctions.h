// Converts job fields between the form for users and the form of the server.
//
// The server stores text of several lines as a *line buffer*: for each line its length in bytes as
// four decimal digits, and then the line, without separators. The record of an empty line is
// "0000". The *text form* has lines that end in CR LF.
//
//   std::string out;
//   FormatExecTime("+5%", out);                // "+005%"
//   ConvertLines2Buffer("abc\r\n", out, 80);   // "0003abc0000"
//   ConvertBuffer2Lines("0003abc0000", out);   // "abc\r\n", returns 1
//
// Numbers are read as atoi reads them: up to the first character that is no digit, 0 without a
// digit. A number that does not fit an int becomes the nearest int.
//
// All functions take time in proportion to the length of the input. The output may be the same
// object as the input. A function raises an exception only where its comment says so.
#ifndef VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H
#define VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H

#include <string>

#include <support/Export.h>

// Formats an execution time: the first character, if it is no digit; the number with at least three
// digits; "%", if `in` ends with it. "5" becomes "005", "+" becomes "+000", empty stays empty.
VQ_CLIENT_COMMON_API void FormatExecTime(const std::string& in, std::string& out);

// Formats an interval: the number with at least five digits, and its unit. The unit is the last
// character in upper case, if that is D or H, and M otherwise. "10h" becomes "00010H", empty
// becomes "00001M". A number that is not 0 to 99999 becomes 0.
VQ_CLIENT_COMMON_API void FormatInterval(const std::string& in, std::string& out);

// Formats a shift: a sign and the number with at least two digits. "3" becomes "+03". A negative
// number has two signs: "-3" becomes "--3". Empty stays empty.
VQ_CLIENT_COMMON_API void FormatShiftNum(const std::string& in, std::string& out);

// Formats a retention: a string of digits gets at least two digits, or three with `wide`; any other
// string is copied. With an empty `in`, `out` is unchanged.
VQ_CLIENT_COMMON_API void FormatRetentionValues(const std::string& in, std::string& out, bool wide);

// Sets `lines` to the text form of a line buffer: CR LF between the lines, none after the last.
// Returns 1; 0, with the lines before the fault in `lines`, for a length of fewer than four bytes
// or a negative one. A length that is no number counts as 0. Raises std::out_of_range "invalid
// string position" when a line is shorter than its length; `lines` then includes that line.
VQ_CLIENT_COMMON_API int ConvertBuffer2Lines(const std::string& buffer, std::string& lines);

// Sets `buffer` to the line buffer of a text. A line of more than `maxLine` bytes becomes several
// records. A last line without a line end loses the blanks at the end of each of its records,
// except for a record of two or more blanks and nothing else. A line end at the end of the text
// gives a last record "0000". A record of 10,000 bytes or more has a longer length, which cannot be
// read back: use a `maxLine` of at most 9999. Returns 1. Raises std::invalid_argument for a
// `maxLine` of 0, unless `lines` is empty.
VQ_CLIENT_COMMON_API int ConvertLines2Buffer(const std::string& lines, std::string& buffer,
                                             unsigned int maxLine);

// Sets `out` to `in` with LF for every CR LF. A CR without LF stays. Returns 1.
VQ_CLIENT_COMMON_API int ConvertWindowsToUnix(const std::string& in, std::string& out);

// Sets `out` to `in` with CR LF for every LF, also for an LF after a CR. Returns 1.
VQ_CLIENT_COMMON_API int ConvertUnixToWindows(const std::string& in, std::string& out);

#endif  // VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H
