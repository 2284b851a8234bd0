#include <support/configuration/ConfigAPIFactoryXML.h>

#include <support/configuration/ConfigXml.h>
#include <support/foundations/Locations.h>

namespace {
constexpr std::chrono::seconds kWaitForOtherWriters{10};
}

std::unique_ptr<ConfigAPI> ConfigAPIFactoryXML::Create(const std::string& directory,
                                                       const std::string& name) {
  return std::make_unique<vq::ConfigXml>(directory, name, kWaitForOtherWriters);
}

std::unique_ptr<ConfigAPI> ConfigAPIFactoryXML::CreateInForce() {
  const std::string directory = GetConfigDomainsDir();
  const std::string host = vq::GetConfigDomainsDirs().back();
  return std::make_unique<vq::ConfigXml>(directory, GetConfigDomainName(), kWaitForOtherWriters,
                                         host == directory ? "" : host);
}
