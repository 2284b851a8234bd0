// The system configuration: parameters, and whether an operation has to be annotated.
#ifndef VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H
#define VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H

#include <string>

#include <simulator/Servant.h>
#include <vq_idl/SystemConfigurationS.h>

namespace vq::sim {

class SystemConfigurationServant : public Servant<POA_VQCorbaSystemConfiguration> {
 public:
  // `server` is the simulator's name in the naming service.
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
  VQ_NOT_OFFERED(void, CRB_GetArchiveParams, const char*, ArchiveParams_out)
  VQ_NOT_OFFERED(void, CRB_SetArchiveParams, const char*, const ArchiveParams&)
  VQ_NOT_OFFERED(void, CRB_GetXAlertParams, const char*, CORBA::String_out, CORBA::String_out)
  VQ_NOT_OFFERED(void, CRB_GetDBConnectionParams, const char*, DBConnectionParams_out)
  VQ_NOT_OFFERED(void, CRB_GetDBConnectionParamsEx, const char*, const char*,
                 DBConnectionParams_out)
  VQ_NOT_OFFERED(void, CRB_GetTimezonesFile, const char*, stringSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetLDAPDomainNames, stringSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetWebServerParams, const char*, CrbWebSrvConnectorSeq_out,
                 CrbWebSrvApplicationDataSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_CreateAuditOperation, const char*, const char*,
                 const CrbAttributeSeq&, const QCSCorbaAttrHolder&)

  const std::string m_server;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SYSTEMCONFIGURATIONSERVANT_H
