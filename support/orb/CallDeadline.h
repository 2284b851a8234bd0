// One deadline for several remote calls, such as those of a whole login.
//
//   vq::CallDeadline deadline(std::chrono::seconds(5));
//   std::string message;
//   const int code = GL_Login(user, password, "central", 600, message, CLIENT_GUI, E_GSR, argc,
//                             argv);
//
// Every remote call that the thread makes inside the scope ends by then at the latest: the
// remaining time replaces a longer -ORBCallTimeout. A call that begins after the deadline is not
// sent. Both fail like any call that timed out, with the codes that each function documents.
#ifndef VQ_SUPPORT_ORB_CALLDEADLINE_H
#define VQ_SUPPORT_ORB_CALLDEADLINE_H

#include <chrono>
#include <optional>

#include <support/Export.h>

namespace vq {

// Limits the calls of the thread that made the object, until the same thread destroys it. Scopes
// nest: the earliest deadline applies. Work between the calls is not interrupted, and neither is a
// look-up of a host name, for which the system has its own limit.
class VQ_CLIENT_COMMON_API CallDeadline {
 public:
  using Clock = std::chrono::steady_clock;  // setting the system's time does not move it

  // From now on; zero and less mean that nothing is sent.
  explicit CallDeadline(Clock::duration limit);
  explicit CallDeadline(Clock::time_point end);  // the same, from an instant
  ~CallDeadline();
  CallDeadline(const CallDeadline&) = delete;
  CallDeadline& operator=(const CallDeadline&) = delete;

  // The deadline that applies to the calling thread; nothing outside of every scope.
  static std::optional<Clock::time_point> Current();

 private:
  const std::optional<Clock::time_point> m_outer;
};

}  // namespace vq

#endif  // VQ_SUPPORT_ORB_CALLDEADLINE_H
