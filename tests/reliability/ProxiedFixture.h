// A session with its naming service and its server each behind a proxy, and a site in which every
// remote function's success differs from its failure where it can.
#ifndef VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H
#define VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H

#include <memory>

#include <tests/fixture/FaultProxy.h>
#include <tests/fixture/SessionFixture.h>

#include "RemoteFunctions.h"

namespace vq::test {

class ProxiedFixture : public SessionFixture {
 protected:
  ProxiedFixture();
  void SetUp() override;

  // The time-out of connections and calls, 10 seconds at first. Ends the ORB.
  void SetTimeOut(std::chrono::milliseconds timeOut);

  // The server, started anew on the same port; the first time on any.
  void Restart();

  // Brings the process to where the function is called, whatever was before.
  void Prepare(const RemoteFunction& function);
  void Forget();  // the operations and the log so far

  std::unique_ptr<Server> m_server;
  std::unique_ptr<FaultProxy> m_proxy, m_namingProxy;

 private:
  // Settled beforehand: a port that the system chose cannot be had again at once.
  const int m_port;
};

}  // namespace vq::test

#endif  // VQ_TESTS_RELIABILITY_PROXIEDFIXTURE_H
