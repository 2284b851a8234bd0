#include <vq_client_common/session/Session.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include <signal.h>
#include <unistd.h>

#include <support/orb/CallDeadline.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/environment/UserPass.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/CorbaServerPackManager.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq {
namespace {

// Takes off what belongs to a message but not to a line of text.
std::string Trimmed(const std::string& text) {
  return text.substr(0, text.find_last_not_of("\t\n ") + 1);
}

CredentialSource FromUserPass(std::string file) {
  return [file = std::move(file)](std::string& user, SecretString& password) -> std::string {
    UserPass found(file.empty() ? user : "", "", file);
    if (!found.Init()) return found.GetStatStr();
    user = found.GetUsername();
    std::string text = found.GetPassword();
    password = SecretString(text);
    Wipe(text);
    return {};
  };
}

}  // namespace

LoginError::LoginError(LoginResult result, const std::string& text, std::string cause)
    : std::runtime_error(Trimmed(text)), m_result(result), m_cause(std::move(cause)) {}

LoginError::~LoginError() = default;

CredentialSource AskForPassword() {
  return FromUserPass("");
}

CredentialSource ReadPasswordFile(const std::string& path) {
  return FromUserPass(path);
}

// Held by the Session, and by the thread that keeps it alive: a hook on that thread may destroy the
// Session.
class Session::State : public std::enable_shared_from_this<State> {
 public:
  explicit State(SessionOptions options) : m_options(std::move(options)) {}

  void Begin();
  void End() noexcept;

  // Runs `call` alone: no other call of the session is under way meanwhile.
  template <class Call>
  auto Alone(Call call) {
    const std::lock_guard lock(m_calls);
    return call();
  }
  LoginResult KeepAlive();
  LoginResult Renew();
  LoginResult ChangePassword(const std::string& newPassword, bool expired);

  bool IsLost() const { return m_lost; }
  LoginResult Result() const { return m_result; }
  SERVER_ID Kind() const { return m_options.kind; }
  const std::shared_ptr<const UserAuthorizations>& Authorizations() const {
    return m_authorizations;
  }
  std::string Message() const {
    const std::lock_guard lock(m_messageLock);
    return m_message;
  }

 private:
  // The one session of the process, which std::exit ends. Never destroyed.
  struct Registry {
    std::mutex lock;
    bool taken = false;
    bool hooked = false;
    std::weak_ptr<State> session;

    static Registry& Instance() {
      static auto* const registry = new Registry;
      return *registry;
    }
  };

  static void EndAtExit();
  void Claim();
  void LogIn();
  int CallLogin(std::string& message);
  void StartThread();
  void LookAfter();
  void KeepOldReferences();
  void SetAlive();
  void SetMessage(const std::string& message) {
    const std::lock_guard lock(m_messageLock);
    m_message = Trimmed(message);
  }

  SessionOptions m_options;
  const pid_t m_process = ::getpid();
  bool m_startedOrb = false;
  LoginResult m_result = LoginResult::kFailed;
  std::shared_ptr<const UserAuthorizations> m_authorizations;

  std::recursive_mutex m_calls;  // recursive, since hooks of the client may call members
  std::chrono::steady_clock::time_point m_lastAlive;
  bool m_silent = false;    // the last keep-alive had no answer
  bool m_refused = false;   // the last renewal was refused; trying on would lock the account
  bool m_reported = false;  // onLost was called for this loss
  std::vector<CORBA::Object_var> m_oldReferences;

  mutable std::mutex m_messageLock;
  std::string m_message;
  std::atomic<bool> m_lost = false;
  std::atomic<bool> m_ended = false;
  std::jthread m_thread;
};

void Session::State::Claim() {
  Registry& registry = Registry::Instance();
  const std::lock_guard lock(registry.lock);
  if (registry.taken || LoginHandler::GetGlobal()->IsConnected()) {
    throw LoginError(LoginResult::kFailed, "This process is logged in already.",
                     "a process has one session at a time; end the other one first");
  }
  registry.taken = true;
  registry.session = weak_from_this();
}

void Session::State::Begin() {
  SecretString& password = m_options.password;
  if (password.Text().empty() && m_options.credentials) {
    const std::string failure = m_options.credentials(m_options.user, password);
    if (!failure.empty()) throw LoginError(LoginResult::kFailed, failure, "");
  }
  Claim();
  try {
    LogIn();
    StartThread();
  } catch (...) {
    End();
    throw;
  }
  password = SecretString();
  Registry& registry = Registry::Instance();
  const std::lock_guard lock(registry.lock);
  // At the end of a login, so that it runs before what the login used is destroyed.
  if (!std::exchange(registry.hooked, true)) std::atexit(EndAtExit);
}

