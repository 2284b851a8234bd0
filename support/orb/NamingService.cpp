#include <support/orb/NamingService.h>

#include <algorithm>
#include <string>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/CorbaText.h>
#include <support/orb/OrbProduct.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

}  // namespace

NamingService::NamingService(OrbInstance& instance, const OrbSettings& settings)
    : m_timeOut(settings.callTimeout) {
  const auto add = [this](CORBA::Object_var object) {
    // The type is known; asking the service for it would cost another call.
    m_roots.push_back(CosNaming::NamingContext::_unchecked_narrow(object.in()));
  };
  const std::vector<std::string> references = NamingReferences(settings);
  if (references.size() < 2) {
    add(instance.NamingService());
  } else {
    for (const std::string& one : references) add(instance.Orb()->string_to_object(one.c_str()));
  }
}

void NamingService::Reach() {
  Ask([](CosNaming::NamingContext_ptr root) {
    if (CORBA::is_nil(root) || root->_non_existent()) {
      throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
    }
  });
}

CORBA::Object_ptr NamingService::Resolve(const CosNaming::Name& name) {
  CORBA::Object_var object;
  Ask([&](CosNaming::NamingContext_ptr root) { object = root->resolve(name); });
  return object._retn();
}

void NamingService::Ask(const std::function<void(CosNaming::NamingContext_ptr)>& call) {
  const std::size_t count = m_roots.size();
  const std::size_t first = m_answering;
  auto end = CallDeadline::Clock::now() + m_timeOut;
  if (const auto limit = CallDeadline::Current()) end = std::min(end, *limit);
  for (std::size_t tried = 0;; ++tried) {
    const std::size_t current = (first + tried) % count;
    const CallDeadline share((end - CallDeadline::Clock::now()) / static_cast<int>(count - tried));
    try {
      call(m_roots[current].in());
      m_answering = current;
      return;
    } catch (const CORBA::SystemException& e) {
      if (tried + 1 == count) throw;
      VQ_LOG(diagModule, 2) << "The naming service does not answer at address " << current + 1
                            << " of " << count << ": " << e;
    }
  }
}

}  // namespace vq::orb
