// The system's own change of type, with one guard: an exponent of ten digits and more in a text can
// bring it down. Four digits say as much, since every type ends long before.
#include <algorithm>
#include <new>

#include "platform/variant.h"

namespace ovf {

namespace {

constexpr std::size_t longest_exponent = 4;

bool is_digit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

/// The text that a variant holds or refers to; null for every other.
BSTR text_in(const VARIANT& value) {
  if (value.vt == VT_BSTR) return value.bstrVal;
  if (value.vt == (VT_BYREF | VT_BSTR)) return value.pbstrVal != nullptr ? *value.pbstrVal : nullptr;
  if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal != nullptr &&
      value.pvarVal->vt != (VT_BYREF | VT_VARIANT)) {
    return text_in(*value.pvarVal);
  }
  return nullptr;
}

/// Where the digits of the first exponent stand, and how many there are.
std::pair<std::size_t, std::size_t> exponent_in(wide_view text) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != L'e' && text[i] != L'E') continue;
    std::size_t first = i + 1;
    if (first < text.size() && (text[first] == L'+' || text[first] == L'-')) ++first;
    std::size_t last = first;
    while (last < text.size() && is_digit(text[last])) ++last;
    if (last > first) return {first, last - first};
  }
  return {0, 0};
}

/// The exponent with four digits at most.
wide tamed(wide_view text, std::size_t first, std::size_t count) {
  wide_view digits = text.substr(first, count);
  digits.remove_prefix(std::min(digits.find_first_not_of(L'0'), digits.size() - 1));
  const wide_view kept = digits.size() > longest_exponent ? wide_view(L"9999") : digits;
  return wide(text.substr(0, first)).append(kept).append(text.substr(first + count));
}

HRESULT change(VARIANT& dest, const VARIANT& source, VARTYPE type) {
  // Some headers declare the source as one that might be changed; it never is.
  return VariantChangeTypeEx(&dest, const_cast<VARIANT*>(&source), 0, 0, type);
}

}  // namespace

HRESULT change_type(VARIANT& dest, const VARIANT& source, VARTYPE type) noexcept {
  const wide_view text = view_of(text_in(source));
  const auto [first, count] = exponent_in(text);
  // Bits in hexadecimal have an E among their digits and no exponent.
  if (type == VT_BSTR || count <= longest_exponent || text.find(L'&') != wide_view::npos) {
    return change(dest, source, type);
  }
  try {
    const variant harmless(wide_view(tamed(text, first, count)));
    return change(dest, harmless.get(), type);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace ovf
