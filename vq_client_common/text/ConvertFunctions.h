// Job fields between the screen and the server.
//
// The server keeps job fields in fixed forms, and job text of several lines in a *line buffer*:
// records without a separator, each four decimal digits, zero-filled, with the length of the line
// in bytes, and then the line. An empty line is the record "0000". The *text form* of the same has
// lines that end in CR LF.
//
//   std::string out;
//   FormatExecTime("+5%", out);                       // "+005%"
//   ConvertLines2Buffer("abc\r\n", out, 80);          // "0003abc0000"
//   ConvertBuffer2Lines("0003abc0000", out);          // "abc\r\n", returns 1
//
// Numbers are read as by atoi: up to the first character that belongs to none, and 0 when there is
// none. A number that fits no int counts as the nearest int.
//
// Every function is linear in the length of its input, fails of itself only where it says so, and
// takes an output that is the same object as its input.
//
// Thread contract: every function may be called from any thread, with arguments that no other
// thread changes.
#ifndef VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H
#define VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H

#include <string>

#include <support/Export.h>

// An execution time: a sign, which is the first character whenever that is no digit; the number
// with at least three digits; "%" when `in` ends in it. "5" gives "005", "+" gives "+000". Empty
// stays empty.
VQ_CLIENT_COMMON_API void FormatExecTime(const std::string& in, std::string& out);

// An interval: the number with at least five digits, 0 unless it is 0 to 99999, and its unit. The
// unit is the last character when that is D, H, d or h, in capitals, and M otherwise. "10h" gives
// "00010H". Empty gives "00001M".
VQ_CLIENT_COMMON_API void FormatInterval(const std::string& in, std::string& out);

// A shift: a sign and the number in at least two characters. "3" gives "+03"; a negative number
// shows its own sign as well: "-3" gives "--3". Empty stays empty.
VQ_CLIENT_COMMON_API void FormatShiftNum(const std::string& in, std::string& out);

// A retention: a number of digits only gets at least two of them, three when `wide`; any other text
// is taken as it is. With an empty `in`, `out` keeps what it held.
VQ_CLIENT_COMMON_API void FormatRetentionValues(const std::string& in, std::string& out, bool wide);

// Sets `lines` to the text form of a line buffer: CR LF between the lines, none behind the last.
// Returns 1, or 0 when a prefix has fewer than four bytes or is negative; a prefix that is no
// number counts as 0. `lines` holds what came before then. A record that claims more bytes than
// follow raises std::out_of_range "invalid string position" once those bytes are in `lines`.
VQ_CLIENT_COMMON_API int ConvertBuffer2Lines(const std::string& buffer, std::string& lines);

// Sets `buffer` to the line buffer of a text. Lines longer than `maxLine` bytes become several
// records. The last line, when it has no line end, is trimmed of blanks at the right, each of its
// records by itself; a record of nothing but two or more blanks stays. A closing line end gives a
// closing "0000". Lines of 10,000 bytes and more get longer prefixes, which cannot be read back.
// Always returns 1. Raises std::invalid_argument for a `maxLine` of 0, unless `lines` is empty.
VQ_CLIENT_COMMON_API int ConvertLines2Buffer(const std::string& lines, std::string& buffer,
                                             unsigned int maxLine);

// Sets `out` to `in` with LF for every CR LF. A lone CR stays. Always returns 1.
VQ_CLIENT_COMMON_API int ConvertWindowsToUnix(const std::string& in, std::string& out);

// Sets `out` to `in` with CR LF for every LF, also for one that has a CR before it already. Always
// returns 1.
VQ_CLIENT_COMMON_API int ConvertUnixToWindows(const std::string& in, std::string& out);

#endif  // VQ_CLIENT_COMMON_TEXT_CONVERTFUNCTIONS_H
