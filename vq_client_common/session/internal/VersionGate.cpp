#include <vq_client_common/session/internal/VersionGate.h>

#include <locale.h>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <string_view>

#include <sys/stat.h>

#include <support/foundations/Locations.h>
#include <support/foundations/ProductVersion.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>
#include <vq_client_common/session/LoginExceptions.h>

namespace vq::session {
namespace {

TDiagRegister diagModule("VersionGate");

constexpr int kVersionRefusedByServer = 56;
constexpr int kClientTakesNoPart = 20;
constexpr int kFileDoesNotOpen = 19;

constexpr std::array<std::string_view, 5> kServerKeys{"E_GSR", "E_GAS", "E_QIMS", "E_FORECAST",
                                                      "E_CMS"};

// Whether the first token of a line of min-accepted-servers.txt selects the server kind, by its key
// or by its number. Intentional: a token without a number is the number 0, so every other key
// selects kind 0, too; files in use depend on it.
bool SelectsServer(const std::string& token, SERVER_ID serverId) {
  const auto index = static_cast<std::size_t>(serverId);
  if (index >= kServerKeys.size()) return false;
  return token == kServerKeys[index] || Atoi(token) == static_cast<int>(index);
}

// Reads a number with a decimal point, whatever the process's locale is.
double Number(const std::string& text) {
  static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text.c_str(), nullptr, kPlain);
}

// The refusal of a server that does not accept this client.
std::string RefusedByServerText(const std::string& serverKind, const ConnectionSettings& settings,
                                const std::string& clientVersion,
                                const std::string& serverVersion) {
  // Intentional: five values for six places, so the text names the server kind in place of the
  // client, and the last "%s" stays; users know it in this form.
  std::string text = Filled(
      "Connection refused by %s: '%s'.\nVersion %s of %s is not compatible with a %s of "
      "version %s.",
      {serverKind, settings.GetServerName(), clientVersion});
  ReplaceFirst(text, "%d", std::to_string(static_cast<int>(settings.GetClientID())));
  return Filled(text, {serverKind, serverVersion});
}

// The refusal of a client that does not accept this server.
std::string RefusedByClientText(const std::string& serverKind, const ConnectionSettings& settings,
                                const std::string& clientVersion,
                                const std::string& serverVersion) {
  return Filled(
      "Version %s of %s is not compatible with a %s of version %s.",
      {clientVersion, ClientIDtoString(settings.GetClientID()), serverKind, serverVersion});
}

}  // namespace

int ParseVersion(const std::string& version, std::string& major, std::string& minor) {
  const TDiagFunc diag(diagModule, "LoginHandler::ParseVersion");
  const std::size_t first = version.find('.');
  if (first == std::string::npos) {
    VQ_LOG(diag, 1) << "Invalid value found for version: " << version;
    return 0;
  }
  // Intentional: without a second point both parts are the whole text; the comparison of versions
  // such as "8.0" depends on that.
  const std::size_t second = version.find('.', first + 1);
  const std::string whole = version;  // the outputs may be the same object as the input
  major = whole.substr(0, second);
  minor = whole.substr(second == std::string::npos ? 0 : second + 1);
  return 1;
}

int ParseVersion(const std::string& version, double& major, double& minor) {
  std::string majorText;
  std::string minorText;
  const int result = ParseVersion(version, majorText, minorText);
  if (result != 1) return result;
  major = Number(majorText);
  minor = Number(minorText);
  return 1;
}

int ClientVersion(CLIENT_ID clientId, std::string& plain, std::string& withPatches) {
  const TDiagFunc diag(diagModule, "LoginHandler::GetClientVersion");
  if (clientId == CLIENT_QIMC || clientId == CLIENT_UNKNOWN) return kClientTakesNoPart;

  std::string version = "0";
  std::list<std::string> patches;
  const int result = GetProductVersion("NFT", version, patches);
  plain = version;
  VQ_LOG(diag, 5) << "Client Version: " << plain;
  std::string_view separator = "::";
  for (const std::string& patch : patches) {
    version.append(separator).append(patch);
    separator = ",";
  }
  withPatches = version;
  VQ_LOG(diag, 5) << "Client Version (Including Patches): " << withPatches;
  return result;
}

