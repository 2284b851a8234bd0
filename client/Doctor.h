// Finds out why a connection or a callback fails, step by step, and says what to do next.
#ifndef VQ_CLIENT_DOCTOR_H
#define VQ_CLIENT_DOCTOR_H

#include <string>
#include <string_view>
#include <vector>

#include <support/orb/ReferenceAddress.h>

#include "ClientSession.h"
#include "CommandLine.h"
#include "LogReasons.h"

namespace vqclient {

enum class Status { kGood, kNote, kBad };

// One step's outcome.
struct Finding {
  std::string step;  // "naming service"
  Status status = Status::kGood;
  std::string detail;  // what was found
  std::string advice;  // what to do next; for kBad alone
};

// Thread contract: one thread.
class Doctor {
 public:
  explicit Doctor(CommandLine& line);
  ~Doctor();
  Doctor(const Doctor&) = delete;
  Doctor& operator=(const Doctor&) = delete;

  // Goes through the steps and prints each finding; stops where a later step could only repeat the
  // failure. Returns the exit code of the first thing that is wrong, 0 when nothing is.
  int Examine();

  // After Examine: an address and a direction of connection by which the server called back.
  bool FoundWay() const { return m_foundWay; }
  std::string Way() const;

  // Stores the way that was found, and the ORB's settings that this run had from its command line
  // or environment, and reads them back. Why that failed; empty when it did not.
  std::string Store();

 private:
  bool ExamineSettings();
  bool ExamineNamingService();
  bool ExamineRegistration();
  bool ExamineAddresses();
  bool ExamineServer();
  int ExamineLogin();
  int ExamineCallbacks();
  bool TryCallback(const std::string& address, bool biDirectional);

  bool Report(const Finding& finding);  // returns whether it is not bad
  bool Bad(const std::string& step, const std::string& detail, const std::string& advice);
  bool Good(const std::string& step, const std::string& detail);

  // Where the naming service is told to be; empty when that is in no form that names a host.
  std::pair<std::string, std::string> NamingAddress() const;

  CommandLine& m_line;
  LogReasons m_reasons;
  ClientSession m_session;
  std::vector<std::pair<std::string, std::string>> m_needed;  // settings to store, by name
  std::string m_namingReference;
  bool m_tls = false;
  bool m_foundWay = false;
  std::string m_address;
  bool m_biDirectional = false;
};

}  // namespace vqclient

#endif  // VQ_CLIENT_DOCTOR_H
