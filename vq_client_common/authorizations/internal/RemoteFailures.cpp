#include <vq_client_common/authorizations/internal/RemoteFailures.h>

#include <support/orb/CorbaText.h>
#include <support/orb/FailedCall.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::authorizations {

int RunLoad(const TDiagFunc& diag, const std::function<int()>& load) {
  try {
    return load();
  } catch (const USER_NOT_FOUND& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotFound Exception - " << e.Message.in();
    return kFailure;
  } catch (const USER_NOT_AUTHORIZED& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotAuthorized Exception - " << e.Message.in();
    return kNotAuthorized;
  } catch (const QCSCorbaUsersManager::INVALID_ACTION_NAME&) {
    VQ_LOG(diag, 1) << "CRB_GetActionAuthLevel Failed with INVALID_ACTION_NAME exception";
    return kSuccess;  // Counts as success, and that is meant: the login goes on.
  } catch (const CORBA::SystemException& e) {
    orb::NoteFailedCall(e, CORBA::Object::_nil());
    VQ_LOG(diag, 1) << "CORBA Exception " << e;
    return kSystemException;
  }
}

int RunQuery(const TDiagFunc& diag, const std::function<int()>& query) {
  try {
    return query();
  } catch (const USER_NOT_AUTHORIZED& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotAuthorized Exception - " << e.Message.in();
  } catch (const CORBA::Exception& e) {
    // The message announces a reconnection that does not happen; whoever reads logs knows it so.
    VQ_LOG(diag, 1) << "Caught CORBA exception, Trying to reconnect..." << e;
  }
  return kFailure;
}

}  // namespace vq::authorizations
