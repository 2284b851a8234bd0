// The object that a server calls back while a connection is tried. CORBAServantWrapper.h shows its
// use.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H

#include <atomic>

#include <vq_client_common/connectivity/CORBAServantWrapper.h>
#include <vq_idl/CallbackRepositoryS.h>

// Thread contract: CRB_Ping runs on an ORB's thread, WasCalledBack on any.
class TestCallbackI : public CORBAServantWrapper<POA_TestCallback> {
 public:
  using CORBAServantWrapper::CORBAServantWrapper;

  void CRB_Ping() override { m_calledBack = true; }
  bool WasCalledBack() const { return m_calledBack; }

 protected:
  ~TestCallbackI() override = default;

 private:
  std::atomic<bool> m_calledBack = false;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H
