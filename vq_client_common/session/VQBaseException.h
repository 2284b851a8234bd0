// Exceptions for client programs; the library itself raises none of them.
//
//   try {
//     throw VQBaseException(__FILE__, __LINE__, "The job is locked.", 12, 3, SEVERITY(1), true);
//   } catch (VQBaseException& e) {   // not const: print and handle are no const members
//     e.print();
//   }
#ifndef VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H
#define VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H

#include <string>

#include <support/Export.h>

// The severity of a failure. The client program defines the numbers; any int is a valid value.
enum SEVERITY : int {};

// A failure with its source position, its reason and its numbers. Objects hold copies of all
// strings and may be passed to another thread.
class VQ_CLIENT_COMMON_API VQBaseException {
 public:
  // `file` and `line`: where the exception is raised; a null `file` counts as empty. `reason`: the
  // text for the user. `major` and `minor`: numbers that the client program defines.
  VQBaseException(const char* file, int line, std::string reason, int major, int minor,
                  SEVERITY severity, bool shouldPrint);
  VQBaseException(const VQBaseException&) = default;
  VQBaseException& operator=(const VQBaseException&) = default;
  virtual ~VQBaseException();

  // Logs position and reason at level 4, and writes the reason and a line end to stderr, whatever
  // shouldPrint returns.
  virtual void print();

  // The name by which handlers know the class: "VQBaseException" here.
  virtual std::string getName();

  // Prints, then raises the current exception again. Call it inside a handler; outside of one it
  // only prints.
  virtual void handle();

  // What the constructor was given; the reference is valid as long as the object.
  const std::string& getReason() const { return m_reason; }
  int getMajor() const { return m_major; }
  int getMinor() const { return m_minor; }
  SEVERITY getSeverity() const { return m_severity; }
  int shouldPrint() const { return m_shouldPrint; }  // 1 or 0; for the client program to read

 private:
  std::string m_file;
  int m_line;
  int m_shouldPrint;
  std::string m_reason;
  int m_major;
  int m_minor;
  SEVERITY m_severity;
};

// A VQBaseException with a second, longer text.
//
//   throw VQDetailedMessageException(__FILE__, __LINE__, "The job is locked.", 12, 3, SEVERITY(1),
//                                    true, "Locked by alice since 10:20.");
class VQ_CLIENT_COMMON_API VQDetailedMessageException : public VQBaseException {
 public:
  // As the base class, with a second text that may be empty.
  VQDetailedMessageException(const char* file, int line, std::string reason, int major, int minor,
                             SEVERITY severity, bool shouldPrint, std::string detailedReason = {});
  VQDetailedMessageException(const VQDetailedMessageException&) = default;
  VQDetailedMessageException& operator=(const VQDetailedMessageException&) = default;
  ~VQDetailedMessageException() override;

  // Prints as the base class does, then logs and writes the detailed reason in the same way.
  void print() override;

  // "VQSimpleMessageException": the name that handlers know, which is not the class's own.
  std::string getName() override;

  // The second text; the reference is valid as long as the object.
  const std::string& getDetailedReason() const { return m_detailedReason; }

 private:
  std::string m_detailedReason;
};

#endif  // VQ_CLIENT_COMMON_SESSION_VQBASEEXCEPTION_H
