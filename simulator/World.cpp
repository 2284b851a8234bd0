#include <simulator/World.h>

#include <utility>

namespace vq::sim {

void World::Replace(const nlohmann::json& document, const std::string& name) {
  auto site = std::make_shared<const Site>(ReadSite(document, name));
  std::shared_ptr<const Site> before;
  const nlohmann::json none = nlohmann::json::array();
  const bool otherFaults = document.value("faults", none) != m_document.value("faults", none);
  {
    const std::lock_guard lock(m_mutex);
    before = std::exchange(m_site, site);
    m_document = document;
  }
  for (const auto& [user, was] : before->users) {
    const User* is = site->FindUser(user);
    if (is == nullptr || !(*is == was)) accounts.Forget(user);
  }
  if (otherFaults) faults.Set(site->faults);
}

void World::Load(const nlohmann::json& document, const std::string& name) {
  const std::lock_guard loading(m_loading);
  Replace(document, name);
}

void World::Patch(const nlohmann::json& patch) {
  const std::lock_guard loading(m_loading);
  nlohmann::json document = m_document;
  document.merge_patch(patch);
  Replace(document, "patch");
}

void World::SetFaults(const nlohmann::json& list) {
  const std::lock_guard loading(m_loading);
  nlohmann::json document = m_document;
  document["faults"] = list;
  Replace(document, "command");
  faults.Set(GetSite()->faults);
}

std::shared_ptr<const Site> World::GetSite() {
  const std::lock_guard lock(m_mutex);
  return m_site;
}

void World::Reset() {
  sessions.CloseAll();
  challenges.Clear();
  accounts.Clear();
  log.ClearCounts();
}

void World::Wait(std::chrono::milliseconds time) {
  std::unique_lock lock(m_mutex);
  m_stopping.wait_for(lock, time, [this] { return m_stopped; });
}

void World::Stop() {
  {
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
  }
  m_stopping.notify_all();
}

}  // namespace vq::sim
