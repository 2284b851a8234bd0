#include <vq_client_common/session/internal/Collaborators.h>

#include <support/orb/ORBCommon.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>

namespace vq::session {

bool TestSessionCallback() {
  std::string error;
  long roundTripMs = 0;
  return TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, roundTripMs, 0);
}

}  // namespace vq::session
