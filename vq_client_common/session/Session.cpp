#include <vq_client_common/session/Session.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include <unistd.h>

#include <support/foundations/NoSignals.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>
#include <vq_client_common/session/internal/UsersManager.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq {

// Shared by the Session and its thread, since a hook on that thread may destroy the Session.
struct Session::State : std::enable_shared_from_this<State> {
  explicit State(SessionOptions given) : options(std::move(given)) {
    // As good as never, and a clock can count it.
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(100 * 365 * 24);
    options.deadline = std::clamp(options.deadline, -kLongest, kLongest);
    options.keepAlive = std::clamp(options.keepAlive, -kLongest, kLongest);
  }

  void Begin();
  void LogIn();
  std::vector<std::string> Arguments() const;
  void RefuseOtherSettings() const;
  int CallLogin(std::string& text);
  void End() noexcept;
  void LogOut() noexcept;
  LoginResult KeepAlive();
  LoginResult Renew();
  void EndSession(const std::string& userId) const;
  static void SetTimeOut();
  LoginResult ChangePassword(const std::string& newPassword, bool expired);
  void StartThread();
  void KeepAliveOrRenew();

  // For a remote call. Not locked when the deadline of the caller passes first.
  std::unique_lock<std::recursive_timed_mutex> Lock() {
    const auto end = CallDeadline::Current();
    if (!end) return std::unique_lock(calls);
    // ThreadSanitizer does not know waiting by the other clock.
    const auto left = *end - CallDeadline::Clock::now();
    std::unique_lock lock(calls, std::chrono::system_clock::now() + left);
    if (!lock) orb::BeginCall();  // which notes the cause
    return lock;
  }
  std::string Message() const {
    const std::lock_guard lock(messageLock);
    return message;
  }
  void SetMessage(const std::string& text) {
    const std::lock_guard lock(messageLock);
    message = LoginError(LoginResult::kFailed, text, "").what();  // without tabs at the end
  }
  static std::string FailedText(LoginResult result) {
    return "The login failed with code " + std::to_string(CodeOf(result)) + ".";
  }
  void SetAlive() {
    lastAlive = std::chrono::steady_clock::now();
    lost = silent = refused = reported = false;
  }
  unsigned int TimeOut() const {
    constexpr std::int64_t kLongest = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(
        std::clamp<std::int64_t>(options.timeOut.count(), 0, kLongest));
  }
  // How long one remote call may take.
  static std::chrono::milliseconds CallTimeOut() {
    for (const orb::ResolvedSetting& setting : ORBCommon<1>::Get()->GetSettings()) {
      if (setting.name == orb::kCallTimeout) return std::chrono::milliseconds(Atoi(setting.value));
    }
    return std::chrono::minutes(1);
  }

  SessionOptions options;
  const pid_t process = ::getpid();
  bool startedOrb = false;
  LoginResult result = LoginResult::kFailed;
  std::shared_ptr<const UserAuthorizations> authorizations;
  std::atomic<bool> lost = false;
  std::atomic<bool> ends = false;
  std::atomic<bool> hasEnded = false;
  std::jthread thread;
  mutable std::mutex messageLock;
  std::string message;
  std::recursive_timed_mutex calls;  // recursive, since the client's hooks may call members
  std::chrono::steady_clock::time_point lastAlive;
  bool silent = false;                 // the last keep-alive or renewal had no answer
  std::atomic<bool> refused = false;   // the last renewal was refused; more could lock the account
  std::atomic<bool> reported = false;  // onLost was called for this loss
  std::vector<CORBA::Object_var> oldReferences;

  // The session of the process. The objects are never destroyed: std::exit ends the session.
  static inline std::mutex& currentLock = *new std::mutex;
  static inline std::weak_ptr<State>& current = *new std::weak_ptr<State>;
  // The authorizations of the latest session that a hook on its own thread has ended. That thread
  // still runs, and the process may end meanwhile: their references must not be released then.
  static inline auto& keptAuthorizations = *new std::shared_ptr<const UserAuthorizations>;
  static thread_local bool isOnThread;
  static thread_local bool isEnding;
};

thread_local bool Session::State::isOnThread = false;
thread_local bool Session::State::isEnding = false;

