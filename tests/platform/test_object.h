// Component objects for tests: one with a default property, and a class object that makes it. Both
// count their references and are not destroyed by the last one.
#pragma once

#include "ovfile/component.h"

namespace ovtest {

/// Answers IUnknown, IDispatch; its default property is `value` (nothing else can be called).
class test_object : public IDispatch {
 public:
  test_object() { VariantInit(&value); }
  test_object(const test_object&) = delete;
  test_object& operator=(const test_object&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = IsEqualIID(iid, IID_IUnknown) || (dispatches && IsEqualIID(iid, IID_IDispatch));
    *out = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    ++calls;
    if (FAILED(answer)) return answer;
    if (id != 0 || (flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
    return VariantCopy(result, &value);
  }

  VARIANT value;
  HRESULT answer = S_OK;
  bool dispatches = true;
  int calls = 0;
  ULONG references = 0;
};

/// A class object that hands out one and the same object.
class test_class : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
    *out = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return object.QueryInterface(iid, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  test_object object;
  ULONG references = 0;
};

}  // namespace ovtest
