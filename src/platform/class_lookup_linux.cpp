// Classes by identifier: those that this process registered, the library's own, then registered modules.
#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/caught.h"
#include "platform/class_registry_linux.h"
#include "platform/own_classes.h"

namespace ovf {

namespace {

struct registered_object {
  DWORD cookie;
  CLSID id;
  IUnknown* object;
  DWORD context;
  DWORD flags;
};

class class_table {
 public:
  DWORD add(REFCLSID id, IUnknown* object, DWORD context, DWORD flags) {
    const std::lock_guard lock(mutex_);
    objects_.push_back({++last_cookie_, id, object, context, flags});
    object->AddRef();
    return last_cookie_;
  }

  /// Hands the table's reference over; null when there is no such entry.
  IUnknown* take(DWORD cookie) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(objects_.begin(), objects_.end(),
                                    [&](const registered_object& entry) { return entry.cookie == cookie; });
    if (found == objects_.end()) return nullptr;
    IUnknown* object = found->object;
    objects_.erase(found);
    return object;
  }

  /// With a reference for the caller. An object for single use answers one request.
  IUnknown* find(REFCLSID id, DWORD context) {
    const std::lock_guard lock(mutex_);
    for (registered_object& entry : objects_) {
      if (!(entry.id == id) || (entry.context & context) == 0) continue;
      if (entry.flags == REGCLS_SINGLEUSE) entry.context = 0;
      entry.object->AddRef();
      return entry.object;
    }
    return nullptr;
  }

 private:
  std::mutex mutex_;
  std::vector<registered_object> objects_;
  DWORD last_cookie_ = 0;
};

class_table& process_classes() {
  // Never destroyed: an object might be let go of after the end of main, when its module is gone.
  static auto* table = new class_table;
  return *table;
}

HRESULT find_class_object(REFCLSID id, DWORD context, REFIID iid, void** out) {
  if (IUnknown* object = process_classes().find(id, context)) {
    const HRESULT status = object->QueryInterface(iid, out);
    object->Release();
    return status;
  }
  if ((context & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
  if (find_own_class(id) != nullptr) return DllGetClassObject(id, iid, out);
  const std::optional<std::string> module = registered_module(id);
  return module ? class_object_of_module(*module, id, iid, out) : REGDB_E_CLASSNOTREG;
}

}  // namespace

}  // namespace ovf

HRESULT CoGetClassObject(REFCLSID clsid, DWORD dwClsContext, void*, REFIID iid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  return ovf::caught([&] { return ovf::find_class_object(clsid, dwClsContext, iid, ppv); });
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* pUnkOuter, DWORD dwClsContext, REFIID iid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  void* found = nullptr;
  HRESULT status = CoGetClassObject(clsid, dwClsContext, nullptr, IID_IClassFactory, &found);
  if (FAILED(status)) return status;
  auto* factory = static_cast<IClassFactory*>(found);
  status = factory->CreateInstance(pUnkOuter, iid, ppv);
  factory->Release();
  return status;
}

HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* pUnk, DWORD dwClsContext, DWORD flags,
                              DWORD* lpdwRegister) {
  if (lpdwRegister == nullptr) return E_POINTER;
  *lpdwRegister = 0;
  if (pUnk == nullptr) return E_INVALIDARG;
  return ovf::caught([&] {
    *lpdwRegister = ovf::process_classes().add(clsid, pUnk, dwClsContext, flags);
    return S_OK;
  });
}

HRESULT CoRevokeClassObject(DWORD dwRegister) {
  IUnknown* object = ovf::process_classes().take(dwRegister);
  // Answered outside the lock: letting go may come back here.
  if (object == nullptr) return CO_E_OBJNOTREG;
  object->Release();
  return S_OK;
}
