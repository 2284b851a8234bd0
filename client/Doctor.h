// Finds out why a connection or a callback fails, step by step, and says what to do next.
#ifndef VQ_CLIENT_DOCTOR_H
#define VQ_CLIENT_DOCTOR_H

#include <string>
#include <vector>

#include "ClientSession.h"
#include "CommandLine.h"

namespace vqclient {

// One step's outcome.
struct Finding {
  std::string step;  // "naming service"
  bool good = false;
  std::string detail;  // what was found
  std::string advice;  // what to do next; empty when good
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

  // Writes what was found to the configuration domain. False when that fails.
  bool WriteWay() const;

 private:
  bool ExamineSettings();
  bool ExamineNamingService();
  bool ExamineRegistration();
  bool ExamineAddress();
  bool ExamineServer();
  int ExamineLogin();
  int ExamineCallbacks();
  bool TryCallback(const std::string& address, bool biDirectional);

  bool Report(Finding finding);  // returns whether it is good
  std::string TakeReasons();     // what the log said at level 1 since the last call

  CommandLine& m_line;
  std::vector<Finding> m_findings;
  std::string m_reasons;
  TDiag::SinkId m_sink = 0;
  ClientSession m_session;
  bool m_foundWay = false;
  std::string m_address;
  bool m_biDirectional = false;
};

}  // namespace vqclient

#endif  // VQ_CLIENT_DOCTOR_H
