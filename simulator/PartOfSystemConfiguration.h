// The operations of VQCorbaSystemConfiguration that the simulator does not offer: each is written
// to the log like any other, can be hit by a fault, and answers NO_IMPLEMENT.
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_PARTOFSYSTEMCONFIGURATION_H
#define VQ_SIMULATOR_PARTOFSYSTEMCONFIGURATION_H

#include <simulator/Servant.h>
#include <vq_idl/SystemConfigurationS.h>

namespace vq::sim {

class PartOfSystemConfiguration : public Servant<POA_VQCorbaSystemConfiguration> {
 protected:
  PartOfSystemConfiguration(World& world, std::string kind)
      : Servant(world, std::move(kind), "SystemConfiguration") {}

 private:
  void CRB_GetArchiveParams(const char*, ArchiveParams_out) override {
    NotHere("CRB_GetArchiveParams");
  }
  void CRB_SetArchiveParams(const char*, const ArchiveParams&) override {
    NotHere("CRB_SetArchiveParams");
  }
  void CRB_GetXAlertParams(const char*, CORBA::String_out, CORBA::String_out) override {
    NotHere("CRB_GetXAlertParams");
  }
  void CRB_GetDBConnectionParams(const char*, DBConnectionParams_out) override {
    NotHere("CRB_GetDBConnectionParams");
  }
  void CRB_GetDBConnectionParamsEx(const char*, const char*, DBConnectionParams_out) override {
    NotHere("CRB_GetDBConnectionParamsEx");
  }
  void CRB_GetTimezonesFile(const char*, stringSeq_out) override {
    NotHere("CRB_GetTimezonesFile");
  }
  CORBA::Long CRB_GetLDAPDomainNames(stringSeq_out) override { NotHere("CRB_GetLDAPDomainNames"); }
  CORBA::Long CRB_GetWebServerParams(const char*, CrbWebSrvConnectorSeq_out,
                                     CrbWebSrvApplicationDataSeq_out) override {
    NotHere("CRB_GetWebServerParams");
  }
  CORBA::Long CRB_CreateAuditOperation(const char*, const char*, const CrbAttributeSeq&,
                                       const QCSCorbaAttrHolder&) override {
    NotHere("CRB_CreateAuditOperation");
  }
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_PARTOFSYSTEMCONFIGURATION_H
