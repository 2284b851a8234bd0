#include <support/orb/VQServiceAuth.h>

void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants) {
  std::list<VQServiceAuth> converted;
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const QCSCORBAAuthPair2& pair = wire[i];
    const char* criteria = pair.Criteria;
    VQServiceAuth& grant = converted.emplace_back(VQServiceAuth{criteria, pair.Level, {}});
    grant.Actions.reserve(pair.Actions.length());
    for (CORBA::ULong j = 0; j < pair.Actions.length(); ++j) {
      grant.Actions.push_back(pair.Actions[j]);
    }
  }
  grants = std::move(converted);
}
