// The byte string of the suite's client programs: a std::string with the operations of an older
// string class.
//
// Client programs depend on the behaviour of these operations, which differs from their names:
//
//   operator+          returns the left operand, unchanged; append with +=
//   operator=(char)    sets the length to one and keeps the first byte: "abc" becomes "a"
//   FindNoCase         returns 1 or 0, not a position
//   TrimLeft           keeps CR, which TrimRight removes
//   ReleaseBuffer(-1)  does not change the length, not even at a zero byte
//   Format             keeps 999 bytes
//
//   BaseString text("  T1/T2\r\n");
//   text.Trim();
//   if (text.Find('/') >= 0) text += "/T3";
//   Show(text.c_str());   // "T1/T2/T3"
//
// Positions and counts are signed 32-bit numbers. A search returns -1 when nothing is found in the
// first 2 GB. A `const char*` argument ends at its first zero byte; null raises
// std::invalid_argument. A position outside the text raises std::out_of_range "invalid string
// position", unless a comment says otherwise; an impossible length raises std::length_error "string
// too long".
#ifndef VQ_CLIENT_COMMON_TEXT_BASESTRING_H
#define VQ_CLIENT_COMMON_TEXT_BASESTRING_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <support/Export.h>

// A string of bytes. Compare, CompareNoCase, FindNoCase, MakeUpper and MakeLower depend on the
// process's C locale.
class VQ_CLIENT_COMMON_API BaseString {
 public:
  // The iterators of a std::string.
  using iterator = std::string::iterator;
  using const_iterator = std::string::const_iterator;

  BaseString() = default;
  // A copy of the text.
  BaseString(const char* text);
  BaseString(const std::string& text) : m_text(text) {}
  BaseString(std::int32_t count, char character);  // a negative count raises std::length_error
  // A string of one byte.
  BaseString(char character) : m_text(1, character) {}

  // Copies the text.
  BaseString& operator=(const char* text);
  // Sets the length to one. An empty text becomes `character`; any other text keeps its first byte.
  BaseString& operator=(char character);

  // Each appends and returns this object.
  BaseString& operator+=(const BaseString& text);
  BaseString& operator+=(const char* text);
  BaseString& operator+=(char character);
  BaseString& append(std::int32_t count, char character);  // negative: std::length_error

  // Each returns the left operand, unchanged: nothing is joined. Append with +=.
  const BaseString& operator+(const BaseString& right) const;
  const BaseString& operator+(const std::string& right) const;
  const BaseString& operator+(const char* right) const;

  // Use Compare or CompareNoLS. Without these lines, == and < would compare addresses, because of
  // the conversion to const char*.
  bool operator==(const BaseString&) const = delete;
  bool operator==(const char*) const = delete;
  bool operator<=>(const BaseString&) const = delete;
  bool operator<=>(const char*) const = delete;

  // The std::string itself; the reference is valid as long as the object.
  std::string& Std() { return m_text; }
  const std::string& Std() const { return m_text; }

  // The bytes, followed by a zero byte; never null, valid until the text changes.
  const char* c_str() const { return m_text.c_str(); }
  const char* GetString() const { return m_text.c_str(); }
  operator const char*() const { return m_text.c_str(); }

  // The length in bytes.
  std::size_t GetLength() const { return m_text.size(); }
  std::size_t length() const { return m_text.size(); }
  // Whether the text is empty.
  bool IsEmpty() const { return m_text.empty(); }
  bool empty() const { return m_text.empty(); }
  // Make the text empty.
  void Empty() { m_text.clear(); }
  void clear() { m_text.clear(); }

  // Iterators over the bytes, valid until the text changes.
  iterator begin() { return m_text.begin(); }
  iterator end() { return m_text.end(); }
  const_iterator begin() const { return m_text.begin(); }
  const_iterator end() const { return m_text.end(); }

  // The byte at `position`, which must be below the length.
  char GetAt(std::int32_t position) const;

  // The byte at `position`. Outside the text it is a zero byte; to write to that byte changes no
  // text. Raises nothing. A template, since the subscript of the const char* would compete
  // otherwise.
  template <std::integral T>
  char& operator[](T position) {
    return Holds(position) ? m_text[static_cast<std::size_t>(position)] : Outside();
  }
  template <std::integral T>
  const char& operator[](T position) const {
    return Holds(position) ? m_text[static_cast<std::size_t>(position)] : Outside();
  }

  void MakeUpper();  // each byte by toupper
  void MakeLower();  // each byte by tolower

  // The position of the first match from `start` on; -1 without one, or for a `start` outside the
  // text.
  std::int32_t Find(char character, std::int32_t start = 0) const;
  std::int32_t Find(const char* text, std::int32_t start = 0) const;
  std::int32_t FindOneOf(const char* characters) const;  // the first byte that is one of these
  std::int32_t ReverseFind(char character) const;        // the last match

  // 1 when the text contains `text`, without regard to case; 0 otherwise.
  int FindNoCase(const char* text) const;

  // Each returns a negative number, zero or a positive number.
  int Compare(const char* text) const;  // by the collation of the current locale
  int compare(const char* text) const { return Compare(text); }
  int CompareNoCase(const char* text) const;  // by collation, after tolower of every byte
  int CompareNoLS(const char* text) const;    // by unsigned bytes: exactly -1, 0 or 1

  // Sets the length, by cutting or by appending zero bytes. Returns the bytes for writing, valid
  // until the text changes. A negative length raises std::length_error.
  char* GetBufferSetLength(std::int32_t length);
  // Sets the length as GetBufferSetLength does; -1 changes nothing.
  void ReleaseBuffer(std::int32_t length = -1);
  // Does nothing.
  void FreeExtra() {}

  // Sets the text to at most 999 bytes of what printf would print, up to the first zero byte; the
  // rest is cut without an error. The arguments may point into this text.
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));

  // Replaces every `from` by `to`, from left to right. Replaced text is not searched again. Returns
  // the number of replacements; an empty `from` is never found.
  int Replace(const std::string& from, const std::string& to);

  void TrimRight();  // blank, tab, CR and LF
  void TrimLeft();   // blank, tab and LF
  void Trim();       // TrimLeft, then TrimRight

  // Copies of parts of the text. A `first` after the end gives an empty text, a negative one raises
  // std::out_of_range. A count past the end is reduced; a negative count means all bytes.
  BaseString Mid(std::int32_t first) const { return Mid(first, -1); }
  BaseString Mid(std::int32_t first, std::int32_t count) const;
  BaseString Left(std::int32_t count) const;
  BaseString Right(std::int32_t count) const;

 private:
  template <std::integral T>
  bool Holds(T position) const {
    return std::cmp_greater_equal(position, 0) && std::cmp_less(position, m_text.size());
  }
  static char& Outside();

  std::string m_text;
};

#endif  // VQ_CLIENT_COMMON_TEXT_BASESTRING_H
