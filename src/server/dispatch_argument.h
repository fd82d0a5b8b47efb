// How one argument or result of a late-bound call passes between a VARIANT and the C++ type of the
// method's parameter.
#pragma once

#include <type_traits>

#include "platform/object.h"
#include "platform/variant.h"

namespace ovf {

/// What a parameter or result type is in a VARIANT: its type code, and the member that holds it.
template <class Type>
struct variant_member;

template <>
struct variant_member<LONG> {
  static constexpr VARTYPE code = VT_I4;
  static LONG get(const VARIANT& value) noexcept { return value.lVal; }
  static LONG get_referred(const VARIANT& value) noexcept { return *value.plVal; }
  static void set(VARIANT& value, LONG number) noexcept { value.lVal = number; }
};
template <>
struct variant_member<float> {
  static constexpr VARTYPE code = VT_R4;
  static float get(const VARIANT& value) noexcept { return value.fltVal; }
  static float get_referred(const VARIANT& value) noexcept { return *value.pfltVal; }
  static void set(VARIANT& value, float number) noexcept { value.fltVal = number; }
};
template <>
struct variant_member<double> {
  static constexpr VARTYPE code = VT_R8;
  static double get(const VARIANT& value) noexcept { return value.dblVal; }
  static double get_referred(const VARIANT& value) noexcept { return *value.pdblVal; }
  static void set(VARIANT& value, double number) noexcept { value.dblVal = number; }
};
template <>
struct variant_member<VARIANT_BOOL> {
  static constexpr VARTYPE code = VT_BOOL;
  static VARIANT_BOOL get(const VARIANT& value) noexcept { return value.boolVal; }
  static VARIANT_BOOL get_referred(const VARIANT& value) noexcept { return *value.pboolVal; }
  static void set(VARIANT& value, VARIANT_BOOL truth) noexcept { value.boolVal = truth; }
};
template <>
struct variant_member<BSTR> {
  static constexpr VARTYPE code = VT_BSTR;
  static BSTR get(const VARIANT& value) noexcept { return value.bstrVal; }
  static BSTR get_referred(const VARIANT& value) noexcept { return *value.pbstrVal; }
  static void set(VARIANT& value, BSTR text) noexcept { value.bstrVal = text; }
};
template <class Enumeration>
requires std::is_enum_v<Enumeration>
struct variant_member<Enumeration> {
  static constexpr VARTYPE code = VT_I4;
  static Enumeration get(const VARIANT& value) noexcept { return static_cast<Enumeration>(value.lVal); }
  static Enumeration get_referred(const VARIANT& value) noexcept {
    return static_cast<Enumeration>(*value.plVal);
  }
  static void set(VARIANT& value, Enumeration number) noexcept { value.lVal = static_cast<LONG>(number); }
};
template <class Interface>
requires std::is_base_of_v<IDispatch, Interface>
struct variant_member<Interface*> {
  static constexpr VARTYPE code = VT_DISPATCH;
  static void set(VARIANT& value, Interface* object) noexcept { value.pdispVal = object; }
};
template <>
struct variant_member<VARIANT> {
  static constexpr VARTYPE code = VT_VARIANT;
};

/// The argument itself, or the one that it refers to; null for a reference to nothing.
inline const VARIANT* referred(const VARIANT& argument) noexcept {
  const VARIANT* given = argument.vt == (VT_BYREF | VT_VARIANT) ? argument.pvarVal : &argument;
  if (given != nullptr && (given->vt & VT_BYREF) != 0 && given->byref == nullptr) return nullptr;
  return given;
}

/// Takes the argument as it is when it is of the parameter's type already.
template <class Type>
bool take_exact(const VARIANT& argument, Type& value) noexcept {
  using member = variant_member<Type>;
  const VARIANT* given = referred(argument);
  if (given == nullptr) return false;
  if (given->vt == member::code) {
    value = member::get(*given);
    return true;
  }
  if (given->vt != (VT_BYREF | member::code)) return false;
  value = member::get_referred(*given);
  return true;
}

/// The argument changed to `type`. DISP_E_TYPEMISMATCH when it cannot be.
HRESULT take_changed(const VARIANT& argument, VARTYPE type, variant& changed) noexcept;

/// The object in an argument, null for one that holds none; DISP_E_TYPEMISMATCH for anything else.
HRESULT take_object(const VARIANT& argument, IUnknown*& object) noexcept;

/// One argument on its way into a method: `take` changes it to the parameter's type, `value` is what the
/// method receives.
template <class Type>
class in_argument {
 public:
  HRESULT take(const VARIANT& argument) noexcept {
    if (take_exact(argument, value_)) return S_OK;
    variant changed;
    const HRESULT status = take_changed(argument, variant_member<Type>::code, changed);
    if (SUCCEEDED(status)) value_ = variant_member<Type>::get(changed.get());
    return status;
  }
  Type value() const noexcept { return value_; }

