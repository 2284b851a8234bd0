#include "NamingConnection.h"

#include <support/orb/ORBCommon.h>

#include "ExitCodes.h"

namespace vqclient {

NamingConnection::NamingConnection(CommandLine& line, int limit, int exitCode) {
  for (const vq::Setting& setting : line.Report()) {
    const bool isLimit = setting.name == "-ORBConnectTimeout" || setting.name == "-ORBCallTimeout";
    if (!isLimit || setting.origin != "built in") continue;
    line.orb.push_back(setting.name);
    line.orb.push_back(std::to_string(limit));
  }
  ConnectionSettings::Get()->SetClientID(CLIENT_CLI);
  std::vector<char*> arguments = line.OrbArguments();
  line.StartClock();
  if (!GL_InitializeCORBA(static_cast<int>(arguments.size()), arguments.data())) {
    throw Failure(exitCode, "The naming service is not reached.\nCause: " + GL_GetFailureCause());
  }
}

NamingConnection::~NamingConnection() {
  ORBCommon<1>::Get()->DestroyOrb(true);
}

std::string InWords(const CORBA::Exception& exception) {
  const std::string_view name = exception._name();
  if (name == "TIMEOUT") return "no answer in time";
  if (name == "TRANSIENT" || name == "COMM_FAILURE") return "no connection";
  return std::string(name);
}

std::string CauseOf(const CORBA::Exception& exception) {
  const std::string cause = GL_GetFailureCause();
  return cause.empty() ? InWords(exception) : cause;
}

}  // namespace vqclient
