#include <support/orb/omniorb/OmniOrbWatcher.h>

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <vector>

namespace vq::orb {
namespace {

using omni::giopConnection;

// Never destroyed: omniORB's threads may run until the process ends.
auto& mutex = *new std::mutex;
auto& connections = *new std::map<giopConnection*, giopConnection*>;
auto& telling = *new std::multiset<giopConnection*>;
auto& told = *new std::condition_variable;

void HasTold(giopConnection* known) {
  const std::lock_guard lock(mutex);
  telling.erase(telling.find(known));
  told.notify_all();
}

class OpenedWatcher : public Watcher, public omni::giopActiveCollection {
 public:
  static OpenedWatcher& Of(omni::giopActiveCollection& opened) {
    const std::lock_guard lock(mutex);
    return watchers.try_emplace(&opened, opened).first->second;
  }

  static void StopAll() {
    stopped = true;
    std::vector<OpenedWatcher*> all;
    {
      const std::lock_guard lock(mutex);
      for (auto& [opened, watcher] : watchers) all.push_back(&watcher);
    }
    for (OpenedWatcher* const watcher : all) {
      watcher->deactivate();
      const std::unique_lock ended(watcher->m_watching, InASecond());
    }
  }

  explicit OpenedWatcher(omni::giopActiveCollection& opened) : m_opened(opened) {}

  const char* type() const override { return m_opened.type(); }
  // omniORB's thread asks it when Monitor has returned, and m_opened may be destroyed by then.
  CORBA::Boolean isEmpty() const override { return stopped || m_opened.isEmpty(); }
  void deactivate() override { m_opened.deactivate(); }
  void Monitor(giopConnection::notifyReadable_t tell, void* cookie) override {
    TellTo(tell, cookie);
    const std::lock_guard watching(m_watching);
    if (stopped) return;
    m_opened.Monitor(Tell, static_cast<Watcher*>(this));
  }

 private:
  static inline std::atomic<bool> stopped = false;
  static inline auto& watchers = *new std::map<omni::giopActiveCollection*, OpenedWatcher>;

  omni::giopActiveCollection& m_opened;
  std::timed_mutex m_watching;
};

}  // namespace

void Watcher::Add(giopConnection& known, giopConnection& connection) {
  const std::lock_guard lock(mutex);
  connections[&known] = &connection;
}

void Watcher::Remove(giopConnection& known) {
  const std::lock_guard lock(mutex);
  connections.erase(&known);
}

void Watcher::RemoveAndWait(giopConnection& known) {
  std::unique_lock lock(mutex);
  connections.erase(&known);
  told.wait(lock, [&] { return !telling.contains(&known); });
}

void Watcher::Tell(void* watcher, giopConnection* known) {
  std::unique_lock lock(mutex);
  const auto found = connections.find(known);
  if (found == connections.end()) return;
  giopConnection* const connection = found->second;
  telling.insert(known);
  lock.unlock();
  const Watcher& self = *static_cast<Watcher*>(watcher);
  try {
    self.m_tell(self.m_cookie, connection);
  } catch (...) {  // no memory
    HasTold(known);
    throw;
  }
  HasTold(known);
}

omni::giopActiveCollection& WatcherOfOpened(omni::giopActiveCollection& opened) {
  return OpenedWatcher::Of(opened);
}

void StopWatching() {
  OpenedWatcher::StopAll();
}

}  // namespace vq::orb
