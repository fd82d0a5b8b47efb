// One entry of a table of methods, made from a member pointer: its number, its names, and a function
// that carries the arguments of a late-bound call to the method. The types come from the member pointer.
#pragma once

#include <array>
#include <span>
#include <tuple>
#include <utility>

#include "server/dispatch_argument.h"

namespace ovf {

inline constexpr std::size_t most_arguments = 12;

/// A call on its way to a method.
struct dispatch_call {
  std::array<const VARIANT*, most_arguments> arguments;  ///< in the order of the parameters
  VARIANT* result;            ///< an empty variant, or null when the caller wants none
  std::size_t bad_parameter;  ///< whose argument could not be changed; `most_arguments` when none
};

struct dispatch_member {
  DISPID id;
  WORD kind;  ///< DISPATCH_METHOD, DISPATCH_PROPERTYGET or DISPATCH_PROPERTYPUT
  wide_view name;
  wide_view parameters;            ///< their names parted by blanks, that of the result last
  std::span<const VARTYPE> types;  ///< of the parameters without the result
  VARTYPE result;                  ///< VT_EMPTY when there is none
  /// Calls the method of `object`. Throws what the method throws.
  HRESULT (*call)(IDispatch* object, dispatch_call& call);
};

namespace dispatch_detail {

/// The type that a parameter hands out; void for one that takes something in.
template <class Parameter>
struct handed_out {
  using type = void;
};
template <class Type>
requires(!std::is_class_v<Type> || std::is_same_v<Type, VARIANT>) struct handed_out<Type*> {
  using type = Type;
};
template <>
struct handed_out<BSTR> {
  using type = void;
};

template <class Method>
struct signature;

template <class Owner, class... Parameters>
struct signature<HRESULT (STDMETHODCALLTYPE Owner::*)(Parameters...)> {
  using interface_type = Owner;
  using parameter_types = std::tuple<Parameters...>;
  using last = std::tuple_element_t<sizeof...(Parameters), std::tuple<void, Parameters...>>;
  using result = typename handed_out<last>::type;

  static constexpr bool has_result = !std::is_void_v<result>;
  static constexpr std::size_t inputs = sizeof...(Parameters) - (has_result ? 1 : 0);
  using indexes = std::make_index_sequence<inputs>;
};

template <class Signature, std::size_t I>
using parameter = std::tuple_element_t<I, typename Signature::parameter_types>;

template <class Signature, class Indexes>
struct type_codes;
template <class Signature, std::size_t... I>
struct type_codes<Signature, std::index_sequence<I...>> {
  static constexpr std::array<VARTYPE, sizeof...(I)> codes{variant_member<parameter<Signature, I>>::code...};
};

template <class Argument>
bool take(dispatch_call& call, std::size_t index, Argument& argument, HRESULT& status) noexcept {
  status = argument.take(*call.arguments[index]);
  if (FAILED(status)) call.bad_parameter = index;
  return SUCCEEDED(status);
}

template <auto Method, class Signature, std::size_t... I>
HRESULT forward(IDispatch* object, dispatch_call& call, std::index_sequence<I...>) {
  [[maybe_unused]] std::tuple<in_argument<parameter<Signature, I>>...> arguments;
  HRESULT status = S_OK;
  if (!(... && take(call, I, std::get<I>(arguments), status))) return status;

  auto* target = static_cast<typename Signature::interface_type*>(object);
  if constexpr (Signature::has_result) {
    out_result<typename Signature::result> result;
    status = (target->*Method)(std::get<I>(arguments).value()..., result.address());
    if (SUCCEEDED(status) && call.result != nullptr) result.deliver(*call.result);
  } else {
    status = (target->*Method)(std::get<I>(arguments).value()...);
  }
  return status;
}

template <auto Method>
HRESULT call_method(IDispatch* object, dispatch_call& call) {
  using types = signature<decltype(Method)>;
  return forward<Method, types>(object, call, typename types::indexes());
}

template <auto Method>
HRESULT call_taking_over(IDispatch* object, dispatch_call& call) {
  using types = signature<decltype(Method)>;
  in_argument<parameter<types, 0>> argument;
  HRESULT status = S_OK;
  if (!take(call, 0, argument, status)) return status;
  if (argument.value() != nullptr) argument.value()->AddRef();
  status = (static_cast<typename types::interface_type*>(object)->*Method)(argument.value());
  if (FAILED(status) && argument.value() != nullptr) argument.value()->Release();
  return status;
}

inline HRESULT refuse_buffer(IDispatch*, dispatch_call& call) {
  call.bad_parameter = 0;
  return DISP_E_TYPEMISMATCH;
}

inline constexpr std::array<VARTYPE, 1> buffer_codes{VT_BYREF | VT_I4};

constexpr std::size_t words_of(wide_view names) {
  std::size_t words = names.empty() ? 0 : 1;
  for (const OLECHAR unit : names) words += unit == OLESTR(' ') ? 1 : 0;
  return words;
}

template <auto Method>
constexpr dispatch_member entry(DISPID id, WORD kind, wide_view name, wide_view parameters) {
  using types = signature<decltype(Method)>;
  static_assert(types::inputs <= most_arguments);
  if (words_of(parameters) != types::inputs + (types::has_result ? 1 : 0)) throw "a name for each parameter";
  VARTYPE result = VT_EMPTY;
  if constexpr (types::has_result) result = variant_member<typename types::result>::code;
  return {id,
          kind,
          name,
          parameters,
          type_codes<types, typename types::indexes>::codes,
          result,
          &call_method<Method>};
}

}  // namespace dispatch_detail

/// Entries of a table. `parameters` names every parameter of the C++ method in order, parted by blanks.
template <auto Method>
constexpr dispatch_member method(DISPID id, wide_view name, wide_view parameters = {}) {
  return dispatch_detail::entry<Method>(id, DISPATCH_METHOD, name, parameters);
}
template <auto Method>
constexpr dispatch_member getter(DISPID id, wide_view name, wide_view parameters = OLESTR("pVal")) {
  return dispatch_detail::entry<Method>(id, DISPATCH_PROPERTYGET, name, parameters);
}
template <auto Method>
constexpr dispatch_member putter(DISPID id, wide_view name, wide_view parameters = OLESTR("newVal")) {
  return dispatch_detail::entry<Method>(id, DISPATCH_PROPERTYPUT, name, parameters);
}
/// A putter that takes over the caller's reference. A late-bound caller keeps its own, so the call adds
/// one first.
template <auto Method>
constexpr dispatch_member putter_taking_over(DISPID id, wide_view name) {
  dispatch_member made = putter<Method>(id, name);
  made.call = &dispatch_detail::call_taking_over<Method>;
  return made;
}
/// A method whose only argument is a record's buffer, which a changed argument cannot be: every
/// late-bound call is refused.
constexpr dispatch_member buffer_method(DISPID id, wide_view name, wide_view parameters) {
  return {id,
          DISPATCH_METHOD,
          name,
          parameters,
          dispatch_detail::buffer_codes,
          VT_EMPTY,
          &dispatch_detail::refuse_buffer};
}

}  // namespace ovf