int MinimumServerVersion(SERVER_ID serverId, std::string& version) {
  const TDiagFunc diag(diagModule, "LoginHandler::GetMinimumServerVersionAllowed");
  const std::string path = GetVQRootLocation() + "min-accepted-servers.txt";
  struct stat found {};  // Most sites have none, which takes less time than to open it.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      ::stat(path.c_str(), &found) == 0 ? std::fopen(path.c_str(), "re") : nullptr,
      std::fclose);  // e: not for child processes
  if (file == nullptr) {
    VQ_LOG(diag, 4) << "Accepted: Couldn't open file " << path << ": " << std::strerror(errno);
    return kFileDoesNotOpen;
  }
  VQ_LOG(diag, 4) << "Minimum Server versions file exists.";

  // A line of more than 255 characters is read in pieces, each as a line of its own. The line end
  // stays in the last token, where numbers end.
  char line[256];
  while (std::fgets(line, sizeof line, file.get()) != nullptr) {
    VQ_LOG(diag, 5) << line;
    os_tokenizer tokens(line, "\t ");
    if (tokens.size() < 2) {
      VQ_LOG(diag, 2) << "Warning: line skipped - contains only " << tokens.size() << " elements.";
      continue;
    }
    if (SelectsServer(tokens[0], serverId)) version = tokens[1];
  }
  if (std::ferror(file.get()) != 0) {
    VQ_LOG(diag, 1) << "Error occured while reading file " << path << ": " << std::strerror(errno);
    return 0;
  }
  return 1;
}

bool IsServerVersionPermitted(const std::string& clientVersion, SERVER_ID serverId,
                              const std::string& serverVersion) {
  const TDiagFunc diag(diagModule, "LoginHandler::IsServerVersionPermitted");
  std::string minimum = clientVersion;
  if (MinimumServerVersion(serverId, minimum) != 1) minimum = clientVersion;
  if (minimum.empty() || serverVersion.empty()) return true;

  double serverMajor = 0;
  double serverMinor = 0;
  double minimumMajor = 0;
  double minimumMinor = 0;
  if (ParseVersion(serverVersion, serverMajor, serverMinor) != 1 ||
      ParseVersion(minimum, minimumMajor, minimumMinor) != 1) {
    return true;
  }
  // Intentional: the major versions must be equal, so a newer major version is refused.
  return serverMajor == minimumMajor && minimumMinor <= serverMinor;
}

bool PassVersionGate(QCSCorbaUsersManager_ptr users, const std::string& clientVersion,
                     const ConnectionSettings& settings, SERVER_ID serverId, const TDiagFunc& diag,
                     std::string& message) {
  const std::string serverKind = ServerIDtoString(serverId);
  try {
    CORBA::String_var answer;
    const CORBA::Long result =
        users->CRB_VerifyClientServerVersion(clientVersion.c_str(), answer.out());
    const std::string serverVersion = answer.in();

    if (result == kVersionRefusedByServer) {
      message = RefusedByServerText(serverKind, settings, clientVersion, serverVersion);
      orb::NoteCause(
          "the server refuses the version of this client; install the client of the server's "
          "version");
      VQ_LOG(diag, 1) << message;
      return false;
    }
    VQ_LOG(diag, 5) << "Server Version: " << serverVersion;
    if (result == 1 && !serverVersion.empty() && serverVersion != "0") {
      if (IsServerVersionPermitted(clientVersion, serverId, serverVersion)) {
        VQ_LOG(diag, 4) << "server version is allowed by client";
        return true;
      }
      message = RefusedByClientText(serverKind, settings, clientVersion, serverVersion);
      orb::NoteCause(
          "this client refuses the version of the server; install the client of the server's "
          "version, or accept that version in min-accepted-servers.txt");
      VQ_LOG(diag, 1) << message;
      return false;
    }
    // A server that does not know its version is accepted.
    VQ_LOG(diag, 2) << "Version Verification failed with return code: " << result;
    VQ_LOG(diag, 2) << "Continue with login process...";
    return true;
  } catch (const CORBA::Exception& e) {
    orb::NoteFailedCall(e, users);
    // Intentional: the line says that the check is ignored, and yet the login fails.
    VQ_LOG(diag, 1) << "CORBA::Exception was caught during versions verification (" << e
                    << "). Probably old Server version, verification is ignored";
    throw ServerTypeEx("");
  }
}

}  // namespace vq::session
