// The state that all servants of one simulator process share: the current site and the sessions,
// accounts and faults. All server kinds of a process share it, as the servers of a suite share
// their database.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_WORLD_H
#define VQ_SIMULATOR_WORLD_H

#include <condition_variable>
#include <memory>
#include <mutex>

#include <nlohmann/json.hpp>

#include <simulator/Accounts.h>
#include <simulator/CallLog.h>
#include <simulator/Clock.h>
#include <simulator/Credentials.h>
#include <simulator/Faults.h>
#include <simulator/Sessions.h>
#include <simulator/Site.h>

namespace vq::sim {

class World {
 public:
  // Replaces the site. Raises SiteError and changes nothing when it cannot be used. The accounts of
  // changed users start anew, and changed faults count anew; sessions stay.
  void Load(const nlohmann::json& document, const std::string& name);
  // Load of the current site with a JSON merge patch: a member that is null is removed.
  void Patch(const nlohmann::json& patch);
  // Replaces the faults of the current site. All count anew, also unchanged ones.
  void SetFaults(const nlohmann::json& list);
  // The current site; it stays valid for its holder.
  [[nodiscard]] std::shared_ptr<const Site> GetSite();
  // Forgets sessions, challenges, failed tries, changed passwords and counts. The site stays.
  void Reset();
  // Waits so long, or until the simulator stops.
  void Wait(std::chrono::milliseconds time);
  // Ends every Wait, now and later.
  void Stop();

  Clock clock;
  CallLog log;
  Faults faults;
  Challenges challenges{clock};
  Sessions sessions{clock};
  Accounts accounts{challenges};

 private:
  std::mutex m_loading;  // held for a whole Load, Patch or SetFaults
  std::mutex m_mutex;
  nlohmann::json m_document = nlohmann::json::object();
  std::shared_ptr<const Site> m_site = std::make_shared<Site>();
  std::condition_variable m_stopping;
  bool m_stopped = false;

  // m_loading is held.
  void Replace(const nlohmann::json& document, const std::string& name);
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_WORLD_H
