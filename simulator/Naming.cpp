#include <simulator/Naming.h>

#include <simulator/Orb.h>

namespace vq::sim {
namespace {

constexpr std::chrono::milliseconds kPatience{5000};

CosNaming::Name NameOf(const std::string& id, const std::string& kind) {
  CosNaming::Name name;
  name.length(1);
  name[0].id = id.c_str();
  name[0].kind = kind.c_str();
  return name;
}

}  // namespace

Naming::Naming(CORBA::ORB_ptr orb) {
  CORBA::Object_var object = orb->resolve_initial_references("NameService");
  LimitCalls(object, kPatience);
  m_root = CosNaming::NamingContext::_narrow(object);
  if (CORBA::is_nil(m_root)) throw CORBA::INV_OBJREF();
  LimitCalls(m_root, kPatience);
}

void Naming::Register(const std::string& server, const std::string& kind,
                      const std::map<std::string, CORBA::Object_var>& services) {
  Entry entry{NameOf(server, kind), CosNaming::NamingContext::_nil(), services};
  try {
    entry.context = m_root->bind_new_context(entry.contextName);
  } catch (const CosNaming::NamingContext::AlreadyBound&) {
    CORBA::Object_var object = m_root->resolve(entry.contextName);
    entry.context = CosNaming::NamingContext::_narrow(object);
    if (CORBA::is_nil(entry.context)) throw CORBA::INV_OBJREF();
  }
  LimitCalls(entry.context, kPatience);
  m_entries.push_back(entry);
  for (const auto& [service, object] : services) {
    entry.context->rebind(NameOf(service, ""), object);
  }
}

void Naming::Unbind(const Entry& entry) {
  for (const auto& [service, object] : entry.services) {
    const CosNaming::Name name = NameOf(service, "");
    try {
      CORBA::Object_var bound = entry.context->resolve(name);
      if (bound->_is_equivalent(object)) entry.context->unbind(name);
    } catch (const CORBA::UserException&) {  // not there any more
    }
  }
}

void Naming::Remove(const Entry& entry) {
  Unbind(entry);
  try {
    entry.context->destroy();
    m_root->unbind(entry.contextName);
  } catch (const CORBA::UserException&) {  // not empty: somebody else's names are in it
  }
}

void Naming::Unregister() noexcept {
  for (const Entry& entry : m_entries) {
    try {
      Remove(entry);
    } catch (const CORBA::Exception&) {  // the naming service is gone
    }
  }
  m_entries.clear();
}

}  // namespace vq::sim
