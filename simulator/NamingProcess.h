// A naming service of the simulator's own: the ORB product's program, as a child process on a free
// port of the loopback address, with its data in a temporary directory.
//
//   const NamingProcess naming;        // raises std::runtime_error when it does not start
//   options.naming = naming.Reference();
#ifndef VQ_SIMULATOR_NAMINGPROCESS_H
#define VQ_SIMULATOR_NAMINGPROCESS_H

#include <string>

#include <sys/types.h>

namespace vq::sim {

// To be made before the process has a second thread. The child ends with this object, and with the
// process however that ends.
class NamingProcess {
 public:
  NamingProcess();
  ~NamingProcess();
  NamingProcess(const NamingProcess&) = delete;
  NamingProcess& operator=(const NamingProcess&) = delete;

  std::string Reference() const;

 private:
  bool Start();
  void Stop();
  void RemoveDirectory() const;

  std::string m_directory;
  int m_port = 0;
  pid_t m_process = -1;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_NAMINGPROCESS_H
