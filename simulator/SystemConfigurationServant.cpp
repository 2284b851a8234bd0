#include <simulator/SystemConfigurationServant.h>

#include <utility>

#include <simulator/Wire.h>

namespace vq::sim {

SystemConfigurationServant::SystemConfigurationServant(World& world, std::string kind,
                                                       std::string server)
    : Servant(world, std::move(kind), "SystemConfiguration"), m_server(std::move(server)) {}

void SystemConfigurationServant::CRB_GetSystemParameterValue(const char* section, const char* name,
                                                             CORBA::String_out value,
                                                             const char* userId) {
  Call call = Begin("CRB_GetSystemParameterValue",
                    {{"section", section}, {"name", name}, {"userId", userId}});
  std::string text;
  call.Run([&] {
    const auto site = m_world.GetSite();
    // Parameters are readable before a login, when there is no user id.
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
  stringSeq_var texts = new stringSeq;
  boolSeq_var flags = new boolSeq;
  Serve("CRB_GetSystemParametersValues",
        {{"sections", ToJson(sections)}, {"names", ToJson(names)}, {"userId", userId}}, [&] {
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
  return Serve("CRB_isAnnotationRequired", {{"userId", userId}, {"operation", operation}}, [&] {
    UserOf(m_world, userId);
    return m_world.GetSite()->annotationRequired.contains(operation);
  });
}

CORBA::Long SystemConfigurationServant::CRB_GetServerContextName(const char* userId,
                                                                 CORBA::String_out name) {
  std::string text = m_server;
  const int result = Serve(
      "CRB_GetServerContextName", {{"userId", userId}}, [] { return 1; }, &text);
  name = Dup(text);
  return result;
}

ADD_ON_STATUS_ENUM SystemConfigurationServant::CRB_AddOnInfo(const char* addOn,
                                                             const char* userId) {
  return Serve("CRB_AddOnInfo", {{"addOn", addOn}, {"userId", userId}}, [&] {
    UserOf(m_world, userId);
    return ADD_ON_STATUS_UNKNOWN;
  });
}

}  // namespace vq::sim
