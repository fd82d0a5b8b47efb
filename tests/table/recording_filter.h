// An evaluator for tests: it has the variables it is told to have, writes down what it is given, and
// answers what it is told to answer.
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "ovfile/filter.h"
#include "ovfile/smart.h"

namespace ovtest {

struct filter_record {
  std::vector<std::string> variables;
  SHORT answer = 1;
  HRESULT expression_status = S_OK;
  bool takes_values = false;  ///< also answers IOvFilterValues

  std::vector<std::string> expressions;
  std::vector<std::string> set_texts;        ///< of SetValues
  std::vector<std::string> evaluated_texts;  ///< of Evaluate
  std::map<LONG, std::string> values;        ///< of the other interface: "n:1.5", "t:ABC", "absent"
  int names_asked = 0;
  int tests = 0;
  int made = 0;
};

class recording_filter final : public IOvFilter, public IOvFilterValues {
 public:
  explicit recording_filter(filter_record& record) : record_(record) { ++record_.made; }
  virtual ~recording_filter() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOvFilter) *out = static_cast<IOvFilter*>(this);
    if (iid == IID_IOvFilterValues && record_.takes_values) *out = static_cast<IOvFilterValues*>(this);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE SetExpression(BSTR expression) override {
    record_.expressions.push_back(utf8(expression));
    return record_.expression_status;
  }
  HRESULT STDMETHODCALLTYPE Evaluate(BSTR values, SHORT* result) override {
    record_.evaluated_texts.push_back(utf8(values));
    *result = record_.answer;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetValues(BSTR values) override {
    record_.set_texts.push_back(utf8(values));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetVariableName(LONG index, BSTR* name) override {
    ++record_.names_asked;
    *name = ovfile::text(std::string_view(record_.variables.at(static_cast<std::size_t>(index)))).release();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetVariableCount(LONG* count) override {
    *count = static_cast<LONG>(record_.variables.size());
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetNumber(LONG variable, double value) override {
    char text[40];
    std::snprintf(text, sizeof text, "n:%.17g", value);
    record_.values[variable] = text;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetText(LONG variable, BSTR value) override {
    record_.values[variable] = "t:" + utf8(value);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetAbsent(LONG variable) override {
    record_.values[variable] = "absent";
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Test(SHORT* result) override {
    ++record_.tests;
    *result = record_.answer;
    return S_OK;
  }

 private:
  static std::string utf8(BSTR text) { return ovfile::to_utf8({text, SysStringLen(text)}); }

  filter_record& record_;
  std::atomic<ULONG> references_{0};
};

/// Makes evaluators while it lives; with a status, refuses to.
class filter_factory final : public IClassFactory {
 public:
  explicit filter_factory(filter_record& record, HRESULT refusal = S_OK)
      : record_(record), refusal_(refusal) {
    CoInitialize(nullptr);
    EXPECT_EQ(CoRegisterClassObject(CLSID_OvFilter, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
  }
  virtual ~filter_factory() {
    CoRevokeClassObject(cookie_);
    CoUninitialize();
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    return *out == nullptr ? E_NOINTERFACE : S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
    *out = nullptr;
    if (FAILED(refusal_)) return refusal_;
    auto* made = new recording_filter(record_);
    made->AddRef();
    const HRESULT status = made->QueryInterface(iid, out);
    made->Release();
    return status;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  filter_record& record_;
  HRESULT refusal_;
  DWORD cookie_ = 0;
};

}  // namespace ovtest