void Session::State::EndAtExit() {
  Registry& registry = Registry::Instance();
  std::unique_lock lock(registry.lock);
  const std::shared_ptr<State> session = registry.session.lock();
  lock.unlock();
  if (session != nullptr) session->End();
}

void Session::State::LogIn() {
  std::optional<CallDeadline> deadline;
  if (m_options.deadline.count() > 0) deadline.emplace(m_options.deadline);
  m_startedOrb = !ORBCommon<1>::Get()->IsInitialized();
  std::string message;
  auto result = static_cast<LoginResult>(CallLogin(message));
  SetMessage(message);
  if (result == LoginResult::kPasswordExpired && m_options.newPassword) {
    const SecretString newPassword = m_options.newPassword(Message());
    if (!newPassword.Text().empty()) result = ChangePassword(newPassword.Text(), true);
  }
  m_result = result;
  if (IsLoggedIn(result)) {
    result = static_cast<LoginResult>(GL_PostLogin(message));
    if (result == LoginResult::kSuccess) {
      m_authorizations.reset(
          session::CopyUserAuthorizations(*LoginHandler::GetGlobal()->GetUserAuthorizations()),
          session::DeleteUserAuthorizations);
      SetAlive();
      return;
    }
    SetMessage(message);
  }
  const LoginError error(result, Message().empty() ? "The login failed." : Message(),
                         GL_GetFailureCause());
  End();  // within the deadline
  throw error;
}

int Session::State::CallLogin(std::string& message) {
  std::vector<std::string> words = m_options.orbArguments;
  if (words.empty() || words.front().starts_with('-')) words.insert(words.begin(), "client");
  if (!m_options.namingService.empty()) {
    words.emplace_back("-ORBInitRef");
    words.push_back("NameService=" + m_options.namingService);
  }
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  try {
    return GL_Login(m_options.user, m_options.password.Text(), m_options.server,
                    static_cast<unsigned int>(m_options.timeOut.count()), message, m_options.client,
                    m_options.kind, static_cast<int>(arguments.size()), arguments.data());
  } catch (const CORBA::Exception&) {
    return CodeOf(LoginResult::kFailed);
  }
}

void Session::State::End() noexcept {
  // A child process has neither the threads nor the connection, and the session is its parent's.
  if (m_process != ::getpid() || m_ended.exchange(true)) return;
  m_thread.request_stop();
  if (m_thread.get_id() == std::this_thread::get_id()) {
    m_thread.detach();  // a hook on the thread ends the session
  } else if (m_thread.joinable()) {
    m_thread.join();
  }
  try {
    const std::lock_guard lock(m_calls);
    m_oldReferences.clear();
    GL_LogOut(m_startedOrb);
    ConnectionSettings::Get()->SetPassword("");
  } catch (...) {
    // The server's time-out ends what could not be logged out.
  }
  Registry& registry = Registry::Instance();
  const std::lock_guard lock(registry.lock);
  registry.taken = false;
}

void Session::State::SetAlive() {
  m_lastAlive = std::chrono::steady_clock::now();
  m_silent = m_refused = m_reported = false;
  m_lost = false;
}

LoginResult Session::State::KeepAlive() {
  const std::lock_guard lock(m_calls);
  try {
    const auto result = static_cast<LoginResult>(LoginHandler::GetGlobal()->ClientKeepAlive());
    m_silent = false;
    result == LoginResult::kSuccess ? SetAlive() : void(m_lost = true);
    return result;
  } catch (BaseLoginEx& e) {
    SetMessage(e.handle());
    m_silent = true;
    if (std::chrono::steady_clock::now() - m_lastAlive >= m_options.timeOut) m_lost = true;
    return LoginResult::kNoServer;
  }
}

LoginResult Session::State::Renew() {
  const std::lock_guard lock(m_calls);
  std::string message;
  try {
    if (m_silent) KeepOldReferences();
    const auto result = static_cast<LoginResult>(LoginHandler::GetGlobal()->ReLogin(
        message, static_cast<unsigned int>(m_options.timeOut.count())));
    SetMessage(message);
    if (IsLoggedIn(result)) SetAlive();
    m_refused = !IsLoggedIn(result);
    return result;
  } catch (UserAuthEx& e) {
    SetMessage(e.handle());
    m_refused = true;
    return static_cast<LoginResult>(e.GetReturnCode());
  } catch (BaseLoginEx& e) {
    SetMessage(e.handle());
    return LoginResult::kNoServer;
  }
}

