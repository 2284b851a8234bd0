#include <support/configuration/ConfigAPIFactoryXML.h>

#include <support/configuration/ConfigXml.h>

std::unique_ptr<ConfigAPI> ConfigAPIFactoryXML::Create(const std::string& directory,
                                                       const std::string& name) {
  constexpr std::chrono::seconds kWaitForOtherWriters{10};
  return std::make_unique<vq::ConfigXml>(directory, name, kWaitForOtherWriters);
}
