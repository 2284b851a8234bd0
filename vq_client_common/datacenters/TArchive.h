// Stores values in a stream one after the other, or loads them from it.
//
// Terms. A *record* is one stored value: the length of its text plus one in decimal digits, ";",
// the text enciphered by StupidEncrypt, and 0x0A. The record of an empty string is "1;" and 0x0A. A
// stream has no header and no names, so a reader must know the order of the values. The *decrypt
// type* defines how values are read. The cipher hides a string from a casual reader and protects
// nothing.
//
//   std::stringstream stream;
//   {
//     TArchive out(&stream, 0, 0, nullptr);   // stores
//     out << std::string("PROD1") << 8004 << true;
//   }
//   TArchive in(&stream, 1, 0, nullptr);   // loads
//   std::string name;
//   int port = 0;
//   bool enabled = false;
//   in >> name >> port >> enabled;
//
// Some values differ after they are loaded. Existing archives depend on this: a double or a float
// becomes the digits before its decimal point, so 1234.5, which is stored in exponent form, becomes
// 1; a long becomes its low 32 bits.
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TARCHIVE_H
#define VQ_CLIENT_COMMON_DATACENTERS_TARCHIVE_H

#include <cstdint>
#include <iosfwd>
#include <string>

#include <support/Export.h>

// The failure of an archive. Does not derive from std::exception. An archive raises it with the
// code 0 and without a message.
class VQ_CLIENT_COMMON_API TArchiveException {
 public:
  // Copies `message`; null counts as an empty string.
  TArchiveException(int code, const char* message)
      : m_code(code), m_message(message != nullptr ? message : "") {}
  TArchiveException(const TArchiveException&) = default;
  TArchiveException& operator=(const TArchiveException&) = default;
  virtual ~TArchiveException() = default;

  // What the constructor was given; the reference is valid as long as the object.
  std::int32_t GetCode() const { return m_code; }
  const std::string& GetMessage() const { return m_message; }

 private:
  std::int32_t m_code;
  std::string m_message;
};

// An archive over a stream of the caller, which either stores or loads.
//
// Every operator raises TArchiveException when the stream is not good afterwards, and after Close
// or Abort. Nothing is undone: written bytes stay, and the target of a failed load may have a part
// of a value. A stream that is set to raise exceptions raises its own from any operation except the
// destructor.
class VQ_CLIENT_COMMON_API TArchive {
 public:
  // Decrypt types. Any other number reads strings and numbers from records without deciphering.
  enum : std::int32_t {
    kRecordsAsTheyStand = 1,  // strings: records without deciphering; numbers: plain extraction
    kLines = 2,               // one enciphered line of at most 512 bytes for each value
    kRecords = 3              // enciphered records; the default
  };

  // The caller owns `stream`, which must be valid until Close, Abort or the destructor. A `mode` of
  // 0 stores, any other loads. The last two arguments are not used.
  TArchive(std::iostream* stream, unsigned int mode, int, void*);
  ~TArchive();  // calls Close, then Abort; raises nothing
  TArchive(const TArchive&) = delete;
  TArchive& operator=(const TArchive&) = delete;

  // Whether the archive loads or stores.
  bool IsLoading() const { return m_loading; }
  bool IsStoring() const { return !m_loading; }

  // A number for the caller, which the archive does not use; 0 until set.
  std::uint32_t GetObjectSchema() const { return m_objectSchema; }
  void SetObjectSchema(std::uint32_t schema) { m_objectSchema = schema; }
  // The decrypt type; kRecords until set.
  std::int32_t GetDecryptType() const { return m_decryptType; }
  void SetDecryptType(std::int32_t type) { m_decryptType = type; }

  // Whether values are enciphered; true until set. Leave it on: a stream that was written without
  // the cipher cannot be read back, not with kRecordsAsTheyStand either. A string is written as its
  // length and as many zero bytes, so its text is lost. A number is written in the stream's own
  // format: a char comes back as the first digit of its number, a negative int fails, since it was
  // written without its sign, and a double has the digits of the stream's precision.
  bool GetEncrptFlag() const { return m_encrypt; }
  void SetEncrptFlag(bool encrypt) { m_encrypt = encrypt; }

  void Close();   // flushes the stream and releases it; a second call does nothing
  void Abort();   // releases the stream without flushing it
  void Ignore();  // loading: skips one character of the stream; storing: does nothing

  // Each stores one value and returns this archive. A bool is stored as 1 or 0, a char as a number.
  TArchive& operator<<(const std::string& value);
  TArchive& operator<<(bool value);
  TArchive& operator<<(char value);
  TArchive& operator<<(unsigned char value);
  TArchive& operator<<(short value);
  TArchive& operator<<(unsigned short value);
  TArchive& operator<<(int value);
  TArchive& operator<<(unsigned int value);
  TArchive& operator<<(long value);  // its low 32 bits, without sign: -1 as 4294967295
  TArchive& operator<<(unsigned long value);
  TArchive& operator<<(float value);
  TArchive& operator<<(double value);
  TArchive& operator<<(const char*) = delete;  // would be taken as a bool

  // Each loads one value and returns this archive. The text of a number in a record has at most 50
  // bytes. An integer that does not fit the target is reduced to its low bits; a string that is no
  // number is 0.
  TArchive& operator>>(std::string& value);
  TArchive& operator>>(bool& value);
  TArchive& operator>>(char& value);
  TArchive& operator>>(unsigned char& value);
  TArchive& operator>>(short& value);
  TArchive& operator>>(unsigned short& value);
  TArchive& operator>>(int& value);
  TArchive& operator>>(unsigned int& value);
  TArchive& operator>>(long& value);
  TArchive& operator>>(unsigned long& value);
  TArchive& operator>>(float& value);
  TArchive& operator>>(double& value);  // with kLines it skips a line, and `value` is unchanged

 private:
  [[noreturn]] static void Fail();
  static void RequireGood(const std::iostream& stream);
  std::iostream& Stream() const;
  template <typename T>
  TArchive& WritePlain(T value);
  template <typename T>
  TArchive& ExtractPlain(T& value);
  template <typename T>
  TArchive& LoadInteger(T& value);
  std::string ReadLine();
  std::string ReadCipheredLine();
  unsigned long ReadUnsignedLong();

  std::string m_name;  // reserved
  bool m_loading;
  std::iostream* m_stream;  // not owned; null after Close or Abort
  std::uint32_t m_objectSchema = 0;
  std::int32_t m_decryptType = kRecords;
  bool m_encrypt = true;
};

// Loads `value` when the archive loads, stores it otherwise.
VQ_CLIENT_COMMON_API void SerializeElement(TArchive& archive, std::string& value);

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TARCHIVE_H