 private:
  Type value_{};
};

/// A text that had to be made lives as long as this.
template <>
class in_argument<BSTR> {
 public:
  HRESULT take(const VARIANT& argument) noexcept {
    if (take_exact(argument, value_)) return S_OK;
    const HRESULT status = take_changed(argument, VT_BSTR, changed_);
    if (SUCCEEDED(status)) value_ = changed_.get().bstrVal;
    return status;
  }
  BSTR value() const noexcept { return value_; }

 private:
  BSTR value_ = nullptr;
  variant changed_;
};

/// A VARIANT goes in as it was given.
template <>
class in_argument<VARIANT> {
 public:
  HRESULT take(const VARIANT& argument) noexcept {
    value_ = argument;
    return S_OK;
  }
  VARIANT value() const noexcept { return value_; }

 private:
  VARIANT value_{};
};

/// An object is asked for the parameter's interface; no object is a null pointer.
template <class Interface>
requires std::is_base_of_v<IDispatch, Interface>
class in_argument<Interface*> {
 public:
  in_argument() = default;
  in_argument(const in_argument&) = delete;
  in_argument& operator=(const in_argument&) = delete;
  ~in_argument() {
    if (value_ != nullptr) value_->Release();
  }

  HRESULT take(const VARIANT& argument) noexcept {
    IUnknown* object = nullptr;
    const HRESULT status = take_object(argument, object);
    if (FAILED(status) || object == nullptr) return status;
    void* found = nullptr;
    if (FAILED(object->QueryInterface(wanted(), &found)) || found == nullptr) return DISP_E_TYPEMISMATCH;
    value_ = static_cast<Interface*>(found);
    return S_OK;
  }
  Interface* value() const noexcept { return value_; }

 private:
  static REFIID wanted() noexcept {
    if constexpr (std::is_same_v<Interface, IDispatch>) {
      return IID_IDispatch;
    } else {
      return iid_of<Interface>;
    }
  }

  Interface* value_ = nullptr;
};

/// What a method hands out through its last parameter, a `Type*`. Owned until it is delivered.
template <class Type>
class out_result {
 public:
  out_result() = default;
  out_result(const out_result&) = delete;
  out_result& operator=(const out_result&) = delete;
  ~out_result() {
    if constexpr (std::is_same_v<Type, BSTR>) {
      SysFreeString(value_);
    } else if constexpr (std::is_pointer_v<Type>) {
      if (value_ != nullptr) value_->Release();
    }
  }

  Type* address() noexcept { return &value_; }
  /// Moves the value into `result`, an empty variant.
  void deliver(VARIANT& result) noexcept {
    result.vt = variant_member<Type>::code;
    variant_member<Type>::set(result, value_);
    value_ = Type{};
  }

 private:
  Type value_{};
};

template <>
class out_result<VARIANT> {
 public:
  VARIANT* address() noexcept { return value_.out(); }
  void deliver(VARIANT& result) noexcept { result = value_.release(); }

 private:
  variant value_;
};

}  // namespace ovf
