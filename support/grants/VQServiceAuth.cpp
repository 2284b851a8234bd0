#include <support/grants/VQServiceAuth.h>

#include <utility>

#include <support/orb/CorbaConversions.h>

void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants) {
  std::list<VQServiceAuth> converted;
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const QCSCORBAAuthPair2& pair = wire[i];
    VQServiceAuth& grant = converted.emplace_back(
        VQServiceAuth{CorbaString2StlString(pair.Criteria.in()), pair.Level, {}});
    const CORBA::ULong actions = LengthOnTheWire(pair.Actions);
    grant.Actions.reserve(actions);
    for (CORBA::ULong j = 0; j < actions; ++j) {
      grant.Actions.push_back(pair.Actions[j]);
    }
  }
  grants = std::move(converted);
}
