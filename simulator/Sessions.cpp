#include <simulator/Sessions.h>

namespace vq::sim {

namespace {
constexpr std::size_t kMostSessions = 100'000;
}

bool Sessions::TimedOut(const Session& session) const {
  return session.timeOut.count() > 0 && m_clock.Now() - session.lastSign >= session.timeOut;
}

void Sessions::DropTimedOut() {
  std::erase_if(m_sessions, [this](const auto& entry) { return TimedOut(entry.second); });
}

Sessions::Session* Sessions::Find(const std::string& userId) {
  const auto found = m_sessions.find(userId);
  if (found == m_sessions.end()) return nullptr;
  if (!TimedOut(found->second)) return &found->second;
  m_sessions.erase(found);
  return nullptr;
}

bool Sessions::Open(const std::string& userId, const std::string& user,
                    std::chrono::seconds timeOut) {
  const std::lock_guard lock(m_mutex);
  if (m_sessions.size() >= kMostSessions) DropTimedOut();
  if (m_sessions.size() >= kMostSessions) return false;
  m_sessions[userId] = {user, timeOut, m_clock.Now()};
  return true;
}

std::optional<std::string> Sessions::UserOf(const std::string& userId) {
  const std::lock_guard lock(m_mutex);
  const Session* session = Find(userId);
  return session == nullptr ? std::nullopt : std::optional(session->user);
}

bool Sessions::KeepAlive(const std::string& userId) {
  const std::lock_guard lock(m_mutex);
  Session* session = Find(userId);
  if (session != nullptr) session->lastSign = m_clock.Now();
  return session != nullptr;
}

bool Sessions::ResetTimeOut(const std::string& userId, std::chrono::seconds timeOut) {
  const std::lock_guard lock(m_mutex);
  Session* session = Find(userId);
  if (session != nullptr) *session = {session->user, timeOut, m_clock.Now()};
  return session != nullptr;
}

bool Sessions::Close(const std::string& userId) {
  const std::lock_guard lock(m_mutex);
  const bool known = Find(userId) != nullptr;
  m_sessions.erase(userId);
  return known;
}

void Sessions::CloseAll() {
  const std::lock_guard lock(m_mutex);
  m_sessions.clear();
}

std::vector<Sessions::Info> Sessions::List() {
  const std::lock_guard lock(m_mutex);
  DropTimedOut();
  std::vector<Info> list;
  for (const auto& [id, session] : m_sessions) list.push_back({id, session.user, session.timeOut});
  return list;
}

}  // namespace vq::sim
