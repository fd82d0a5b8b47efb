// Lifetime and identity of the library's component objects. A class derives from
// `component_class<itself, its interfaces…>`, names its identifiers, and gets reference counting,
// aggregation, QueryInterface, ISupportErrorInfo, IProvideClassInfo and late binding from here.
#pragma once

#include <atomic>
#include <memory>
#include <new>
#include <type_traits>

#include "ovfile/ovfile.h"
#include "ovfile/progress.h"
#include "platform/dispatch.h"
#include "platform/type_library.h"

namespace ovf {

/// What the module's callers hold of it, apart from server locks: live objects, and references to class
/// objects.
std::atomic<long>& module_lock_count() noexcept;

template <class Interface>
constexpr IID missing_identifier() noexcept {
  static_assert(sizeof(Interface) == 0, "an interface says its identifier by a specialisation of iid_of");
  return {};
}

/// The identifier of an interface type. One without a specialisation does not compile.
template <class Interface>
inline constexpr IID iid_of = missing_identifier<Interface>();
template <>
inline constexpr IID iid_of<IOvTable> = IID_IOvTable;
template <>
inline constexpr IID iid_of<IOvSchema> = IID_IOvSchema;
template <>
inline constexpr IID iid_of<IOvTableADO> = IID_IOvTableADO;
template <>
inline constexpr IID iid_of<IZuCommonDataTable> = IID_IZuCommonDataTable;
template <>
inline constexpr IID iid_of<IZuCommonDataSchema> = IID_IZuCommonDataSchema;
template <>
inline constexpr IID iid_of<IOvTableMaintenance> = IID_IOvTableMaintenance;
template <>
inline constexpr IID iid_of<IOvProgressSource> = IID_IOvProgressSource;

/// A dual interface whose late-bound half runs through the interface's own table of methods.
template <class Interface>
struct dual : Interface {
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) final {
    return methods_of<Interface>().type_info_count(count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) final {
    return methods_of<Interface>().type_info(index, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) final {
    return methods_of<Interface>().ids_of_names(iid, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) final {
    return methods_of<Interface>().invoke(static_cast<Interface*>(this), id, iid, flags, arguments, result,
                                          exception, bad_argument);
  }
};

/// An interface as a base class: dual ones with their late-bound half, others as they are.
template <class Interface>
using implemented = std::conditional_t<std::is_base_of_v<IDispatch, Interface>, dual<Interface>, Interface>;

/// Base of a creatable class. `Default` is the interface that IDispatch answers. `Class` has a default
/// constructor and no virtual destructor; it is destroyed by the last release.
template <class Class, class Default, class... Others>
class component_class : public implemented<Default>,
                        public implemented<Others>...,
                        public ISupportErrorInfo,
                        public IProvideClassInfo {
 public:
  component_class(const component_class&) = delete;
  component_class& operator=(const component_class&) = delete;

  /// Makes an object, alone or inside `outer`, and hands out its `iid`. Inside an outer object only
  /// IID_IUnknown may be asked for, and the answer is the inner unknown. Statuses: E_POINTER,
  /// CLASS_E_NOAGGREGATION (another interface asked for), E_OUTOFMEMORY, E_NOINTERFACE.
  static HRESULT create(IUnknown* outer, REFIID iid, void** out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr && !(iid == IID_IUnknown)) return CLASS_E_NOAGGREGATION;
    try {
      auto* object = new Class;
      object->controlling_ = outer != nullptr ? outer : &object->inner_;
      const HRESULT status = object->inner_.QueryInterface(iid, out);
      object->inner_.Release();
      return status;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_FAIL;
    }
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) final {
    return controlling_->QueryInterface(iid, out);
  }
  ULONG STDMETHODCALLTYPE AddRef() final { return controlling_->AddRef(); }
  ULONG STDMETHODCALLTYPE Release() final { return controlling_->Release(); }

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) final {
    return iid == iid_of<Default> || (... || (iid == iid_of<Others>)) ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) final {
    return find_type_info(Class::class_id, info);
  }

 protected:
  component_class() { ++module_lock_count(); }
  ~component_class() { --module_lock_count(); }

 private:
  /// The unknown that an outer object holds: counts references and knows the interfaces.
  class inner_unknown final : public IUnknown {
   public:
    explicit inner_unknown(component_class& owner) : owner_(owner) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
      if (out == nullptr) return E_POINTER;
      *out = iid == IID_IUnknown ? static_cast<void*>(this) : owner_.find(iid);
      if (*out == nullptr) return E_NOINTERFACE;
      // Every interface but the inner unknown counts on the controlling object.
      if (iid == IID_IUnknown) {
        AddRef();
      } else {
        owner_.controlling_->AddRef();
      }
      return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
      const ULONG left = --references_;
      if (left == 0) {
        references_ = 1;  // what the destructor hands out and takes back must not destroy a second time
        delete static_cast<Class*>(&owner_);
      }
      return left;
    }

   private:
    component_class& owner_;
    std::atomic<ULONG> references_{1};
  };

  void* find(REFIID iid) noexcept {
    if (iid == iid_of<Default> || iid == IID_IDispatch) return static_cast<Default*>(this);
    if (iid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
    // Nobody can be told of a class where there are no descriptions.
    if (iid == IID_IProvideClassInfo && has_type_library()) return static_cast<IProvideClassInfo*>(this);
    void* found = nullptr;
    (void)(... || (iid == iid_of<Others> && (found = static_cast<Others*>(this)) != nullptr));
    return found;
  }

  inner_unknown inner_{*this};
  IUnknown* controlling_ = &inner_;
};

}  // namespace ovf
