// What the change of type works on: a source read as one of a few kinds of value, and each target made
// from such a value. An answer that is a failure leaves the result to be forgotten.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace ovf::conversion {

enum class kind { empty, signed_whole, unsigned_whole, boolean, real, single, date, currency, text };

/// A resolved source.
struct source_value {
  kind what = kind::empty;
  int bytes = 0;            ///< of a whole number
  std::int64_t number = 0;  ///< whole numbers as bits, booleans, currencies
  double real = 0;          ///< reals and dates
  wide_view text = {};

  /// Of a whole number or a currency, without its sign.
  std::uint64_t size() const {
    const auto bits = static_cast<std::uint64_t>(number);
    return is_negative() ? 0 - bits : bits;
  }
  bool is_negative() const { return what != kind::unsigned_whole && number < 0; }
};

/// Reads a resolved variant; DISP_E_TYPEMISMATCH for what is no plain value.
HRESULT read_source(const VARIANT& source, source_value& value) noexcept;

template <class Integer>
HRESULT to_integer(const source_value& value, Integer& result) noexcept;
extern template HRESULT to_integer(const source_value&, std::int8_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::int16_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::int32_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::int64_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::uint8_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::uint16_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::uint32_t&) noexcept;
extern template HRESULT to_integer(const source_value&, std::uint64_t&) noexcept;

HRESULT to_double(const source_value& value, double& result) noexcept;
HRESULT to_float(const source_value& value, float& result) noexcept;
HRESULT to_currency(const source_value& value, std::int64_t& result) noexcept;
HRESULT to_date(const source_value& value, double& result) noexcept;
HRESULT to_boolean(const source_value& value, VARIANT_BOOL& result) noexcept;

/// With this flag truth values read True and False, not -1 and 0.
inline constexpr USHORT alphabetic_booleans = 2;
/// Throws std::bad_alloc.
HRESULT to_text(const source_value& value, USHORT flags, BSTR& result);

}  // namespace ovf::conversion
