// Makes configuration domains that lie in XML files. ConfigAPI.h tells what they are.
//
//   const auto domain = ConfigAPIFactoryXML::Create("/opt/vq/config/", "vq");  // .../vq.xml
#ifndef VQ_SUPPORT_CONFIGURATION_CONFIGAPIFACTORYXML_H
#define VQ_SUPPORT_CONFIGURATION_CONFIGAPIFACTORYXML_H

#include <memory>
#include <string>

#include <support/configuration/ConfigAPI.h>

// Thread contract: no state; safe on any thread.
class ConfigAPIFactoryXML {
 public:
  // A domain on the file `directory`/`name`.xml; never null. Nothing is read yet. A name that is
  // empty or holds a "/", and a zero byte in either, make Load and Save fail.
  static std::unique_ptr<ConfigAPI> Create(const std::string& directory, const std::string& name);
};

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGAPIFACTORYXML_H
