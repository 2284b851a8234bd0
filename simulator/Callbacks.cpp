#include <simulator/Callbacks.h>

#include <algorithm>
#include <limits>

#include <simulator/Orb.h>
#include <vq_idl/CallbackRepositoryC.h>

namespace vq::sim {
namespace {

constexpr std::size_t kMostCallbacks = 10'000;
constexpr std::chrono::milliseconds kUsualTime{5000};
constexpr std::chrono::milliseconds kLongestTime{30'000};  // the server's end waits for it

}  // namespace

class Callbacks::Turn {
 public:
  // Waits for the turn, for `patience` at most.
  Turn(Callbacks& callbacks, CORBA::Long id, std::chrono::milliseconds patience)
      : m_callbacks(callbacks), m_id(id) {
    std::unique_lock lock(callbacks.m_mutex);
    m_isMine = callbacks.m_turnOver.wait_for(lock, patience,
                                             [&] { return callbacks.m_called.insert(id).second; });
  }
  ~Turn() {
    if (!m_isMine) return;
    {
      const std::lock_guard lock(m_callbacks.m_mutex);
      m_callbacks.m_called.erase(m_id);
    }
    m_callbacks.m_turnOver.notify_all();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  [[nodiscard]] bool IsMine() const { return m_isMine; }

 private:
  Callbacks& m_callbacks;
  const CORBA::Long m_id;
  bool m_isMine;
};

CORBA::Long Callbacks::Add(const std::string& userId, CORBA::Object_ptr object) {
  const std::lock_guard lock(m_mutex);
  if (m_entries.size() >= kMostCallbacks) {  // those of sessions that timed out are still there
    std::erase_if(m_entries,
                  [this](const auto& e) { return !m_world.sessions.UserOf(e.second.userId); });
  }
  if (CORBA::is_nil(object) || m_entries.size() >= kMostCallbacks ||
      m_last == std::numeric_limits<CORBA::Long>::max()) {
    return 0;
  }
  m_entries[++m_last] = {userId, CORBA::Object::_duplicate(object)};
  return m_last;
}

bool Callbacks::Remove(CORBA::Long id) {
  const std::lock_guard lock(m_mutex);
  return m_entries.erase(id) > 0;
}

bool Callbacks::RemoveOf(const std::string& userId) {
  const std::lock_guard lock(m_mutex);
  return std::erase_if(m_entries, [&](const auto& e) { return e.second.userId == userId; }) > 0;
}

CORBA::Object_ptr Callbacks::Find(CORBA::Long id) {
  const std::lock_guard lock(m_mutex);
  const auto found = m_entries.find(id);
  return found == m_entries.end() ? CORBA::Object::_nil()
                                  : CORBA::Object::_duplicate(found->second.object);
}

bool Callbacks::Ping(CORBA::Long id, std::chrono::milliseconds time, std::string& message) {
  const auto site = m_world.GetSite();
  time = time.count() <= 0 ? kUsualTime : std::min(time, kLongestTime);
  CORBA::Object_var object = Find(id);
  if (CORBA::is_nil(object.in())) {
    message = "No callback is registered under the id " + std::to_string(id) + ".";
    return false;
  }
  if (site->callbackRefused) {
    message = site->callbackMessage;
    return false;
  }
  const auto delay = std::min(site->callbackDelay, time);
  m_world.Wait(delay);
  time -= delay;
  const auto start = std::chrono::steady_clock::now();
  const Turn turn(*this, id, time);
  time -= std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
  if (time.count() <= 0 || !turn.IsMine()) {
    message = "The callback was not answered in time.";
    return false;
  }
  try {
    // An object that is no test callback answers with an exception, like one that is gone.
    const CORBA::Object_var limited = vq::orb::WithCallLimit(object.in(), time);
    const TestCallback_var callback = TestCallback::_unchecked_narrow(limited.in());
    callback->CRB_Ping();
    return true;
  } catch (const CORBA::Exception& exception) {
    message = std::string("The callback failed: ") + exception._name() + ".";
    return false;
  }
}

}  // namespace vq::sim
