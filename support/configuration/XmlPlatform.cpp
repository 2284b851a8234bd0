#include <support/configuration/XmlPlatform.h>

#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace vq {

namespace {

std::mutex& Mutex() {
  // Never destroyed: the last stop may come from the destructor of another static object.
  static std::mutex& mutex = *new std::mutex;
  return mutex;
}

}  // namespace

void StartXml() {
  const std::lock_guard lock(Mutex());
  xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale);
}

void StopXml() {
  const std::lock_guard lock(Mutex());
  xercesc::XMLPlatformUtils::Terminate();
}

}  // namespace vq
