// Rich error information: an object that carries the texts, and the one object that each thread holds.
#include <atomic>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>

#include "base/text.h"
#include "ovfile/component.h"
#include "platform/object.h"

namespace {

/// Answered by objects of this class alone.
constexpr IID own_identifier{0x5C1D7B0E, 0x6A0F, 0x4E55, {0x9B, 0x21, 0x3F, 0xD8, 0x6C, 0x07, 0xE2, 0x94}};

/// Each reference to one counts as what the module's callers hold, since its code is part of the module; but
/// not that of a thread (below).
class error_info final : public ICreateErrorInfo, public IErrorInfo {
 public:
  error_info() noexcept { ++ovf::module_lock_count(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid == IID_IErrorInfo) {
      *out = static_cast<IErrorInfo*>(this);
    } else if (iid == IID_ICreateErrorInfo || iid == IID_IUnknown || iid == own_identifier) {
      *out = static_cast<ICreateErrorInfo*>(this);
    } else {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ++ovf::module_lock_count();
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    --ovf::module_lock_count();
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

bool is_own(IErrorInfo& info) noexcept {
  void* found = nullptr;
  if (info.QueryInterface(own_identifier, &found) != S_OK) return false;
  static_cast<ICreateErrorInfo*>(found)->Release();
  return true;
}

/// What a thread holds, let go when the thread ends. Until then the loader keeps the library in memory,
/// whoever unloads it: the destructor is part of it. So this reference does not keep the module.
class held_error {
 public:
  held_error() = default;
  held_error(const held_error&) = delete;
  held_error& operator=(const held_error&) = delete;
  ~held_error() { hold(nullptr); }

  /// Takes a reference of its own.
  void hold(IErrorInfo* other) {
    if (other != nullptr) other->AddRef();
    if (IErrorInfo* old = hand_out()) old->Release();
    info_ = other;
    is_own_ = other != nullptr && is_own(*other);
    if (is_own_) --ovf::module_lock_count();
  }
  /// What it held, with its reference.
  IErrorInfo* hand_out() noexcept {
    if (std::exchange(is_own_, false)) ++ovf::module_lock_count();
    return std::exchange(info_, nullptr);
  }

 private:
  IErrorInfo* info_ = nullptr;
  bool is_own_ = false;
};

/// In the memory that every thread has from its beginning: where a library is loaded later, the C library
/// would look for some at the first use, and end the process where there is none.
#define OVFILE_EARLY [[gnu::tls_model("initial-exec")]]

OVFILE_EARLY thread_local held_error thread_error;
/// Whether the thread has held an error. Before it has, `thread_error` is not touched: its destructor would
/// be registered, and the C library ends the process where it finds no memory for that.
OVFILE_EARLY thread_local bool has_held = false;

/// More than the C library takes to register a destructor.
bool has_memory() noexcept {
  void* volatile some = std::malloc(256);
  const bool is_there = some != nullptr;
  std::free(some);
  return is_there;
}

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_POINTER;
  *pperrinfo = new (std::nothrow) error_info;
  return *pperrinfo == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* perrinfo) {
  if (reserved != 0) return E_INVALIDARG;
  if (perrinfo == nullptr && !has_held) return S_OK;
  if (!has_held && !has_memory()) return E_OUTOFMEMORY;
  has_held = true;
  thread_error.hold(perrinfo);
  return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_POINTER;
  *pperrinfo = nullptr;
  if (reserved != 0) return E_INVALIDARG;
  if (!has_held) return S_FALSE;
  *pperrinfo = thread_error.hand_out();
  return *pperrinfo == nullptr ? S_FALSE : S_OK;
}
