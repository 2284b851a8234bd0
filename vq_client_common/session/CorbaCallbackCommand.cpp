#include <vq_client_common/session/CorbaCallbackCommand.h>

CorbaCallbackCommand::~CorbaCallbackCommand() = default;

bool CorbaCallbackCommand::CanBeSkippedDuringChangeFilter() {
  return true;
}
