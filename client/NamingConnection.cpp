#include "NamingConnection.h"

#include <support/orb/ORBCommon.h>

#include "LogReasons.h"

namespace vqclient {

NamingConnection::NamingConnection(CommandLine& line, int limit) {
  LimitCalls(line, limit);
  ConnectionSettings::Get()->SetClientID(CLIENT_CLI);
  std::vector<char*> arguments = line.OrbArguments();
  LogReasons reasons;
  line.StartClock();
  m_up = GL_InitializeCORBA(static_cast<int>(arguments.size()), arguments.data());
  if (!m_up) m_error = reasons.Take();
}

NamingConnection::~NamingConnection() {
  ORBCommon<1>::Get()->DestroyOrb(true);
}

void LimitCalls(CommandLine& line, int limit) {
  for (const vq::Setting& setting : line.Report()) {
    const bool isLimit = setting.name == "-ORBConnectTimeout" || setting.name == "-ORBCallTimeout";
    if (!isLimit || setting.origin != "built in") continue;
    line.orb.push_back(setting.name);
    line.orb.push_back(std::to_string(limit));
  }
}

std::string FailureOf(const CORBA::Exception& exception) {
  return exception._name();
}

}  // namespace vqclient
