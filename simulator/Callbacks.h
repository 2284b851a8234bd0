// The clients' callback objects.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_CALLBACKS_H
#define VQ_SIMULATOR_CALLBACKS_H

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include <simulator/World.h>
#include <support/orb/Corba.h>

namespace vq::sim {

class Callbacks {
 public:
  explicit Callbacks(World& world) : m_world(world) {}

  // Keeps a reference. Returns its id, from 1 up; 0 for a nil reference, or when there are too
  // many.
  CORBA::Long Add(const std::string& userId, CORBA::Object_ptr object);
  // False when there was none.
  bool Remove(CORBA::Long id);
  bool RemoveOf(const std::string& userId);
  // The caller owns the reference; nil when the id is not known.
  CORBA::Object_ptr Find(CORBA::Long id);
  // Calls CRB_Ping of the object: at once, late or not at all, as the site configures. True when
  // the object answered within the time (0 or less: 5 seconds; 30 at most); else `message` has the
  // reason.
  bool Ping(CORBA::Long id, std::chrono::milliseconds time, std::string& message);

 private:
  struct Entry {
    std::string userId;
    CORBA::Object_var object;
  };
  // The right to call one object, which one thread has at a time: the ORB stores the limit of a
  // call in the reference.
  class Turn;

  World& m_world;
  std::mutex m_mutex;
  CORBA::Long m_last = 0;
  std::map<CORBA::Long, Entry> m_entries;
  std::set<CORBA::Long> m_called;  // objects that are being called
  std::condition_variable m_turnOver;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CALLBACKS_H
