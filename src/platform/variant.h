// Values as hosts hand them over: an owning VARIANT, and the ordinary change of type (invariant locale,
// no flags), which is the automation library's on Windows and the component runtime's own on Linux.
#pragma once

#include "base/text.h"
#include "ovfile/exception.h"

namespace ovf {

/// A failed call of the component system, such as a change of type; carries the system's text for it.
class com_error : public MyExceptionClass {
 public:
  explicit com_error(HRESULT status);
  HRESULT status() const noexcept { return status_; }

 private:
  HRESULT status_;
};

/// Throws com_error for a status that stands for a failure.
inline void throw_on_failure(HRESULT status) {
  if (FAILED(status)) throw com_error(status);
}

/// Changes `source` to `type` in `dest`, which is a valid variant (cleared on success, untouched on
/// failure) and may be `source` itself. By-reference sources are resolved. The call to make instead of
/// VariantChangeType: texts that the system's own cannot bear never reach it.
HRESULT change_type(VARIANT& dest, const VARIANT& source, VARTYPE type) noexcept;

/// The value as a number, by the ordinary change of type. Throws com_error.
double to_double(const VARIANT& value);
float to_float(const VARIANT& value);
float to_float(double value);
/// The value as text, by the ordinary change of type. Throws com_error.
wide to_text(const VARIANT& value);

/// An owned variant.
class variant {
 public:
  variant() noexcept { VariantInit(&value_); }
  explicit variant(double number) noexcept;
  explicit variant(float number) noexcept;
  /// A text; throws std::bad_alloc.
  explicit variant(wide_view text);
  /// A copy of `other`, by-reference values resolved. Throws com_error, std::bad_alloc.
  explicit variant(const VARIANT& other);
  variant(const variant& other) : variant(other.value_) {}
  variant(variant&& other) noexcept : value_(other.release()) {}
  variant& operator=(variant other) noexcept {
    swap(other);
    return *this;
  }
  ~variant() { VariantClear(&value_); }

  void swap(variant& other) noexcept {
    const VARIANT mine = value_;
    value_ = other.value_;
    other.value_ = mine;
  }

  VARTYPE type() const noexcept { return value_.vt; }
  const VARIANT& get() const noexcept { return value_; }
  operator const VARIANT&() const noexcept { return value_; }
  /// Cleared, to be filled through an out argument.
  VARIANT* out() noexcept {
    VariantClear(&value_);
    return &value_;
  }
  /// Hands the value over; empty afterwards.
  VARIANT release() noexcept {
    const VARIANT mine = value_;
    VariantInit(&value_);
    return mine;
  }

 private:
  VARIANT value_;
};

}  // namespace ovf
