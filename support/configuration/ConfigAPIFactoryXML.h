// Makes configuration domains that lie in XML files. ConfigAPI.h tells what they are.
//
//   const auto file = ConfigAPIFactoryXML::Create("/opt/vq/config/", "vq");  // .../vq.xml alone
//   const auto domain = ConfigAPIFactoryXML::CreateInForce();               // in all its layers
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

  // The domain that the environment names (GetConfigDomainsDir, GetConfigDomainName). Reads show
  // the file there over those of the weaker layers: a value of any scope of a stronger layer that
  // applies hides those of the weaker ones, so that its "default" comes before their other scopes.
  // A save writes the one file. What a weaker layer has cannot be removed, only be set otherwise.
  static std::unique_ptr<ConfigAPI> CreateInForce();
};

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGAPIFACTORYXML_H
