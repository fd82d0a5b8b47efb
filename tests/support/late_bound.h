// Calls by name, as a script makes them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "support/component.h"

namespace ovtest {

struct late_answer {
  HRESULT status = S_OK;  ///< of the call itself, as GetIDsOfNames or Invoke gave it
  HRESULT code = S_OK;    ///< of the method that failed, from the exception record
  std::string source;
  std::string description;
  UINT bad_argument = 0;
  variant result;
};

inline HRESULT find_name(IDispatch& object, std::string_view name, DISPID* id) {
  wide text = ovfile::to_wide(name);
  LPOLESTR pointer = text.data();
  return object.GetIDsOfNames(IID_NULL, &pointer, 1, 0, id);
}

/// Arguments in the order in which they are written. A property's new value is the last of them.
inline late_answer call_by_name(IDispatch& object, std::string_view name, WORD flags,
                                const std::vector<variant>& arguments) {
  late_answer answer;
  DISPID id = 0;
  answer.status = find_name(object, name, &id);
  if (FAILED(answer.status)) return answer;

  std::vector<VARIANT> reversed;
  std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed),
                 [](const variant& argument) { return argument.get(); });
  DISPID put = DISPID_PROPERTYPUT;
  const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS parameters{reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()),
                        puts ? 1U : 0U};
  EXCEPINFO exception{};
  answer.status = object.Invoke(id, IID_NULL, 0, flags, &parameters, puts ? nullptr : answer.result.out(),
                                &exception, &answer.bad_argument);
  answer.code = exception.scode;
  if (exception.bstrSource != nullptr) answer.source = to_utf8(exception.bstrSource);
  if (exception.bstrDescription != nullptr) answer.description = to_utf8(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return answer;
}

}  // namespace ovtest
