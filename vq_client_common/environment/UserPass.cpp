#include <vq_client_common/environment/UserPass.h>

#include <algorithm>
#include <utility>

#include <support/diagnostics/ConsoleInput.h>
#include <support/diagnostics/PasswordFile.h>
#include <support/diagnostics/TDiag.h>

namespace {

TDiagRegister diagModule("UserPass");

struct Status {
  UserPass::eStatus status;
  const char* text;
  bool isCorrectable;
};
// Every status that an object can have.
constexpr Status kStatuses[] = {
    {UserPass::STAT_NOT_INITIALIZED, "Missing Login Parameters.", false},
    {UserPass::STAT_MISSING_ALL, "Missing Login Parameters.", true},
    {UserPass::STAT_MISSING_PASSWORD, "Missing password", true},
    {UserPass::STAT_MISSING_USERNAME, "Missing username", true},
    {UserPass::STAT_OK, "Status Ok. Have Username and password", false},
    {UserPass::STAT_PASSWORD_FILE, "Missing or corrupted password file.", false},
    {UserPass::STAT_CONFLICT_USER_AND_FILE, "Conflict, Have a Username and password file", false},
    {UserPass::STAT_CONFLICT_PASSWORD_AND_FILE, "Conflict, Have a Password and password file",
     false},
    {UserPass::STAT_CONFLICT_ALL, "Conflict, Have too many parameters", false},
    {UserPass::STAT_NO_DEFAULT_FILE, "Missing default password file", true},
    {UserPass::STAT_FILE_NOT_FOUND, "Password file does not exist", false},
    {UserPass::STAT_BAD_FILE_FORMAT, "Wrong password file format", false},
};

}  // namespace

UserPass::UserPass(const std::string& user, const std::string& password,
                   const std::string& passFile)
    : m_user(user), m_password(password), m_passFile(passFile) {}

UserPass& UserPass::operator=(const UserPass& other) {
  if (this == &other) return *this;
  m_user = other.m_user;
  SetPassword(other.m_password);
  m_passFile = other.m_passFile;
  m_status = other.m_status;
  return *this;
}

UserPass::~UserPass() {
  vq::Wipe(m_password);
}

const char* UserPass::GetStatStr() const {
  return std::ranges::find(kStatuses, m_status, &Status::status)->text;
}

bool UserPass::isCorrectable() const {
  return std::ranges::find(kStatuses, m_status, &Status::status)->isCorrectable;
}

void UserPass::SetUsername(std::string user) {
  m_user = std::move(user);
}

void UserPass::SetPassword(std::string password) {
  m_password.swap(password);
  vq::Wipe(password);
}

void UserPass::SetPassFile(std::string passFile) {
  m_passFile = std::move(passFile);
}

UserPass::eStatus UserPass::GetInitialStatus(bool ignoreFile) const {
  int sum = 0;
  if (!m_user.empty()) sum += 1;
  if (!m_password.empty()) sum += 2;
  if (!m_passFile.empty() && !ignoreFile) sum += 4;
  return static_cast<eStatus>(sum);
}

bool UserPass::Init() {
  const TDiagFunc diag(diagModule, "UserPass::Init");
  m_status = GetInitialStatus(false);
  bool result = false;
  switch (m_status) {
    case STAT_MISSING_ALL:
    case STAT_MISSING_PASSWORD:
    case STAT_MISSING_USERNAME:
      VQ_LOG(diag, 4) << "No/Missing parameters supplied for Username/Password, get from console";
      result = GetConsoleMissData();
      break;
    case STAT_OK:
      VQ_LOG(diag, 5) << "Have Username and Password";
      return true;
    case STAT_PASSWORD_FILE:
      VQ_LOG(diag, 5) << "Have password file name, trying to get contents.";
      result = GetFromFile();
      break;
    default:
      break;
  }
  if (!result) {
    VQ_LOG(diag, 1) << "Username/Password Conflict/Error: " << GetStatStr();
  }
  return result;
}

bool UserPass::GetFromFile() {
  const TDiagFunc diag(diagModule, "UserPass::GetFromFile");
  if (getUsrAndPasswdFromFile(m_passFile, m_user, m_password) == 0) {
    VQ_LOG(diag, 1) << "Error receiving Username and Password from file.";
    return false;
  }
  m_status = GetInitialStatus(true);
  return m_status == STAT_OK;
}

bool UserPass::GetConsoleMissData() {
  const TDiagFunc diag(diagModule, "UserPass::GetLine");
  bool isFailed = m_user.empty() && getUserFromStdin(m_user) == 0;
  if (!isFailed && m_password.empty()) isFailed = getPasswdFromStdin(m_password) == 0;
  // Intentional: the same text for both; readers of logs search for it.
  if (isFailed) VQ_LOG(diag, 1) << "Error receiving Username.";
  m_status = GetInitialStatus(true);
  return !isFailed && m_status == STAT_OK;
}

namespace vq {
namespace {

std::string Complete(UserPass found, std::string& user, SecretString& password) {
  if (!found.Init()) {
    const std::string file = found.GetPassFile();
    const std::string refusal = file.empty() ? "" : WhyPasswordFileIsRefused(file);
    if (refusal.empty()) return found.GetStatStr();
    return std::string(found.GetStatStr()) + "\nPassword file " + file + " refused: " + refusal;
  }
  user = found.GetUsername();
  password = SecretString(found.GetPassword());
  return {};
}

}  // namespace

CredentialSource AskForPassword() {
  return [](std::string& user, SecretString& password) {
    return Complete(UserPass(user, "", ""), user, password);
  };
}

CredentialSource ReadPasswordFile(const std::string& path) {
  return [path](std::string& user, SecretString& password) {
    return Complete(UserPass("", "", path), user, password);
  };
}

}  // namespace vq
