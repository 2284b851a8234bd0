// The system configuration: parameters, and whether an operation has to be annotated.
//
// Thread contract: any thread; the ORB calls it from one thread a connection.
#ifndef VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H
#define VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H

#include <string>

#include <simulator/PartOfSystemConfiguration.h>

namespace vq::sim {

class SystemConfigurationServant : public PartOfSystemConfiguration {
 public:
  // `server` is the name under which the simulator stands in the naming service.
  SystemConfigurationServant(World& world, std::string kind, std::string server);

  void CRB_GetSystemParameterValue(const char* section, const char* name, CORBA::String_out value,
                                   const char* userId) override;
  void CRB_GetSystemParametersValues(const stringSeq& sections, const stringSeq& names,
                                     stringSeq_out values, boolSeq_out found,
                                     const char* userId) override;
  CORBA::Boolean CRB_isAnnotationRequired(const char* userId, const char* operation) override;
  CORBA::Long CRB_GetServerContextName(const char* userId, CORBA::String_out name) override;
  ADD_ON_STATUS_ENUM CRB_AddOnInfo(const char* addOn, const char* userId) override;

 private:
  const std::string m_server;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H
