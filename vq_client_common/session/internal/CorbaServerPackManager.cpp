#include <vq_client_common/session/internal/CorbaServerPackManager.h>

#include <mutex>

#include <support/diagnostics/TDiag.h>

namespace {

TDiagRegister diagModule("CorbaServerPackManager");

}  // namespace

CorbaServerPackManager* CorbaServerPackManager::Get() {
  if (pCorbaServerPackManager == nullptr) pCorbaServerPackManager = new CorbaServerPackManager;
  return pCorbaServerPackManager;
}

CORBA::Object_ptr CorbaServerPackManager::FindItem(const char* name, SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "CorbaServerPackManager::FindItem");
  const std::lock_guard lock(m_lock);
  const auto found = m_items.find(Key(name, serverId));
  return found != m_items.end() ? found->second : CORBA::Object::_nil();
}

void CorbaServerPackManager::InsertItem(const char* name, SERVER_ID serverId,
                                        CORBA::Object_ptr object) {
  const TDiagFunc diag(diagModule, "CorbaServerPackManager::InsertItem");
  // Intentional: no lock, and an earlier reference is not released: its callers may still use it.
  m_items[Key(name, serverId)] = object;
}

void CorbaServerPackManager::Reset() {
  const TDiagFunc diag(diagModule, "CorbaServerPackManager::Reset");
  const std::lock_guard lock(m_lock);
  for (const auto& [key, object] : m_items) {
    VQ_LOG(diag, 5) << "Release CRB object - " << key.first << ":" << static_cast<int>(key.second);
    if (object != nullptr) CORBA::release(object);
  }
  m_items.clear();
}

void CorbaServerPackManager::Exchange(Items& items) {
  const std::lock_guard lock(m_lock);
  m_items.swap(items);
}

void CorbaServerPackManager::DiagPdefWrapper(int level, const std::string& text) {
  VQ_LOG(diagModule, level) << text;
}
