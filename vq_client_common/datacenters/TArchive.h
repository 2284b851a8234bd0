// Stores values in a stream, or loads them from it, one after the other.
//
// Terms. A *record* is one stored value: the decimal digits of its text's length plus one, ";", the
// text disguised by StupidEncrypt, and 0x0A. An empty text is "1;" and 0x0A. A stream has no header
// and no names, so a reader must know the order of the values. The *decrypt type* says how values
// are read; the disguise hides a text from a casual look and protects nothing.
//
//   std::stringstream stream;
//   {
//     TArchive out(&stream, 0, 0, nullptr);     // stores
//     out << std::string("PROD1") << 8004 << true;
//   }
//   TArchive in(&stream, 1, 0, nullptr);        // loads
//   std::string name; int port; bool enabled;
//   in >> name >> port >> enabled;
//
// What comes back differs from what was stored in these cases, and archives in the field are read
// so: a double or float comes back as the digits before its decimal point, 1234.5 as 1, because it
// is stored in exponent form; a long keeps its low 32 bits.
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TARCHIVE_H
#define VQ_CLIENT_COMMON_DATACENTERS_TARCHIVE_H

#include <cstdint>
#include <iosfwd>
#include <string>

#include <support/Export.h>

// The failure of an archive. Does not derive from std::exception: catch it by its own name. An
// archive itself knows one failure only, code 0 without a message.
class VQ_CLIENT_COMMON_API TArchiveException {
 public:
  // Copies `message`; null counts as an empty text.
  TArchiveException(int code, const char* message)
      : m_code(code), m_message(message != nullptr ? message : "") {}
  TArchiveException(const TArchiveException&) = default;
  TArchiveException& operator=(const TArchiveException&) = default;
  virtual ~TArchiveException() = default;

  // What the constructor was given; the reference lasts as long as the object.
  std::int32_t GetCode() const { return m_code; }
  const std::string& GetMessage() const { return m_message; }

 private:
  std::int32_t m_code;
  std::string m_message;
};

// Every operator raises TArchiveException when the stream is not good afterwards, and when there is
// no stream any more. Nothing is rolled back: what was written stays, and the target of a failed
// load may hold a part of a value. A stream that is set to raise exceptions raises its own instead,
// out of every operation but the destructor.
class VQ_CLIENT_COMMON_API TArchive {
 public:
  // Decrypt types. Any other number reads strings and numbers from records, not deciphered.
  enum : std::int32_t {
    kRecordsAsTheyStand = 1,  // strings: records, not deciphered; numbers: plain extraction
    kLines = 2,               // one line of at most 512 bytes a value, deciphered
    kRecords = 3              // records, deciphered; the default
  };

  // Works on `stream`, which stays the caller's and must outlive the archive or its Close or Abort.
  // A `mode` of 0 stores, any other loads. The last two arguments are not read.
  TArchive(std::iostream* stream, unsigned int mode, int, void*);
  ~TArchive();  // Close, then Abort; raises nothing
  TArchive(const TArchive&) = delete;
  TArchive& operator=(const TArchive&) = delete;

  // Which of the two the constructor was told.
  bool IsLoading() const { return m_loading; }
  bool IsStoring() const { return !m_loading; }

  std::uint32_t GetObjectSchema() const { return m_objectSchema; }  // the caller's; not read here
  // Stores a number for the caller.
  void SetObjectSchema(std::uint32_t schema) { m_objectSchema = schema; }
  // How values are read: a decrypt type of the above. kRecords until set.
  std::int32_t GetDecryptType() const { return m_decryptType; }
  void SetDecryptType(std::int32_t type) { m_decryptType = type; }

  // With the flag off, numbers are written by the stream's own formatting and 0x0A. A string then
  // still gets its length, and as many zero bytes: a plain form of it does not exist.
  bool GetEncrptFlag() const { return m_encrypt; }
  void SetEncrptFlag(bool encrypt) { m_encrypt = encrypt; }

  void Close();   // flushes the stream and lets go of it; a second time does nothing
  void Abort();   // lets go of the stream without flushing it
  void Ignore();  // loading: skips one character of the stream; storing: does nothing

  // Store one value and return this archive. A flag is stored as 1 or 0, a character as its number.
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

  // A number from a record has at most 50 bytes of text. Integers keep the low bits of what does
  // not fit them; a text that is no number reads as 0.
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
  TArchive& operator>>(double& value);  // decrypt type kLines reads a line and leaves `value` alone

 private:
  [[noreturn]] static void Fail();
  static void RequireGood(const std::iostream& stream);
  std::iostream& Stream() const;
  void WriteRecord(const std::string& text);
  template <typename T>
  void WritePlain(T value);
  template <typename T>
  void ExtractPlain(T& value);
  template <typename T>
  void LoadInteger(T& value);
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
