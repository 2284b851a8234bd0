// What the library asks of the machine that it runs on.
//
//   std::string host;
//   if (!vq::HostName(host)) return 0;
//
// A test that needs a machine which refuses puts its own in place for a while:
//
//   class NoHostName : public vq::Platform {
//     bool HostName(std::string&) const override { return false; }
//   };
//   const NoHostName machine;
//   const vq::PlatformReplacement replaced(machine);
#ifndef VQ_SUPPORT_FOUNDATIONS_PLATFORM_H
#define VQ_SUPPORT_FOUNDATIONS_PLATFORM_H

#include <cstddef>
#include <string>

namespace vq {

// The questions, answered by the operating system unless overridden. Thread contract: const and
// without state, so every operation may be called from any thread.
class Platform {
 public:
  virtual ~Platform() = default;

  // Puts the machine's name into `name`. False when the system does not tell it, or when it has
  // more than 254 bytes; `name` is then empty.
  virtual bool HostName(std::string& name) const;

  // Puts the name of the account that the process runs under (its effective user) into `name`.
  // False when there is no such account, or when the name and a closing zero byte do not fit into
  // `size` bytes; `name` is then empty.
  // The name is kept for as long as that user is the effective one.
  virtual bool AccountName(std::string& name, std::size_t size) const;

  // The account's home directory as the account data base has it, without a closing "/". Empty when
  // there is no such account.
  virtual std::string AccountHome() const;

  // Where settings that hold for the whole machine lie, with a closing "/": "/etc/vq/".
  virtual std::string MachineSettingsDirectory() const;

  // The one in force.
  static const Platform& Current();
};

// Puts `platform` in force for the life of this object and the former one back afterwards. The
// caller keeps `platform` alive for as long. For tests: replacements nest and are made and undone
// on one thread while no other asks.
class PlatformReplacement {
 public:
  explicit PlatformReplacement(const Platform& platform);
  ~PlatformReplacement();
  PlatformReplacement(const PlatformReplacement&) = delete;
  PlatformReplacement& operator=(const PlatformReplacement&) = delete;

 private:
  const Platform* m_former;
};

// Ask the platform in force.
inline bool HostName(std::string& name) {
  return Platform::Current().HostName(name);
}
inline bool AccountName(std::string& name, std::size_t size) {
  return Platform::Current().AccountName(name, size);
}

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_PLATFORM_H