void Session::State::Begin() {
  if (options.password.Text().empty() && options.credentials) {
    const std::string failure = options.credentials(options.user, options.password);
    if (!failure.empty()) throw LoginError(LoginResult::kFailed, failure, "");
  }
  {
    const std::lock_guard lock(currentLock);
    if (!current.expired() || LoginHandler::GetGlobal()->IsConnected()) {
      throw LoginError(LoginResult::kFailed, "This process is logged in already.",
                       "a process has one session at a time; end the other one first");
    }
    current = weak_from_this();
  }
  std::optional<CallDeadline> deadline;  // also of the logout after a failure
  if (options.deadline.count() != 0) deadline.emplace(options.deadline);
  try {
    LogIn();
    if (options.keepAlive.count() > 0) StartThread();
  } catch (const CORBA::Exception& e) {
    End();
    throw LoginError(LoginResult::kFailed, "The login failed.", orb::ExceptionText(e));
  } catch (...) {
    End();
    throw;
  }
  options.password = SecretString();
  // Registered after a login, so that it runs before the objects of the login are destroyed.
  [[maybe_unused]] static const int hooked = std::atexit([] {
    std::unique_lock lock(currentLock);
    const std::shared_ptr<State> session = current.lock();
    lock.unlock();
    if (session == nullptr || session->process != ::getpid()) return;
    if (isEnding) return;  // in a signal handler
    if (isOnThread && session->ends) {
      session->LogOut();  // The thread that ends it waits for this one.
    } else {
      session->End();
      session->hasEnded.wait(false);  // Another thread may be ending it.
    }
  });
}

void Session::State::LogIn() {
  startedOrb = !ORBCommon<1>::Get()->IsInitialized();
  if (!startedOrb) RefuseOtherSettings();
  CorbaServerPackManager::Get()->Reset();  // A GL_Login that failed keeps its server.
  std::string text;
  result = static_cast<LoginResult>(CallLogin(text));
  SetMessage(text);
  if (result == LoginResult::kPasswordExpired && options.newPassword) {
    const SecretString newPassword = options.newPassword(Message());
    if (!newPassword.Text().empty()) result = ChangePassword(newPassword.Text(), true);
  }
  LoginResult finished = result;
  if (IsLoggedIn(result) && options.postLogin) {
    const std::lock_guard lock(calls);
    finished = ends ? LoginResult::kFailed : static_cast<LoginResult>(GL_PostLogin(text));
    if (finished != LoginResult::kSuccess) SetMessage(text);
    const std::shared_ptr<UserAuthorizations> copy(session::NewUserAuthorizations(),
                                                   session::DeleteUserAuthorizations);
    session::AssignUserAuthorizations(*copy, *LoginHandler::GetGlobal()->GetUserAuthorizations());
    authorizations = copy;
  }
  if (!IsLoggedIn(finished)) {
    if (Message().empty()) SetMessage(FailedText(finished));
    throw LoginError(finished, Message(), GL_GetFailureCause());
  }
  SetAlive();
}

std::vector<std::string> Session::State::Arguments() const {
  std::vector<std::string> words = options.orbArguments;
  if (words.empty() || words.front().starts_with('-')) words.insert(words.begin(), "client");
  if (!options.namingService.empty()) {
    words.insert(words.end(), {orb::kInitRef, "NameService=" + options.namingService});
  }
  return words;
}

// An ORB that is up keeps its settings: a session that requires TLS could be unencrypted.
void Session::State::RefuseOtherSettings() const {
  const std::vector<std::string> words = Arguments();
  std::vector<const char*> pointers;
  for (const std::string& word : words) pointers.push_back(word.c_str());
  const orb::ResolvedSetting* other = nullptr;
  try {
    other = orb::FindOther(orb::SplitArguments(static_cast<int>(pointers.size()), pointers.data()),
                           ORBCommon<1>::Get()->GetSettings());
  } catch (const std::invalid_argument& e) {
    throw LoginError(LoginResult::kFailed, "The login failed.", e.what());
  }
  if (other == nullptr) return;
  throw LoginError(LoginResult::kFailed, "The ORB of this process has other settings.",
                   other->name + " is '" + other->value +
                       "' there; end it with GL_LogOut(true) before this session begins");
}

int Session::State::CallLogin(std::string& text) {
  const std::lock_guard lock(calls);
  if (ends) return CodeOf(LoginResult::kFailed);  // with the process
  std::vector<std::string> words = Arguments();
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  return GL_Login(options.user, options.password.Text(), options.server, TimeOut(), text,
                  options.client, options.kind, static_cast<int>(arguments.size()),
                  arguments.data());
}

