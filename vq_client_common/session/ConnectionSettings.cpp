#include <vq_client_common/session/ConnectionSettings.h>

#include <array>
#include <cstddef>
#include <string_view>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Digest.h>
#include <support/security/ChallengeResponse.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/text/FieldLength.h>

namespace {

TDiagRegister diagModule("ConnectionSettings");

// The names of a client program.
struct ClientKind {
  std::string_view registerName;  // sent in CRB_Register
  std::string_view orbName;       // the ORB is named after it
  std::string_view words;         // shown to the user
  bool pureClient;                // how the ORB starts
};

// Intentional: servers know the spelling "Unkown_Client".
constexpr std::array kClientKinds{
    ClientKind{"vq_gui", "GUI", "VELTRA-M/VQ GUI", false},
    ClientKind{"vq_desktop", "Desktop", "VELTRA-M/Desktop", false},
    ClientKind{"vq_xmlutil", "XmlUtil", "XML Utility", true},
    ClientKind{"vq_cli", "CLI", "VELTRA-M/VQ CLI", false},
    ClientKind{"vq_report", "Report", "Reporting Facility", true},
    ClientKind{"vq_qimc", "QIMC", "VELTRA-M/VQ QIM Client", false},
    ClientKind{"vq_vcm", "VCM", "VELTRA-M/VQ Configuration Manager", true},
    ClientKind{"vq_sweep", "Sweep", "Sweep Utility", false},
    ClientKind{"vq_vcmcli", "VCM_CLI", "VELTRA-M/VQ Configuration Manager CLI", true},
    ClientKind{"open_viewpoint_simulator", "OpenVPSim", "VELTRA-M/VQ Service Impact Manager",
               false},
    ClientKind{"Unkown_Client", "RCI", "VELTRA-M/VQ Remote Client Interface", true},
    ClientKind{"Unkown_Client", "", "Unknown Client", true},
};

// For a value outside the table: its last row without the name for users.
constexpr ClientKind kBeyondTheTable{"Unkown_Client", "", "", true};

constexpr ClientKind ClientKindOf(CLIENT_ID clientId) {
  const auto index = static_cast<std::size_t>(clientId);
  return index < kClientKinds.size() ? kClientKinds[index] : kBeyondTheTable;
}

// The names of a kind of server.
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

constexpr ServerKind ServerKindOf(SERVER_ID serverId) {
  const auto index = static_cast<std::size_t>(serverId);
  return index < kServerKinds.size() ? kServerKinds[index] : ServerKind{};
}

}  // namespace

ConnectionSettings* ConnectionSettings::Get() {
  return vq::session::SessionSettings();
}

ConnectionSettings::~ConnectionSettings() {
  vq::Wipe(m_password);
  vq::Wipe(m_encodedPassword);
}

bool ConnectionSettings::isPureClient() const {
  return ClientKindOf(m_clientId).pureClient;
}

void ConnectionSettings::SetServerName(const std::string& serverName) {
  m_serverName = serverName;
  VQ_LOG(diagModule, 4) << "Changed Server name to: " << m_serverName;
}

void ConnectionSettings::SetUserName(const std::string& userName) {
  m_userName = userName;
  VQ_LOG(diagModule, 4) << "Changed User name to: " << m_userName;
}

void ConnectionSettings::SetDBUserName(const std::string& dbUserName) {
  m_dbUserName = dbUserName;
  VQ_LOG(diagModule, 4) << "Changed DB User name to: " << m_dbUserName;
}

void ConnectionSettings::SetUserID(const std::string& userId) {
  m_userId = userId;
  if (!diagModule.IsActive(4)) return;
  char digest[65] = "DD";
  CalcMD5(m_userId.data(), m_userId.size(), 0, digest + 2);
  VQ_LOG(diagModule, 4) << "Changed User Id to: " << digest;
}

void ConnectionSettings::SetPassword(const std::string& password) {
  // A client that logs in again usually has the same password, and both forms are stored.
  if (password == m_password && !m_encodedPassword.empty()) return;
  // Both forms exist before one is replaced, so a failure leaves the old password.
  vq::SecretString plain(password);
  vq::SecretString encoded(EncodePassword(password));
  vq::Wipe(m_password);
  vq::Wipe(m_encodedPassword);
  m_password.swap(plain.Text());
  m_encodedPassword.swap(encoded.Text());
  // Intentional: the length of the encoded form is tested, so no password is too long.
  if (m_encodedPassword.size() > static_cast<std::size_t>(GetFieldLength(QCS_FIELD_4, false))) {
    VQ_LOG(diagModule, 2) << "password is too long";
  }
}

std::string ConnectionSettings::GetPassword(eEncodingType encoding) const {
  const bool encoded =
      encoding == ENC_ENCODED || (encoding == ENC_AS_CONFIGURED && m_encodePassword);
  return encoded ? EncodePassword(m_password) : m_password;
}

std::string ConnectionSettings::EncodePassword(const std::string& password) {
  vq::SecretString checksum;
  ChkSum(password, checksum.Text());
  return checksum.Text().substr(0, 8);
}

void ConnectionSettings::LoadEncodePassword(SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "ConnectionSettings::LoadEncodePassword");
  std::string value;
  if (GetSystemParameter("PasswordEncode", value, "general", serverId)) {
    m_encodePassword = value != "0";
  }
}

std::string ConnectionSettings::GetClientID4CRBRegister() const {
  return std::string(ClientKindOf(m_clientId).registerName);
}

std::string ConnectionSettings::ResolveClientID(CLIENT_ID clientId) {
  return std::string(ClientKindOf(clientId).orbName);
}

std::string ClientIDtoString(CLIENT_ID clientId) {
  return std::string(ClientKindOf(clientId).words);
}

std::string GL_ResolveServerID(SERVER_ID serverId) {
  return std::string(ServerKindOf(serverId).namingKind);
}

std::string ServerIDtoString(SERVER_ID serverId) {
  return std::string(ServerKindOf(serverId).words);
}
