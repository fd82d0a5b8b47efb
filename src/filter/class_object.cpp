#include "filter/class_object.h"

#include <atomic>

#include "filter/filter_object.h"
#include "filter/module_count.h"

namespace ovf::filter {

namespace {

void unlock_server() noexcept {
  LONG held = server_locks();
  while (held > 0 && !server_locks().compare_exchange_weak(held, held - 1)) {
  }
}

class evaluator_class final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (!(iid == IID_IUnknown || iid == IID_IClassFactory)) return E_NOINTERFACE;
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ++module_count();
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    --module_count();
    return --references_;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return outer != nullptr ? CLASS_E_NOAGGREGATION : filter_object::create(iid, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock != 0) {
      ++server_locks();
    } else {
      unlock_server();
    }
    return S_OK;
  }

 private:
  std::atomic<ULONG> references_{0};
};

constinit evaluator_class the_class;

}  // namespace

IClassFactory& class_object() noexcept { return the_class; }

}  // namespace ovf::filter
