// The operations of VQCorbaSystemConfiguration that the simulator does not offer: each is written
// to the log like any other, can be hit by a fault, and answers NO_IMPLEMENT.
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_PARTOFSYSTEMCONFIGURATION_H
#define VQ_SIMULATOR_PARTOFSYSTEMCONFIGURATION_H

#include <simulator/Call.h>
#include <vq_idl/SystemConfigurationC.h>

namespace vq::sim {

class PartOfSystemConfiguration : public POA_VQCorbaSystemConfiguration {
 protected:
  PartOfSystemConfiguration(World& world, std::string kind)
      : m_world(world), m_kind(std::move(kind)) {}

  // A call of an operation of this object.
  [[nodiscard]] Call Begin(const char* operation) {
    return Call(m_world, m_kind, "SystemConfiguration", operation);
  }

  World& m_world;
  const std::string m_kind;

 private:
  [[noreturn]] void NotHere(const char* operation) {
    Begin(operation).Run([] { throw CORBA::NO_IMPLEMENT(); });
    throw CORBA::NO_IMPLEMENT();
  }

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
