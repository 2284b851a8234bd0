// The open sessions, by user id. A session ends when it was not kept alive for its time-out; a
// time-out of 0 is none.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_SESSIONS_H
#define VQ_SIMULATOR_SESSIONS_H

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <simulator/Clock.h>

namespace vq::sim {

class Sessions {
 public:
  // One session of List.
  struct Info {
    std::string userId;
    std::string user;
    std::chrono::seconds timeOut;
  };

  explicit Sessions(const Clock& clock) : m_clock(clock) {}

  // Opens a session under this id; one that is open under it already is replaced. False when there
  // are too many.
  bool Open(const std::string& userId, const std::string& user, std::chrono::seconds timeOut);
  // The name of the session's user; nothing when there is no such session.
  std::optional<std::string> UserOf(const std::string& userId);
  // Starts the session's time anew. False when there is no such session.
  bool KeepAlive(const std::string& userId);
  // KeepAlive with another time-out from now on.
  bool ResetTimeOut(const std::string& userId, std::chrono::seconds timeOut);
  // False when there was no such session.
  bool Close(const std::string& userId);
  void CloseAll();
  // All sessions that are open, by user id.
  std::vector<Info> List();

 private:
  struct Session {
    std::string user;
    std::chrono::seconds timeOut;
    Clock::Time lastSign;
  };
  // The session under that id that has not timed out; null without one. The lock is held.
  Session* Find(const std::string& userId);
  void DropTimedOut();
  [[nodiscard]] bool TimedOut(const Session& session) const;

  const Clock& m_clock;
  std::mutex m_mutex;
  std::map<std::string, Session> m_sessions;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SESSIONS_H