// Lets the next call look its server up again. Who borrowed a reference may still use it.
void Session::State::KeepOldReferences() {
  CorbaServerPackManager* const cache = CorbaServerPackManager::Get();
  for (const char* const name : {"UsersManager", "SystemConfiguration"}) {
    for (int kind = E_GSR; kind <= E_SLS; ++kind) {
      const CORBA::Object_ptr object = cache->FindItem(name, static_cast<SERVER_ID>(kind));
      if (!CORBA::is_nil(object)) m_oldReferences.emplace_back(CORBA::Object::_duplicate(object));
    }
  }
  cache->Reset();
}

LoginResult Session::State::ChangePassword(const std::string& newPassword, bool expired) {
  const std::lock_guard lock(m_calls);
  std::string message;
  const int allowed = CheckPasswordValidity(newPassword, message);
  if (allowed != CodeOf(LoginResult::kSuccess)) {
    SetMessage(message);
    return static_cast<LoginResult>(allowed);
  }
  const auto result = static_cast<LoginResult>(SetUserPassword(newPassword, expired));
  const bool changed = WasPasswordChanged();
  return result == LoginResult::kSuccess && !changed ? LoginResult::kFailed : result;
}

void Session::State::StartThread() {
  if (m_options.keepAlive.count() <= 0) return;
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);  // signals are for the client's own threads
  m_thread = std::jthread([self = shared_from_this()](const std::stop_token& stop) {
    std::mutex idle;
    std::condition_variable_any wake;
    std::unique_lock lock(idle);
    while (!wake.wait_for(lock, stop, self->m_options.keepAlive,
                          [&stop] { return stop.stop_requested(); })) {
      self->LookAfter();
    }
  });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void Session::State::LookAfter() {
  try {
    if (KeepAlive() == LoginResult::kSuccess || !m_lost) return;
    if (m_options.renew && !m_refused && IsLoggedIn(Renew())) return;
  } catch (...) {  // no memory for one
    return;
  }
  if (!std::exchange(m_reported, true) && m_options.onLost) m_options.onLost();
}

Session::Session(SessionOptions options) : m_state(std::make_shared<State>(std::move(options))) {
  m_state->Begin();
}

std::optional<Session> Session::Open(SessionOptions options, LoginError& error) {
  try {
    return Session(std::move(options));
  } catch (const LoginError& e) {
    error = e;
  } catch (const std::exception& e) {
    error = LoginError(LoginResult::kFailed, e.what(), "");
  }
  return std::nullopt;
}

Session::~Session() {
  if (m_state != nullptr) m_state->End();
}

Session::Session(Session&& other) noexcept = default;

Session& Session::operator=(Session&& other) noexcept {
  if (this == &other) return *this;
  if (m_state != nullptr) m_state->End();
  m_state = std::move(other.m_state);
  return *this;
}

Session::State& Session::Get() const {
  if (m_state == nullptr) throw std::logic_error("this vq::Session was moved from");
  return *m_state;
}

LoginResult Session::Result() const {
  return Get().Result();
}

std::string Session::Message() const {
  return Get().Message();
}

std::optional<std::string> Session::Parameter(const std::string& name,
                                              const std::string& section) const {
  return Get().Alone([&]() -> std::optional<std::string> {
    std::string value;
    if (!GetSystemParameter(name, value, section, Get().Kind())) return std::nullopt;
    return value;
  });
}

std::shared_ptr<const UserAuthorizations> Session::Authorizations() const {
  return Get().Authorizations();
}

LoginResult Session::KeepAlive() {
  return Get().KeepAlive();
}

bool Session::IsLost() const {
  return Get().IsLost();
}

LoginResult Session::Renew() {
  return Get().Renew();
}

LoginResult Session::ChangePassword(const SecretString& newPassword) {
  return Get().ChangePassword(newPassword.Text(), false);
}

std::optional<std::chrono::days> Session::CertificateWarning() const {
  return Get().Alone([]() -> std::optional<std::chrono::days> {
    std::string warning;
    GL_CheckSSLCertificateExpiration(warning);
    const auto expiry = ORBCommon<1>::Get()->CertificateExpiry();
    if (warning.empty() || !expiry) return std::nullopt;
    return std::chrono::floor<std::chrono::days>(*expiry - std::chrono::system_clock::now());
  });
}

template <class T>
typename T::_var_type Session::Servant(const char* name) const {
  return Get().Alone([&]() -> typename T::_var_type {
    typename T::_ptr_type borrowed = T::_nil();
    if (GetCRBServant<T>(name, borrowed, Get().Kind(), true) != 1) return T::_nil();
    return T::_duplicate(borrowed);
  });
}

template VQ_CLIENT_COMMON_API QCSCorbaUsersManager::_var_type
Session::Servant<QCSCorbaUsersManager>(const char*) const;
template VQ_CLIENT_COMMON_API VQCorbaSystemConfiguration::_var_type
Session::Servant<VQCorbaSystemConfiguration>(const char*) const;

}  // namespace vq
