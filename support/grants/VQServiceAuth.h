// One grant on services: a level of access and the numbers of the actions that are allowed, over
// the services that a criteria text selects (docs/selection-language.md).
//
//   std::list<VQServiceAuth> own{{"NAME LIKE 'PAY*'", UPDATE_ACCESS, {3, 7}}};
//   VQServiceUserAuth services(std::move(own));
#ifndef VQ_SUPPORT_GRANTS_VQSERVICEAUTH_H
#define VQ_SUPPORT_GRANTS_VQSERVICEAUTH_H

#include <list>
#include <string>
#include <vector>

#include <support/orb/Corba.h>
#include <vq_idl/AuthorizationC.h>

// One grant on services. Thread contract: a plain value.
struct VQServiceAuth {
  std::string Criteria;                     // which services, in the selection language
  QCSAuthLevelEnum Level = DEFAULT_ACCESS;  // the access it grants
  std::vector<int> Actions;                 // as the server sent them
};

// Turns a wire list into the list, which takes its place: what `grants` held before is gone. For
// the library itself: it is not exported, and programs fill the list by hand.
void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants);

#endif  // VQ_SUPPORT_GRANTS_VQSERVICEAUTH_H
