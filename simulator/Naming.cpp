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

// The naming context behind a reference, with a limit on its calls. Raises when it is none.
CosNaming::NamingContext_ptr Context(CORBA::Object_ptr object) {
  const CORBA::Object_var limited = vq::orb::WithCallLimit(object, kPatience);
  CosNaming::NamingContext_var context = CosNaming::NamingContext::_narrow(limited.in());
  if (CORBA::is_nil(context.in())) throw CORBA::INV_OBJREF();
  // omniORB keeps the limit with the reference that narrowing made anew.
  const CORBA::Object_var again = vq::orb::WithCallLimit(context.in(), kPatience);
  return CosNaming::NamingContext::_unchecked_narrow(again.in());
}

}  // namespace

Naming::Naming(CORBA::ORB_ptr orb) {
  const CORBA::Object_var object = orb->resolve_initial_references("NameService");
  m_root = Context(object.in());
}

void Naming::Register(const std::string& server, const std::string& kind,
                      const std::map<std::string, CORBA::Object_var>& services) {
  Entry entry{NameOf(server, kind), CosNaming::NamingContext::_nil(), services};
  try {
    const CosNaming::NamingContext_var made = m_root->bind_new_context(entry.contextName);
    entry.context = Context(made.in());
  } catch (const CosNaming::NamingContext::AlreadyBound&) {
    const CORBA::Object_var object = m_root->resolve(entry.contextName);
    entry.context = Context(object.in());
  }
  m_entries.push_back(entry);
  for (const auto& [service, object] : services) {
    entry.context->rebind(NameOf(service, ""), object.in());
  }
}

void Naming::Remove(const Entry& entry) {
  for (const auto& [service, object] : entry.services) {
    const CosNaming::Name name = NameOf(service, "");
    try {
      CORBA::Object_var bound = entry.context->resolve(name);
      if (bound->_is_equivalent(object.in())) entry.context->unbind(name);
    } catch (const CORBA::UserException&) {  // it has been removed already
    }
  }
  try {
    entry.context->destroy();
    m_root->unbind(entry.contextName);
  } catch (const CORBA::UserException&) {  // not empty: it holds names of other servers
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
