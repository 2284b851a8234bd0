#include <simulator/SystemConfigurationServant.h>

#include <utility>

#include <simulator/Wire.h>

namespace vq::sim {

SystemConfigurationServant::SystemConfigurationServant(World& world, std::string kind,
                                                       std::string server)
    : PartOfSystemConfiguration(world, std::move(kind)), m_server(std::move(server)) {}

void SystemConfigurationServant::CRB_GetSystemParameterValue(const char* section, const char* name,
                                                             CORBA::String_out value,
                                                             const char* userId) {
  Call call = Begin("CRB_GetSystemParameterValue");
  call.Argument("section", section).Argument("name", name).Argument("userId", userId);
  std::string text;
  call.Run([&] {
    const auto site = m_world.GetSite();
    // Before a login there is no user id, and parameters are told all the same.
    if (*userId != '\0') UserOf(m_world, userId);
    const Parameter* parameter = site->FindParameter(section, name);
    if (parameter == nullptr) throw VQCorbaSystemConfiguration::PARAMETER_NOT_FOUND();
    if (parameter->userNotFound) throw USER_NOT_FOUND(parameter->userNotFound->c_str(), "");
    if (parameter->fail) throw VQCorbaSystemConfiguration::FAIL(*parameter->fail);
    text = parameter->value;
    call.Note("value", text);
  });
  value = Dup(text);
}

void SystemConfigurationServant::CRB_GetSystemParametersValues(const stringSeq& sections,
                                                               const stringSeq& names,
                                                               stringSeq_out values,
                                                               boolSeq_out found,
                                                               const char* userId) {
  Call call = Begin("CRB_GetSystemParametersValues");
  call.Argument("sections", ToJson(sections))
      .Argument("names", ToJson(names))
      .Argument("userId", userId);
  stringSeq_var texts = new stringSeq;
  boolSeq_var flags = new boolSeq;
  call.Run([&] {
    const auto site = m_world.GetSite();
    if (*userId != '\0') UserOf(m_world, userId);
    if (sections.length() != names.length()) throw CORBA::BAD_PARAM();
    texts->length(names.length());
    flags->length(names.length());
    for (CORBA::ULong i = 0; i < names.length(); ++i) {
      const Parameter* parameter = site->FindParameter(sections[i].in(), names[i].in());
      flags[i] = parameter != nullptr && !parameter->fail && !parameter->userNotFound;
      texts[i] = flags[i] ? parameter->value.c_str() : "";
    }
  });
  values = texts._retn();
  found = flags._retn();
}

CORBA::Boolean SystemConfigurationServant::CRB_isAnnotationRequired(const char* userId,
                                                                    const char* operation) {
  Call call = Begin("CRB_isAnnotationRequired");
  call.Argument("userId", userId).Argument("operation", operation);
  return call.Run([&]() -> CORBA::Boolean {
    UserOf(m_world, userId);
    return m_world.GetSite()->annotationRequired.contains(operation);
  });
}

CORBA::Long SystemConfigurationServant::CRB_GetServerContextName(const char* userId,
                                                                 CORBA::String_out name) {
  Call call = Begin("CRB_GetServerContextName");
  call.Argument("userId", userId);
  std::string text = m_server;
  const CORBA::Long result = call.Run([]() -> CORBA::Long { return 1; }, &text);
  name = Dup(text);
  return result;
}

ADD_ON_STATUS_ENUM SystemConfigurationServant::CRB_AddOnInfo(const char* addOn,
                                                             const char* userId) {
  Call call = Begin("CRB_AddOnInfo");
  call.Argument("addOn", addOn).Argument("userId", userId);
  return call.Run([&] {
    UserOf(m_world, userId);
    return ADD_ON_STATUS_UNKNOWN;
  });
}

}  // namespace vq::sim
