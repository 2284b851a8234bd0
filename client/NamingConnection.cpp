#include <client/NamingConnection.h>

#include <algorithm>
#include <chrono>

#include <client/ExitCodes.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>

namespace vqclient {

NamingConnection::NamingConnection(CommandLine& line, int limit, int exitCode) {
  for (const vq::Setting& setting : line.Report()) {
    const bool isLimit =
        setting.name == vq::orb::kConnectTimeout || setting.name == vq::orb::kCallTimeout;
    if (limit == 0 || !isLimit || setting.origin != "built in") continue;
    line.orb.push_back(setting.name);
    line.orb.push_back(std::to_string(limit));
  }
  ConnectionSettings::Get()->SetClientID(CLIENT_CLI);
  std::vector<char*> arguments = line.OrbArguments();
  line.StartClock();
  if (!GL_InitializeCORBA(static_cast<int>(arguments.size()), arguments.data())) {
    throw Failure(exitCode,
                  WithCause("The naming service cannot be reached.", GL_GetFailureCause()));
  }
}

NamingConnection::~NamingConnection() {
  ORBCommon<1>::Get()->DestroyOrb(true);
}

std::vector<CosNaming::Name> NamingConnection::Servers() const {
  std::vector<CosNaming::Name> names;
  for (const CosNaming::Binding& binding : ListContext(ORBCommon<1>::Get()->GetNamingRoot())) {
    const bool isServer =
        binding.binding_type == CosNaming::ncontext && binding.binding_name.length() == 1;
    if (isServer) names.push_back(binding.binding_name);
  }
  return names;
}

std::string NamingConnection::OnlyServer(SERVER_ID kind, std::string& reason) const {
  constexpr std::size_t kMostNames = 5;
  const std::string kindName = GL_ResolveServerID(kind);
  std::vector<std::string> found;
  for (const CosNaming::Name& name : Servers()) {
    if (name[0].kind.in() == kindName) found.emplace_back(name[0].id.in());
  }
  if (found.size() == 1) return found.front();
  const std::string count = found.empty() ? "no server" : "several servers";
  reason = "the naming service knows " + count + " of kind " + kindName;
  for (std::size_t i = 0; i < std::min(found.size(), kMostNames); ++i) {
    reason += (i == 0 ? ": " : ", ") + found[i];
  }
  if (found.size() > kMostNames) reason += ", ...";
  return "";
}

std::vector<CosNaming::Binding> ListContext(CosNaming::NamingContext_ptr context) {
  constexpr CORBA::ULong kAtOnce = 500;
  constexpr std::size_t kMost = 100'000;
  const vq::CallDeadline deadline(std::chrono::minutes(1));  // also for many small parts
  CosNaming::BindingList_var list;
  CosNaming::BindingIterator_var more;
  context->list(kAtOnce, list.out(), more.out());
  std::vector<CosNaming::Binding> all;
  for (bool isMore = true; isMore;) {
    if (all.size() > kMost) throw Failure(kRefused, "The naming service does not end its list.");
    for (CORBA::ULong i = 0; i < list->length(); ++i) all.push_back(list[i]);
    isMore = !CORBA::is_nil(more.in()) && more->next_n(kAtOnce, list.out()) && list->length() > 0;
  }
  if (!CORBA::is_nil(more.in())) more->destroy();
  return all;
}

std::string CauseOf(const CORBA::Exception& exception) {
  if (const std::string cause = GL_GetFailureCause(); !cause.empty()) return cause;
  const std::string_view name = exception._name();
  if (name == "TIMEOUT") return "no answer in time";
  if (name == "TRANSIENT" || name == "COMM_FAILURE") return "no connection";
  return std::string(name);
}

}  // namespace vqclient
