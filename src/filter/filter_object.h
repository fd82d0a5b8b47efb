// The component's object: the published interfaces over an evaluator.
#pragma once

#include <atomic>

#include "filter/evaluator.h"
#include "ovfile/filter.h"

namespace ovf::filter {

class filter_object final : public IOvFilter, public IOvFilterValues, public ISupportErrorInfo {
 public:
  filter_object(const filter_object&) = delete;
  filter_object& operator=(const filter_object&) = delete;

  /// A new object's `iid`. E_POINTER, E_OUTOFMEMORY, E_NOINTERFACE.
  static HRESULT create(REFIID iid, void** out) noexcept;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE SetExpression(BSTR expression) override;
  HRESULT STDMETHODCALLTYPE Evaluate(BSTR values, SHORT* result) override;
  HRESULT STDMETHODCALLTYPE SetValues(BSTR values) override;
  HRESULT STDMETHODCALLTYPE GetVariableName(LONG index, BSTR* name) override;
  HRESULT STDMETHODCALLTYPE GetVariableCount(LONG* count) override;

  HRESULT STDMETHODCALLTYPE SetNumber(LONG variable, double value) override;
  HRESULT STDMETHODCALLTYPE SetText(LONG variable, BSTR value) override;
  HRESULT STDMETHODCALLTYPE SetAbsent(LONG variable) override;
  HRESULT STDMETHODCALLTYPE Test(SHORT* result) override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

 private:
  filter_object();
  ~filter_object();
  static HRESULT make(REFIID iid, void** out);

  std::atomic<ULONG> references_{1};
  evaluator evaluator_;
};

}  // namespace ovf::filter
