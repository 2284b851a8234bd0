// Questions to whatever holds grants.
#ifndef VQ_TESTS_SUPPORT_GRANTS_ASKING_H
#define VQ_TESTS_SUPPORT_GRANTS_ASKING_H

#include <string>

#include <support/selection/QCSObject.h>
#include <vq_idl/SharedTypesC.h>

namespace vq::test {

inline QCSObject Named(const std::string& name) {
  QCSObject object;
  object.SetAttribute("NAME", name);
  return object;
}

// The highest level to which the answer is yes, as to all below it; -1 when there is none.
template <class Ask>
int Highest(Ask ask) {
  int level = DEFAULT_ACCESS;
  while (level <= MAX_ACCESS && ask(static_cast<QCSAuthLevelEnum>(level))) ++level;
  return level - 1;
}

}  // namespace vq::test

#endif  // VQ_TESTS_SUPPORT_GRANTS_ASKING_H
