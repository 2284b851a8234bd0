#include <vq_client_common/session/ServerId.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace {

struct ServerKind {
  std::string_view namingKind;
  std::string_view words;
};

constexpr std::array kServerKinds{
    ServerKind{"GSR", "VELTRA-M/VQ Server"},
    ServerKind{"GAS", "VELTRA-M/VQ Global Alert Server"},
    ServerKind{"QIMS", "VELTRA-M/VQ QIM Server"},
    ServerKind{"Forecast", "VELTRA-M/VQ Forecast Server"},
    ServerKind{"CMS", "VELTRA-M/VQ Configuration Manager Server"},
    ServerKind{"SLS", ""},
};

constexpr ServerKind KindOf(SERVER_ID serverId) {
  const auto index = static_cast<std::size_t>(serverId);
  return index < kServerKinds.size() ? kServerKinds[index] : ServerKind{};
}

}  // namespace

std::string GL_ResolveServerID(SERVER_ID serverId) {
  return std::string(KindOf(serverId).namingKind);
}

std::string ServerIDtoString(SERVER_ID serverId) {
  return std::string(KindOf(serverId).words);
}
