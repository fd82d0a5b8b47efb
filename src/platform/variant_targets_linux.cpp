// Reals, currencies, dates, truth values and texts from every kind of value.
#include "platform/variant_conversions_linux.h"
#include "platform/variant_values_linux.h"

namespace ovf::conversion {

namespace {

HRESULT read_text_number(const source_value& value, number_text& number) {
  return read_number(value.text, number) ? S_OK : DISP_E_TYPEMISMATCH;
}

}  // namespace

HRESULT to_double(const source_value& value, double& result) noexcept {
  number_text number;
  HRESULT status = S_OK;
  switch (value.what) {
    case kind::unsigned_whole:
      result = static_cast<double>(static_cast<std::uint64_t>(value.number));
      break;
    case kind::currency:
      result = static_cast<double>(value.number) / 10000;
      break;
    case kind::text:
      status = read_text_number(value, number);
      if (SUCCEEDED(status)) status = real_from(number, result);
      break;
    case kind::real:
    case kind::single:
    case kind::date:
      result = value.real;
      break;
    default:
      result = static_cast<double>(value.number);
  }
  return status;
}

namespace {

HRESULT float_from_real(double number, float& result) {
  // Halfway between the largest float and the next power of two everything rounds up and out.
  constexpr double limit = 0x1.FFFFFFp127;
  if (number >= limit || number <= -limit) return DISP_E_OVERFLOW;
  result = static_cast<float>(number);
  return S_OK;
}

}  // namespace

HRESULT to_float(const source_value& value, float& result) noexcept {
  number_text number;
  double real = 0;
  switch (value.what) {
    case kind::signed_whole:
      result = static_cast<float>(value.number);
      return S_OK;
    case kind::unsigned_whole:
      result = static_cast<float>(static_cast<std::uint64_t>(value.number));
      return S_OK;
    case kind::text:
      if (const HRESULT status = read_text_number(value, number); FAILED(status)) return status;
      return real_from(number, result);
    case kind::single:
      result = static_cast<float>(value.real);
      return S_OK;
    default:
      to_double(value, real);
      return float_from_real(real, result);
  }
}

HRESULT to_currency(const source_value& value, std::int64_t& result) noexcept {
  if (value.what == kind::currency) {
    result = value.number;
    return S_OK;
  }
  if (value.what == kind::text) {
    number_text number;
    if (const HRESULT status = read_text_number(value, number); FAILED(status)) return status;
    if (number.is_bits) return DISP_E_OVERFLOW;
  } else if (value.what < kind::real) {
    if (value.what == kind::unsigned_whole && value.number < 0) return DISP_E_OVERFLOW;
    return __builtin_mul_overflow(value.number, std::int64_t{10000}, &result) ? DISP_E_OVERFLOW : S_OK;
  }
  double real = 0;
  const HRESULT status = to_double(value, real);
  return FAILED(status) ? status : currency_from(real, result);
}

HRESULT to_date(const source_value& value, double& result) noexcept {
  if (value.what == kind::text) {
    const std::optional<double> date = read_date(value.text);
    result = date.value_or(0);
    return date ? S_OK : DISP_E_TYPEMISMATCH;
  }
  const HRESULT status = to_double(value, result);
  if (FAILED(status)) return status;
  // The automation library takes floats and currencies as they are, however far away.
  const bool checked = value.what != kind::single && value.what != kind::currency;
  return checked && !is_date(result) ? DISP_E_OVERFLOW : S_OK;
}

HRESULT to_boolean(const source_value& value, VARIANT_BOOL& result) noexcept {
  bool truth = value.number != 0;
  HRESULT status = S_OK;
  if (value.what == kind::boolean) {
    result = static_cast<VARIANT_BOOL>(value.number);
    return S_OK;
  }
  if (value.what == kind::text) {
    if (const auto word = read_boolean(value.text)) {
      truth = *word;
    } else {
      number_text number;
      status = read_text_number(value, number);
      if (SUCCEEDED(status)) status = truth_from(number, truth);
    }
  } else if (value.what == kind::real || value.what == kind::single || value.what == kind::date) {
    truth = value.real != 0;
  }
  result = truth ? VARIANT_TRUE : VARIANT_FALSE;
  return status;
}

HRESULT to_text(const source_value& value, USHORT flags, BSTR& result) {
  switch (value.what) {
    case kind::empty:
      result = new_bstr({});
      return S_OK;
    case kind::boolean:
      if ((flags & alphabetic_booleans) != 0) {
        result = new_bstr(value.number != 0 ? u"True" : u"False");
        return S_OK;
      }
      [[fallthrough]];
    case kind::signed_whole:
    case kind::unsigned_whole:
      result = new_bstr(whole_text(value.is_negative(), value.size()));
      return S_OK;
    case kind::real:
      result = new_bstr(text_from(value.real));
      return S_OK;
    case kind::single:
      result = new_bstr(text_from(static_cast<float>(value.real)));
      return S_OK;
    case kind::currency:
      result = new_bstr(currency_text(value.number));
      return S_OK;
    case kind::date:
      if (const std::optional<wide> text = date_text(value.real)) {
        result = new_bstr(*text);
        return S_OK;
      }
      return E_INVALIDARG;
    default:
      result = new_bstr(value.text);
      return S_OK;
  }
}

}  // namespace ovf::conversion
