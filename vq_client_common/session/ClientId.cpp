#include <vq_client_common/session/ClientId.h>

#include <vq_client_common/session/internal/ClientTable.h>

std::string ClientIDtoString(CLIENT_ID clientId) {
  return std::string(vq::session::ClientKindOf(clientId).words);
}
