// The class objects, through which hosts make the library's objects, and when the module may go.
#include <atomic>

#include "platform/object.h"
#include "schema/ov_schema.h"
#include "table/ov_table.h"
#include "table/ov_table_ado.h"

namespace ovf {

namespace {

/// Counted apart from the objects, so that a host that unlocks once too often cannot hide one of them.
std::atomic<long> server_locks{0};

void unlock_server() noexcept {
  long held = server_locks;
  while (held > 0 && !server_locks.compare_exchange_weak(held, held - 1)) {
  }
}

using create_function = HRESULT (*)(IUnknown* outer, REFIID iid, void** out) noexcept;

/// One for each class, for the life of the module. Every reference to it holds the module, as a live
/// object does, so there is nothing to destroy at the last one.
class class_object final : public IClassFactory {
 public:
  constexpr class_object(const CLSID& id, create_function create) : id_(id), create_(create) {}

  REFCLSID id() const noexcept { return id_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (!(iid == IID_IUnknown || iid == IID_IClassFactory)) return E_NOINTERFACE;
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ++module_lock_count();
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    --module_lock_count();
    return --references_;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    return create_(outer, iid, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock != 0) {
      ++server_locks;
    } else {
      unlock_server();
    }
    return S_OK;
  }

 private:
  CLSID id_;
  create_function create_;
  std::atomic<ULONG> references_{0};
};

class_object class_objects[] = {
    {CLSID_OvTable, &COvTable::create},
    {CLSID_OvSchema, &COvSchema::create},
    {CLSID_OvTableADO, &COvTableADO::create},
};

}  // namespace

}  // namespace ovf

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  for (ovf::class_object& candidate : ovf::class_objects) {
    if (candidate.id() == clsid) return candidate.QueryInterface(iid, ppv);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return ovf::module_lock_count() == 0 && ovf::server_locks == 0 ? S_OK : S_FALSE;
}
