// The object that a server calls back while a connection is tried. CORBAServantWrapper.h shows its
// use.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H

#include <atomic>

#include <support/orb/OrbProduct.h>
#include <vq_client_common/connectivity/CORBAServantWrapper.h>
#include <vq_idl/CallbackRepositoryS.h>

// Thread contract: CRB_Ping runs on an ORB's thread, WasCalledBack on any.
class TestCallbackI : public CORBAServantWrapper<POA_TestCallback> {
 public:
  using CORBAServantWrapper::CORBAServantWrapper;

  void CRB_Ping() override {
    m_overOwnConnection = vq::orb::CameOverOwnConnection();
    m_calledBack = true;
  }
  bool WasCalledBack() const { return m_calledBack; }

  // After a call back: whether it came over a connection of this process.
  bool WasOverOwnConnection() const { return m_overOwnConnection; }

 protected:
  ~TestCallbackI() override = default;

 private:
  std::atomic<bool> m_calledBack = false;
  std::atomic<bool> m_overOwnConnection = false;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_TESTCALLBACKI_H