void Session::State::End() noexcept {
  // A forked child has neither the threads nor the connections; the session belongs to its parent.
  if (process != ::getpid() || ends.exchange(true)) return;
  isEnding = true;
  thread.request_stop();
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();  // called by a hook on that thread
    std::shared_ptr<const UserAuthorizations> kept = authorizations;
    const std::lock_guard lock(currentLock);
    keptAuthorizations.swap(kept);
  } else if (thread.joinable()) {
    thread.join();
  }
  LogOut();
  const std::lock_guard lock(currentLock);
  current.reset();
  hasEnded = true;
  hasEnded.notify_all();
  isEnding = false;
}

void Session::State::LogOut() noexcept {
  try {
    std::unique_lock lock(calls);
    const CallDeadline limit(CallTimeOut());
    oldReferences.clear();
    GL_LogOut(false);
    ConnectionSettings* const settings = ConnectionSettings::Get();
    settings->SetPassword("");
    lock.unlock();
    // It waits for the servants of the client, which may call members.
    if (startedOrb) ORBCommon<1>::Get()->DestroyOrb(settings->GetWait4Shutdown());
  } catch (...) {
    // The session ends by its time-out at the server.
  }
}

LoginResult Session::State::KeepAlive() {
  const auto lock = Lock();
  if (!lock || ends) return LoginResult::kNoServer;
  try {
    const auto answer = static_cast<LoginResult>(LoginHandler::GetGlobal()->ClientKeepAlive());
    lost = answer != LoginResult::kSuccess;
    if (!lost) SetAlive();
    return answer;
  } catch (BaseLoginEx& e) {
    silent = true;
    SetMessage(e.handle());
    const auto silence = std::chrono::steady_clock::now() - lastAlive;
    if (std::chrono::floor<std::chrono::seconds>(silence) >= options.timeOut) lost = true;
    return LoginResult::kNoServer;
  }
}

LoginResult Session::State::Renew() {
  const auto lock = Lock();
  if (!lock || ends) return LoginResult::kNoServer;
  const std::string before = ConnectionSettings::Get()->GetUserID();
  auto answer = LoginResult::kNoServer;
  std::string text;
  CorbaServerPackManager* const cache = CorbaServerPackManager::Get();
  CorbaServerPackManager::Items others;  // Callers may still use them.
  const bool looksUp = silent;           // The server may have moved.
  if (looksUp) cache->Exchange(others);
  try {
    answer = static_cast<LoginResult>(LoginHandler::GetGlobal()->Login(text, TimeOut()));
    refused = true;
    if (IsLoggedIn(answer) && options.postLogin) SetTimeOut();
  } catch (UserAuthEx& e) {
    text = e.handle();
    answer = static_cast<LoginResult>(e.GetReturnCode());
    refused = true;
  } catch (BaseLoginEx& e) {
    text = e.handle();
    silent = true;
  }
  // The session before may still be where it was.
  if (looksUp && !IsLoggedIn(answer)) cache->Exchange(others);
  for (const auto& [key, reference] : others) oldReferences.emplace_back(reference);
  SetMessage(text.empty() && !IsLoggedIn(answer) ? FailedText(answer) : text);
  if (IsLoggedIn(answer)) {
    if (!lost && !silent) EndSession(before);
    orb::TakeCause();  // of steps whose failure does not matter
    SetAlive();
  } else {  // The session before may still exist, for the logout.
    ConnectionSettings::Get()->SetUserID(before);
  }
  return answer;
}

// Where the server still knows the session before the one of now. After a silence it may be another
// server, which has given the user ID to another client.
void Session::State::EndSession(const std::string& userId) const {
  if (userId.empty() || userId == ConnectionSettings::Get()->GetUserID()) return;
  try {
    QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
    if (session::GetUsersManager(users, options.kind, false) == 1)
      users->CRB_Unregister(userId.c_str());
  } catch (const CORBA::Exception&) {  // It ends after its time-out.
  }
}

// A session whose time-out cannot be set has the one of its registration.
void Session::State::SetTimeOut() {
  try {
    LoginHandler::GetGlobal()->RegisterTimeOut(session::ConfiguredTimeOut());
  } catch (const BaseLoginEx&) {  // in the log
  }
}

