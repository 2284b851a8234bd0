// Exceptions for client programs; the library itself raises neither.
//
//   try {
//     throw VQBaseException(__FILE__, __LINE__, "The job is locked.", 12, 3, SEVERITY(1), true);
//   } catch (VQBaseException& e) {   // not const: handle and print change it
//     e.handle();                    // prints it and raises it again
//   }
#ifndef VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H
#define VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H

#include <string>

#include <support/Export.h>

// How grave a failure is. The numbers are the client programs' own: every value of an int is kept.
enum SEVERITY : int {};

// A failure with its place, its reason and its numbers. Thread contract: an object carries its own
// copies of all text and may be passed between threads.
class VQ_CLIENT_COMMON_API VQBaseException {
 public:
  // `file` and `line`: where it was raised; a null `file` counts as empty. `major` and `minor`
  // number the failure as the client program sees fit.
  VQBaseException(const char* file, int line, std::string reason, int major, int minor,
                  SEVERITY severity, bool shouldPrint);
  VQBaseException(const VQBaseException&) = default;
  VQBaseException& operator=(const VQBaseException&) = default;
  virtual ~VQBaseException();

  // Logs place and reason at level 4, and writes the reason to the standard error stream, whatever
  // shouldPrint says.
  virtual void print();

  // The name of the class, for handlers: "VQBaseException" here.
  virtual std::string getName();

  // Prints and raises the exception in hand again. To be called inside a handler only; elsewhere
  // it prints and returns.
  virtual void handle();

  // What the constructor was given; the reference lasts as long as the object.
  const std::string& getReason() const { return m_reason; }
  int getMajor() const { return m_major; }
  int getMinor() const { return m_minor; }
  SEVERITY getSeverity() const { return m_severity; }
  int shouldPrint() const { return m_shouldPrint; }  // for the client to read

 private:
  std::string m_file;
  int m_line;
  int m_shouldPrint;
  std::string m_reason;
  int m_major;
  int m_minor;
  SEVERITY m_severity;
};

#endif  // VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H
