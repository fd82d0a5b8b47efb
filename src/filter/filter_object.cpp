#include "filter/filter_object.h"

#include <new>

#include "filter/error_report.h"
#include "filter/expression_error.h"
#include "filter/module_count.h"

namespace ovf::filter {

namespace {

wide_view view_of(BSTR text) noexcept {
  return text == nullptr ? wide_view() : wide_view(text, SysStringLen(text));
}

/// Runs a body whose exceptions must not reach the caller.
template <class Body>
HRESULT guarded(Body&& body) noexcept {
  try {
    return body();
  } catch (const expression_error& error) {
    report(IID_IOvFilter, error.message());
    return E_FAIL;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace

filter_object::filter_object() { ++module_count(); }

filter_object::~filter_object() { --module_count(); }

HRESULT filter_object::create(REFIID iid, void** out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return guarded([&] { return make(iid, out); });
}

HRESULT filter_object::make(REFIID iid, void** out) {
  auto* const object = new filter_object;
  const HRESULT status = object->QueryInterface(iid, out);
  object->Release();
  return status;
}

HRESULT STDMETHODCALLTYPE filter_object::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (iid == IID_IUnknown || iid == IID_IOvFilter) {
    *out = static_cast<IOvFilter*>(this);
  } else if (iid == IID_IOvFilterValues) {
    *out = static_cast<IOvFilterValues*>(this);
  } else if (iid == IID_ISupportErrorInfo) {
    *out = static_cast<ISupportErrorInfo*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG STDMETHODCALLTYPE filter_object::AddRef() { return ++references_; }

ULONG STDMETHODCALLTYPE filter_object::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT STDMETHODCALLTYPE filter_object::SetExpression(BSTR expression) {
  return guarded([&] {
    evaluator_.set_expression(view_of(expression));
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE filter_object::Evaluate(BSTR values, SHORT* result) {
  if (result == nullptr) return E_POINTER;
  *result = 0;
  const HRESULT status = SetValues(values);
  return FAILED(status) ? status : Test(result);
}

HRESULT STDMETHODCALLTYPE filter_object::SetValues(BSTR values) {
  return guarded([&] {
    evaluator_.set_values(view_of(values));
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE filter_object::GetVariableName(LONG index, BSTR* name) {
  if (name == nullptr) return E_POINTER;
  *name = nullptr;
  if (!evaluator_.has_variable(index)) return E_INVALIDARG;
  const wide& found = evaluator_.variables()[static_cast<std::size_t>(index)];
  *name = SysAllocStringLen(found.data(), static_cast<UINT>(found.size()));
  return *name == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT STDMETHODCALLTYPE filter_object::GetVariableCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(evaluator_.variables().size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE filter_object::SetNumber(LONG variable, double value) {
  if (!evaluator_.has_variable(variable)) return E_INVALIDARG;
  evaluator_.set_number(variable, value);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE filter_object::SetText(LONG variable, BSTR value) {
  if (!evaluator_.has_variable(variable)) return E_INVALIDARG;
  return guarded([&] {
    evaluator_.set_text(variable, view_of(value));
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE filter_object::SetAbsent(LONG variable) {
  if (!evaluator_.has_variable(variable)) return E_INVALIDARG;
  evaluator_.set_absent(variable);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE filter_object::Test(SHORT* result) {
  if (result == nullptr) return E_POINTER;
  *result = evaluator_.passes() ? 1 : 0;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE filter_object::InterfaceSupportsErrorInfo(REFIID iid) {
  return iid == IID_IOvFilter || iid == IID_IOvFilterValues ? S_OK : S_FALSE;
}

}  // namespace ovf::filter
