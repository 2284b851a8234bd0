// The time-out that a client asks for its session, in seconds.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_SESSIONTIMEOUT_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_SESSIONTIMEOUT_H

#include <optional>

namespace vq::session {

// The profile setting [Orb Parameters] RegisterTimeOut as it stands, zero and negatives included.
std::optional<int> ProfileTimeOut();

// What GL_GetCRBRegisterTimeOut returns. May ask the server.
long ConfiguredTimeOut();

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_SESSIONTIMEOUT_H
