// Rich error information: an object that carries the texts, and the one object that each thread holds.
#include <atomic>
#include <new>
#include <string>
#include <utility>

#include "ovfile/component.h"
#include "platform/text.h"

namespace {

class error_info final : public ICreateErrorInfo, public IErrorInfo {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid == IID_IErrorInfo) {
      *out = static_cast<IErrorInfo*>(this);
    } else if (iid == IID_ICreateErrorInfo || iid == IID_IUnknown) {
      *out = static_cast<ICreateErrorInfo*>(this);
    } else {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) override {
    guid_ = guid;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR text) override { return set(source_, text); }
  HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR text) override { return set(description_, text); }
  HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR text) override { return set(help_file_, text); }
  HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD context) override {
    help_context_ = context;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
    if (guid == nullptr) return E_POINTER;
    *guid = guid_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetSource(BSTR* text) override { return get(source_, text); }
  HRESULT STDMETHODCALLTYPE GetDescription(BSTR* text) override { return get(description_, text); }
  HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* text) override { return get(help_file_, text); }
  HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
    if (context == nullptr) return E_POINTER;
    *context = help_context_;
    return S_OK;
  }

 private:
  using entry = std::pair<bool, ovf::wide>;  ///< whether it was set, and to what

  ~error_info() = default;

  static HRESULT set(entry& place, LPOLESTR value) noexcept {
    try {
      place = value == nullptr ? entry() : entry(true, value);
      return S_OK;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
  static HRESULT get(const entry& place, BSTR* out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (!place.first) return S_OK;
    *out = SysAllocStringLen(place.second.data(), static_cast<UINT>(place.second.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
  }

  std::atomic<ULONG> references_{1};
  GUID guid_{};
  entry source_;
  entry description_;
  entry help_file_;
  DWORD help_context_ = 0;
};

/// What a thread holds, let go when the thread ends. Until then the loader keeps the library in memory,
/// whoever unloads it: the destructor is part of it. An object that a host has taken is not counted as one of
/// the module's, as it is not where the system brings error information along; the host releases it before
/// it unloads the library.
struct held_error {
  IErrorInfo* info = nullptr;

  IErrorInfo* exchange(IErrorInfo* other) { return std::exchange(info, other); }
  ~held_error() {
    if (IErrorInfo* old = exchange(nullptr)) old->Release();
  }
};

thread_local held_error thread_error;

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_POINTER;
  *pperrinfo = new (std::nothrow) error_info;
  return *pperrinfo == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* perrinfo) {
  if (reserved != 0) return E_INVALIDARG;
  if (perrinfo != nullptr) perrinfo->AddRef();
  if (IErrorInfo* old = thread_error.exchange(perrinfo)) old->Release();
  return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_POINTER;
  *pperrinfo = nullptr;
  if (reserved != 0) return E_INVALIDARG;
  *pperrinfo = thread_error.exchange(nullptr);
  return *pperrinfo == nullptr ? S_FALSE : S_OK;
}
