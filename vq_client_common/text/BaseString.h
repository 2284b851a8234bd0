// The byte string of the suite's client programs.
//
// A BaseString is one std::string with the operations that clients know from an older string class
// laid over it. Most do what their names say. These do not, and clients are built against what they
// do:
//
//   operator+          gives the left operand, unchanged; append with +=
//   operator=(char)    on "abc" gives "a": it sets the length to one and keeps the first byte
//   FindNoCase         says whether, 1 or 0, and not where
//   TrimLeft           keeps CR, which TrimRight removes
//   ReleaseBuffer(-1)  leaves the length alone, whatever zero bytes the text holds
//   Format             keeps 999 bytes
//
// For example:
//
//   BaseString text("  T1/T2\r\n");
//   text.Trim();
//   if (text.Find('/') >= 0) text += "/T3";
//   Show(text.c_str());                        // "T1/T2/T3"
//
// Positions and counts are 32-bit signed. A search gives -1 when nothing is found, or only behind
// the first 2 GB. `const char*` arguments are texts that end at their first zero byte; a null one
// raises std::invalid_argument everywhere. A position that must lie in the text and does not raises
// std::out_of_range "invalid string position", a length that no string can have std::length_error
// "string too long".
#ifndef VQ_CLIENT_COMMON_TEXT_BASESTRING_H
#define VQ_CLIENT_COMMON_TEXT_BASESTRING_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <support/Export.h>

// Thread contract: as a std::string; an object belongs to its caller. Compare, CompareNoCase,
// FindNoCase, MakeUpper and MakeLower follow the process's C locale.
class VQ_CLIENT_COMMON_API BaseString {
 public:
  // Those of the std::string inside.
  using iterator = std::string::iterator;
  using const_iterator = std::string::const_iterator;

  BaseString() = default;
  // The text. Null raises std::invalid_argument, here and wherever a plain text is taken.
  BaseString(const char* text);
  BaseString(const std::string& text) : m_text(text) {}
  BaseString(std::int32_t count, char character);  // a negative count raises std::length_error
  // A text of one byte.
  BaseString(char character) : m_text(1, character) {}

  // Takes over the text.
  BaseString& operator=(const char* text);
  // Sets the length to one. An empty text becomes `character`; any other keeps its first byte.
  BaseString& operator=(char character);

  // Append in place, and return this object.
  BaseString& operator+=(const BaseString& text);
  BaseString& operator+=(const char* text);
  BaseString& operator+=(char character);
  BaseString& append(std::int32_t count, char character);  // negative: std::length_error

  // Each gives the left operand as it was: the joined text is thrown away. Append with +=.
  const BaseString& operator+(const BaseString& right) const;
  const BaseString& operator+(const std::string& right) const;
  const BaseString& operator+(const char* right) const;

  // Compare by Compare or CompareNoLS. Without these lines == and < would compare addresses, by the
  // conversion to const char*.
  bool operator==(const BaseString&) const = delete;
  bool operator==(const char*) const = delete;
  bool operator<=>(const BaseString&) const = delete;
  bool operator<=>(const char*) const = delete;

  // The value itself; the reference lives as long as the object.
  std::string& Std() { return m_text; }
  const std::string& Std() const { return m_text; }

  // The bytes, ended by a zero byte; never null, valid until the text changes.
  const char* c_str() const { return m_text.c_str(); }
  const char* GetString() const { return m_text.c_str(); }
  operator const char*() const { return m_text.c_str(); }

  std::size_t GetLength() const { return m_text.size(); }  // in bytes
  // As GetLength.
  std::size_t length() const { return m_text.size(); }
  // Whether the text has no byte.
  bool IsEmpty() const { return m_text.empty(); }
  bool empty() const { return m_text.empty(); }
  void Empty() { m_text.clear(); }  // makes the text empty; it asks nothing
  // As Empty.
  void clear() { m_text.clear(); }

  // The bytes of the text, valid until the text changes.
  iterator begin() { return m_text.begin(); }
  iterator end() { return m_text.end(); }
  const_iterator begin() const { return m_text.begin(); }
  const_iterator end() const { return m_text.end(); }

  // The byte at `position`, which must be below the length: else std::out_of_range.
  char GetAt(std::int32_t position) const;

  // The byte at `position`, not tested: at the length and anywhere else outside the text it is a
  // zero byte, and writing to that one changes no text. Any integer type is taken as it is, so that
  // no built-in subscript of the const char* competes.
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

  // The first match, from `start` on; -1 when there is none or `start` lies outside the text.
  std::int32_t Find(char character, std::int32_t start = 0) const;
  std::int32_t Find(const char* text, std::int32_t start = 0) const;
  std::int32_t FindOneOf(const char* characters) const;  // the first byte that is one of them
  std::int32_t ReverseFind(char character) const;        // the last match

  // 1 when `text` occurs, both taken in capitals, and 0 when not. Not a position.
  int FindNoCase(const char* text) const;

  // Each gives a negative number, zero or a positive number.
  int Compare(const char* text) const;  // by the collation of the current locale
  int compare(const char* text) const { return Compare(text); }
  int CompareNoCase(const char* text) const;  // both lowered by tolower, then the same
  int CompareNoLS(const char* text) const;    // by unsigned bytes: exactly -1, 0 or 1

  // Makes the length `length`, by cutting or by zero bytes, and gives the bytes to write to. They
  // are valid until the text changes. A negative length raises std::length_error.
  char* GetBufferSetLength(std::int32_t length);
  // -1 changes nothing; any other length is set as by GetBufferSetLength.
  void ReleaseBuffer(std::int32_t length = -1);
  void FreeExtra() {}  // changes neither the value nor the storage

  // Prints as printf does and takes the first 999 bytes, up to the first zero byte. What does not
  // fit is cut without notice. The arguments may point into this text.
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));

  // Replaces each `from`, left to right, going on behind each replacement. Returns how many there
  // were. An empty `from` is never found.
  int Replace(const std::string& from, const std::string& to);

  void TrimRight();  // blank, tab, CR and LF
  void TrimLeft();   // blank, tab and LF
  void Trim();       // TrimLeft, then TrimRight

  // Parts of the text. A `first` beyond the length gives an empty text, a negative one raises
  // std::out_of_range. A count that runs past the end is shortened; a negative one takes all.
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
