// Whole numbers from every kind of value.
#include <limits>
#include <type_traits>

#include "platform/variant_conversions_linux.h"
#include "platform/variant_values_linux.h"

namespace ovf::conversion {

namespace {

/// A number of a size and a sign as a type that may be too small for it.
template <class Integer>
HRESULT fitted(bool negative, std::uint64_t size, Integer& result) {
  const auto top = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
  const std::uint64_t limit = !negative ? top : std::is_signed_v<Integer> ? top + 1 : 0;
  if (size > limit) return DISP_E_OVERFLOW;
  result = static_cast<Integer>(negative ? 0 - size : size);
  return S_OK;
}

template <class Integer>
HRESULT integer_from_real(double number, Integer& result) {
  const double nearest = rounded(number);
  // Both bounds are powers of two and so exact; a NaN is within none.
  const double low = static_cast<double>(std::numeric_limits<Integer>::min());
  constexpr Integer half = std::numeric_limits<Integer>::max() / 2 + 1;
  const double high = static_cast<double>(half) * 2;
  if (!(nearest >= low && nearest < high)) return DISP_E_OVERFLOW;
  result = static_cast<Integer>(nearest);
  return S_OK;
}

template <class Integer>
HRESULT integer_from_text(const source_value& value, Integer& result) {
  number_text number;
  if (!read_number(value.text, number)) return DISP_E_TYPEMISMATCH;
  std::uint64_t size = 0;
  if (!whole_from(number, size)) return DISP_E_OVERFLOW;
  if (!number.is_bits) return fitted(number.negative, size, result);
  // Bits are taken as they stand, whatever the type makes of the first one.
  if (size > std::numeric_limits<std::make_unsigned_t<Integer>>::max()) return DISP_E_OVERFLOW;
  result = static_cast<Integer>(size);
  return S_OK;
}

template <class Integer>
HRESULT integer_from_currency(const source_value& value, Integer& result) {
  const std::uint64_t size = value.size();
  const std::uint64_t rest = size % 10000;
  std::uint64_t nearest = size / 10000;
  if (rest > 5000 || (rest == 5000 && nearest % 2 != 0)) ++nearest;
  return fitted(value.is_negative(), nearest, result);
}

}  // namespace

template <class Integer>
HRESULT to_integer(const source_value& value, Integer& result) noexcept {
  switch (value.what) {
    case kind::empty:
      result = 0;
      return S_OK;
    case kind::signed_whole:
    case kind::unsigned_whole:
      // A type of the same width takes the bits as they are.
      if (value.bytes != sizeof(Integer)) return fitted(value.is_negative(), value.size(), result);
      [[fallthrough]];
    case kind::boolean:
      result = static_cast<Integer>(value.number);
      return S_OK;
    case kind::currency:
      return integer_from_currency(value, result);
    case kind::text:
      return integer_from_text(value, result);
    default:
      return integer_from_real(value.real, result);
  }
}

template HRESULT to_integer(const source_value&, std::int8_t&) noexcept;
template HRESULT to_integer(const source_value&, std::int16_t&) noexcept;
template HRESULT to_integer(const source_value&, std::int32_t&) noexcept;
template HRESULT to_integer(const source_value&, std::int64_t&) noexcept;
template HRESULT to_integer(const source_value&, std::uint8_t&) noexcept;
template HRESULT to_integer(const source_value&, std::uint16_t&) noexcept;
template HRESULT to_integer(const source_value&, std::uint32_t&) noexcept;
template HRESULT to_integer(const source_value&, std::uint64_t&) noexcept;

}  // namespace ovf::conversion
