// A servant that makes its object reference on demand and is deactivated when it is dropped.
//
//   class TestCallbackI : public CORBAServantWrapper<POA_TestCallback> { ... };
//
//   const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb->GetChildPoa()));
//   repository->CRB_RegisterCallback(user, servant->GetReference(), true);
//   ...
//   // The end of the scope deactivates it: later calls are refused, one that is under way ends
//   // first, and only then is the servant destroyed.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_CORBASERVANTWRAPPER_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_CORBASERVANTWRAPPER_H

#include <memory>

#include <support/orb/Corba.h>

// Thread contract: GetReference and Deactivate belong to the owner's thread. The operations of the
// interface are called on the ORB's threads, also while the owner drops the servant.
template <class Skeleton>
class CORBAServantWrapper : public Skeleton {
 public:
  explicit CORBAServantWrapper(PortableServer::POA_ptr poa)
      : m_poa(PortableServer::POA::_duplicate(poa)) {}
  CORBAServantWrapper(const CORBAServantWrapper&) = delete;
  CORBAServantWrapper& operator=(const CORBAServantWrapper&) = delete;

  // The reference under which clients call this servant; the first call activates it. Borrowed.
  // Raises CORBA::SystemException and the exceptions of the POA.
  CORBA::Object_ptr GetReference() {
    if (!m_active) {
      m_id = m_poa->activate_object(this);
      m_active = true;
    }
    if (CORBA::is_nil(m_reference.in())) m_reference = m_poa->id_to_reference(m_id.in());
    return m_reference.in();
  }

  // Takes the servant out of its POA; does nothing when it is not active. Never raises.
  void Deactivate() {
    if (!m_active) return;
    m_active = false;
    m_reference = CORBA::Object::_nil();
    try {
      m_poa->deactivate_object(m_id.in());
    } catch (const CORBA::Exception&) {  // The POA has ended, and the activation with it.
    }
  }

  PortableServer::POA_ptr _default_POA() override {
    return PortableServer::POA::_duplicate(m_poa.in());
  }

 protected:
  // The last holder destroys it: the owner, or the POA after a call that outlives the owner.
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

// Owns one servant; dropping it deactivates the servant.
template <class Servant>
using ServantPtr = std::unique_ptr<Servant, DropServant>;

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_CORBASERVANTWRAPPER_H
