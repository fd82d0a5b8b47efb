// Late-bound calls spelled out: flags, named arguments, everything that comes back.
#pragma once

#include <vector>

#include "support/component.h"

namespace ovtest {

struct called {
  HRESULT status = S_OK;
  UINT bad_argument = 99;  ///< 99 where the call had none to tell
  variant result;
  HRESULT code = S_OK;
  std::string source;
  std::string description;
};

/// Calls member `id`. `arguments` stand as a caller gives them: last first, named ones before all others.
inline called invoke(IDispatch& object, DISPID id, WORD flags, const std::vector<VARIANT>& arguments,
                     std::vector<DISPID> names = {}) {
  std::vector<VARIANT> given = arguments;
  DISPPARAMS parameters{given.data(), names.empty() ? nullptr : names.data(), static_cast<UINT>(given.size()),
                        static_cast<UINT>(names.size())};
  EXCEPINFO exception{};
  called answer;
  answer.status = object.Invoke(id, IID_NULL, 0, flags, &parameters, answer.result.out(), &exception,
                                &answer.bad_argument);
  answer.code = exception.scode;
  const auto take = [](BSTR text) {
    const std::string taken = text == nullptr ? std::string() : to_utf8({text, SysStringLen(text)});
    SysFreeString(text);
    return taken;
  };
  answer.source = take(exception.bstrSource);
  answer.description = take(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return answer;
}

inline VARIANT of_type(VARTYPE type) {
  VARIANT value{};
  value.vt = type;
  return value;
}
inline VARIANT of_long(LONG number) {
  VARIANT value = of_type(VT_I4);
  value.lVal = number;
  return value;
}
inline VARIANT of_short(SHORT number) {
  VARIANT value = of_type(VT_I2);
  value.iVal = number;
  return value;
}
inline VARIANT of_double(double number) {
  VARIANT value = of_type(VT_R8);
  value.dblVal = number;
  return value;
}
/// The text stays its owner's.
inline VARIANT of_text(const bstr& text) {
  VARIANT value = of_type(VT_BSTR);
  value.bstrVal = text.get();
  return value;
}
/// The reference stays its owner's.
inline VARIANT of_dispatch(IDispatch* object) {
  VARIANT value = of_type(VT_DISPATCH);
  value.pdispVal = object;
  return value;
}
inline VARIANT of_unknown(IUnknown* object) {
  VARIANT value = of_type(VT_UNKNOWN);
  value.punkVal = object;
  return value;
}
inline VARIANT by_reference(VARTYPE type, void* to) {
  VARIANT value = of_type(static_cast<VARTYPE>(VT_BYREF | type));
  value.byref = to;
  return value;
}

}  // namespace ovtest
