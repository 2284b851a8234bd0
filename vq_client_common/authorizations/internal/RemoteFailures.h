// The one place that turns what a server raises into the results of UserAuthorizations, with the
// lines that the log gets.
#ifndef VQ_CLIENT_COMMON_AUTHORIZATIONS_INTERNAL_REMOTEFAILURES_H
#define VQ_CLIENT_COMMON_AUTHORIZATIONS_INTERNAL_REMOTEFAILURES_H

#include <functional>

#include <support/diagnostics/TDiag.h>
#include <vq_client_common/session/LoginResult.h>

namespace vq::authorizations {

inline constexpr int kSuccess = CodeOf(LoginResult::kSuccess);
inline constexpr int kFailure = CodeOf(LoginResult::kFailed);
inline constexpr int kNotAuthorized = CodeOf(LoginResult::kNotAuthorized);
inline constexpr int kSystemException = 23;

// Runs the load and returns its result, or the one that belongs to what it raised. What is neither
// in the table of the results nor a CORBA system exception passes through.
int RunLoad(const TDiagFunc& diag, const std::function<int()>& load);

// Runs the query and returns its result, or kFailure when it raised any CORBA exception.
int RunQuery(const TDiagFunc& diag, const std::function<int()>& query);

}  // namespace vq::authorizations

#endif  // VQ_CLIENT_COMMON_AUTHORIZATIONS_INTERNAL_REMOTEFAILURES_H
