// A lock that one thread holds at a time; the thread that holds it may enter again.
//
//   os_critical_section section(false);
//   const std::lock_guard<os_critical_section> guard(section);
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H

#include <mutex>

#include <support/Export.h>

// Each lock or successful try_lock is undone by one unlock of the same thread; the object outlives
// every holder.
class VQ_CLIENT_COMMON_API os_critical_section {
 public:
  // With true the calling thread holds it from the start.
  explicit os_critical_section(bool locked) {
    if (locked) lock();
  }
  os_critical_section(const os_critical_section&) = delete;
  os_critical_section& operator=(const os_critical_section&) = delete;

  // Waits until no other thread holds it; the thread that holds it may take it again.
  void lock() { m_mutex.lock(); }
  bool try_lock() { return m_mutex.try_lock(); }  // false when another thread holds it
  // Releases one lock of the calling thread.
  void unlock() { m_mutex.unlock(); }

 private:
  std::recursive_mutex m_mutex;
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H