LoginResult Session::State::ChangePassword(const std::string& newPassword, bool expired) {
  const auto lock = Lock();
  if (!lock || ends) return LoginResult::kNoServer;
  std::string text;
  auto answer = static_cast<LoginResult>(CheckPasswordValidity(newPassword, text));
  SetMessage(text);
  if (answer != LoginResult::kSuccess) return answer;
  answer = static_cast<LoginResult>(SetUserPassword(newPassword, expired));
  if (IsLoggedIn(answer) && !WasPasswordChanged()) return LoginResult::kFailed;
  return answer;
}

void Session::State::StartThread() {
  const NoSignals none;  // The client's own threads handle them.
  const auto keepAlive = [self = shared_from_this()](const std::stop_token& stop) {
    isOnThread = true;
    std::mutex idle;
    std::condition_variable_any wake;
    std::unique_lock lock(idle);
    while (!wake.wait_for(lock, stop, self->options.keepAlive,
                          [&stop] { return stop.stop_requested(); })) {
      self->KeepAliveOrRenew();
    }
  };
  try {
    thread = std::jthread(keepAlive);
  } catch (const std::system_error& e) {
    throw LoginError(LoginResult::kFailed, "The login failed.",
                     std::string("no thread can be started: ") + e.what());
  }
}

void Session::State::KeepAliveOrRenew() {
  try {
    if (KeepAlive() == LoginResult::kSuccess) return;
    const bool isRestarted = orb::WasObjectUnknown();  // the server, as far as is known
    if (!lost && !isRestarted) return;
    if (options.renew && !refused && IsLoggedIn(Renew())) return;
    if (!lost) return;
  } catch (const std::exception&) {  // no memory; the next attempt may succeed
    return;
  }
  if (!reported.exchange(true) && options.onLost) options.onLost();
}

Session::Session(SessionOptions options) {
  const auto state = std::make_shared<State>(std::move(options));
  state->Begin();
  m_state = {state.get(), [state](State*) { state->End(); }};
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

Session::State& Session::Get() const {
  if (m_state == nullptr) throw std::logic_error("this vq::Session was moved from");
  return *m_state;
}

LoginResult Session::Result() const {
  return Get().result;
}

std::string Session::Message() const {
  return Get().Message();
}

std::optional<std::string> Session::Parameter(const std::string& name,
                                              const std::string& section) const {
  const auto lock = Get().Lock();
  if (!lock || Get().ends) return std::nullopt;
  std::string value;
  if (!GetSystemParameter(name, value, section, Get().options.kind)) return std::nullopt;
  return value;
}

std::shared_ptr<const UserAuthorizations> Session::Authorizations() const {
  return Get().authorizations;
}

LoginResult Session::KeepAlive() {
  return Get().KeepAlive();
}

bool Session::IsLost() const {
  return Get().lost;
}

LoginResult Session::Renew() {
  return Get().Renew();
}

LoginResult Session::ChangePassword(const SecretString& newPassword) {
  return Get().ChangePassword(newPassword.Text(), false);
}

std::optional<std::chrono::days> Session::CertificateWarning() const {
  const auto lock = Get().Lock();
  if (!lock || Get().ends) return std::nullopt;
  std::string warning;
  GL_CheckSSLCertificateExpiration(warning);
  const auto expiry = ORBCommon<1>::Get()->CertificateExpiry();
  if (warning.empty() || !expiry) return std::nullopt;
  return std::chrono::floor<std::chrono::days>(*expiry - std::chrono::system_clock::now());
}

template <class T>
typename T::_var_type Session::Servant(const char* name) const {
  const auto lock = Get().Lock();
  if (!lock || Get().ends) return T::_nil();
  typename T::_ptr_type borrowed = T::_nil();
  if (GetCRBServant<T>(name, borrowed, Get().options.kind, true) != 1) return T::_nil();
  return T::_duplicate(borrowed);
}

template VQ_CLIENT_COMMON_API QCSCorbaUsersManager::_var_type
Session::Servant<QCSCorbaUsersManager>(const char*) const;
template VQ_CLIENT_COMMON_API VQCorbaSystemConfiguration::_var_type
Session::Servant<VQCorbaSystemConfiguration>(const char*) const;

}  // namespace vq
