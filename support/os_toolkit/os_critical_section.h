// A lock that one thread holds at a time; the thread that holds it may enter again.
//
//   os_critical_section section(false);
//   const std::lock_guard<os_critical_section> guard(section);
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H

#include <mutex>

#include <support/Export.h>

// lock waits until no other thread holds it; try_lock returns false when one does. Each lock or
// successful try_lock is undone by one unlock of the same thread. The object outlives every holder.
class VQ_CLIENT_COMMON_API os_critical_section : public std::recursive_mutex {
 public:
  // With true the calling thread holds it from the start.
  explicit os_critical_section(bool locked) {
    if (locked) lock();
  }
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_CRITICAL_SECTION_H
