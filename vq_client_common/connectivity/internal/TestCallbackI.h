// The object that a server calls back while a connection is tried, and what deactivates it.
//
//   const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb->GetChildPoa()));
//   repository->CRB_RegisterCallback(user, servant->GetReference(), true);
//
// The end of the scope deactivates the servant: the ORB refuses later calls. The servant is
// destroyed after the last call that is being processed.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_TESTCALLBACKI_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_TESTCALLBACKI_H

#include <atomic>
#include <memory>
#include <new>

#include <support/orb/Corba.h>
#include <support/orb/OrbProduct.h>
#include <vq_idl/CallbackRepositoryS.h>

// A servant of the interface of `Skeleton` that makes its object reference on demand.
//
// GetReference and Deactivate are called on the owner's thread; the operations of the interface are
// called on the ORB's threads, also while the owner drops the servant.
template <class Skeleton>
class CORBAServantWrapper : public Skeleton {
 public:
  explicit CORBAServantWrapper(PortableServer::POA_ptr poa)
      : m_poa(PortableServer::POA::_duplicate(poa)) {}
  CORBAServantWrapper(const CORBAServantWrapper&) = delete;
  CORBAServantWrapper& operator=(const CORBAServantWrapper&) = delete;

  // The reference for calls to this servant, which owns it; the first call activates the servant.
  // Raises CORBA::SystemException and the exceptions of the POA.
  CORBA::Object_ptr GetReference() {
    if (!m_active) {
      m_id = m_poa->activate_object(this);
      m_active = true;
    }
    if (CORBA::is_nil(m_reference.in())) m_reference = m_poa->id_to_reference(m_id.in());
    return m_reference.in();
  }

  // Deactivates the servant in its POA; does nothing when it is not active. Never raises.
  void Deactivate() {
    if (!m_active) return;
    m_active = false;
    const CORBA::Object_var reference = m_reference._retn();
    try {
      // Raises when the ORB has ended: a POA of TAO would access freed memory.
      if (!CORBA::is_nil(reference.in())) vq::orb::StringifyReference(reference.in());
      m_poa->deactivate_object(m_id.in());
    } catch (const CORBA::Exception&) {  // the ORB has ended
    } catch (const std::bad_alloc&) {    // the ORB's end deactivates it
    }
  }

  PortableServer::POA_ptr _default_POA() override {
    return PortableServer::POA::_duplicate(m_poa.in());
  }

 protected:
  // The last holder destroys the servant: the owner, or the POA after a call that lasts longer.
  ~CORBAServantWrapper() override = default;

 private:
  PortableServer::POA_var m_poa;
  PortableServer::ObjectId_var m_id;
  CORBA::Object_var m_reference;
  bool m_active = false;
};

struct DropServant {
  template <class Servant>
  void operator()(Servant* servant) const {
    servant->Deactivate();
    servant->_remove_ref();
  }
};

// Owns one servant and deactivates it at the end.
template <class Servant>
using ServantPtr = std::unique_ptr<Servant, DropServant>;

// Notes a call of the server. CRB_Ping runs on an ORB's thread; the two questions may be asked on
// any.
class TestCallbackI : public CORBAServantWrapper<POA_TestCallback> {
 public:
  using CORBAServantWrapper::CORBAServantWrapper;

  void CRB_Ping() override {
    m_overOwnConnection = vq::orb::CameOverOwnConnection();
    m_calledBack = true;
  }
  bool WasCalledBack() const { return m_calledBack; }

  // After a callback: whether it came over a connection that this process opened.
  bool WasOverOwnConnection() const { return m_overOwnConnection; }

 protected:
  ~TestCallbackI() override = default;

 private:
  std::atomic<bool> m_calledBack = false;
  std::atomic<bool> m_overOwnConnection = false;
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_TESTCALLBACKI_H
