// Everything that the servants of one simulator process share: the site in force and what happened
// since. All server kinds of a process share it, as the servers of a suite share their database.
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_WORLD_H
#define VQ_SIMULATOR_WORLD_H

#include <condition_variable>
#include <memory>
#include <mutex>

#include <simulator/Accounts.h>
#include <simulator/CallLog.h>
#include <simulator/Clock.h>
#include <simulator/Credentials.h>
#include <simulator/Faults.h>
#include <simulator/Sessions.h>
#include <simulator/Site.h>
#include <nlohmann/json.hpp>

namespace vq::sim {

class World {
 public:
  // Puts a site into force. Raises SiteError and changes nothing when it cannot be used. Users that
  // differ from before stand anew, and faults that differ count anew; sessions stay.
  void Load(const nlohmann::json& document, const std::string& name);
  // Load of the present site with a JSON merge patch over it: a member that is null is taken away.
  void Patch(const nlohmann::json& patch);
  // Puts other faults into the present site. All count anew, also where they are the same.
  void SetFaults(const nlohmann::json& list);
  // The site in force; it stays valid for its holder.
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
  std::mutex m_loading;  // held for a whole Load or Patch
  std::mutex m_mutex;
  nlohmann::json m_document = nlohmann::json::object();
  std::shared_ptr<const Site> m_site = std::make_shared<Site>();
  std::condition_variable m_stopping;
  bool m_stopped = false;

  void LoadLocked(const nlohmann::json& document, const std::string& name);
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_WORLD_H
