#include <support/orb/VQServiceAuth.h>

#include <utility>

#include <support/orb/CorbaConversions.h>

void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants) {
  std::list<VQServiceAuth> converted;
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const QCSCORBAAuthPair2& pair = wire[i];
    VQServiceAuth& grant = converted.emplace_back(
        VQServiceAuth{CorbaString2StlString(pair.Criteria.in()), pair.Level, {}});
    grant.Actions.reserve(pair.Actions.length());
    for (CORBA::ULong j = 0; j < pair.Actions.length(); ++j) {
      grant.Actions.push_back(pair.Actions[j]);
    }
  }
  grants = std::move(converted);
}
