#include "written_value.h"

#include <charconv>
#include <cstring>
#include <stdexcept>

namespace ovtest {

namespace {

struct named_type {
  std::string_view name;
  VARTYPE type;
};
constexpr named_type types[] = {{"EMPTY", VT_EMPTY}, {"NULL", VT_NULL}, {"I1", VT_I1},      {"I2", VT_I2},
                                {"I4", VT_I4},       {"I8", VT_I8},     {"UI1", VT_UI1},    {"UI2", VT_UI2},
                                {"UI4", VT_UI4},     {"UI8", VT_UI8},   {"INT", VT_INT},    {"UINT", VT_UINT},
                                {"R4", VT_R4},       {"R8", VT_R8},     {"CY", VT_CY},      {"DATE", VT_DATE},
                                {"BSTR", VT_BSTR},   {"BOOL", VT_BOOL}, {"ERROR", VT_ERROR}};

template <class Number>
Number number_in(std::string_view text, int base = 10) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("no number: " + std::string(text));
  }
  return number;
}

/// The bits after the last slash; what stands before it is for people.
unsigned long long bits_in(std::string_view text) {
  return number_in<unsigned long long>(text.substr(text.rfind('/') + 1), 16);
}

std::string hexadecimal(unsigned long long bits, int digits) {
  std::string text;
  for (int shift = digits * 4 - 4; shift >= 0; shift -= 4) text += "0123456789ABCDEF"[bits >> shift & 15];
  return text;
}

std::string repeated(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, 2) != "{*") {
      result += text[i];
      continue;
    }
    const std::size_t end = text.find('}', i);
    const auto count = number_in<std::size_t>(text.substr(i + 2, end - i - 2));
    result.append(count - 1, result.back());
    i = end;
  }
  return result;
}

ovf::wide characters_in(std::string_view text) {
  ovf::wide result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t digits = text.substr(i, 2) == "\\x" ? 2 : text.substr(i, 2) == "\\u" ? 4 : 0;
    if (digits == 0) {
      result += static_cast<OLECHAR>(static_cast<unsigned char>(text[i]));
    } else {
      result += static_cast<OLECHAR>(number_in<unsigned>(text.substr(i + 2, digits), 16));
      i += digits + 1;
    }
  }
  return result;
}

/// Texts that are not ASCII are shown by number, so that any two can be told apart.
std::string shown_text(ovf::wide_view text) {
  std::string result;
  for (const OLECHAR unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      result += static_cast<char>(unit);
    } else {
      result += "\\u" + hexadecimal(static_cast<unsigned>(unit), 4);
    }
  }
  return result;
}

}  // namespace

VARTYPE type_named(std::string_view name) {
  for (const named_type& candidate : types) {
    if (candidate.name == name) return candidate.type;
  }
  throw std::invalid_argument("no type: " + std::string(name));
}

ovf::variant written_value(std::string_view type, std::string_view value) {
  ovf::variant result;
  VARIANT& place = *result.out();
  const VARTYPE vt = type_named(type);
  if (vt == VT_EMPTY || vt == VT_NULL) {
    place.vt = vt;
    return result;
  }
  if (vt == VT_BSTR) return ovf::variant(ovf::wide_view(characters_in(repeated(value))));
  unsigned long long bits = 0;
  if (vt == VT_R8 || vt == VT_R4 || vt == VT_DATE) {
    bits = bits_in(value);
  } else if (vt == VT_ERROR) {
    bits = number_in<unsigned long long>(value, 16);
  } else if (vt == VT_CY) {
    bits = static_cast<unsigned long long>(number_in<long long>(value.substr(3)));
  } else if (vt == VT_UI8) {
    bits = number_in<unsigned long long>(value);
  } else {
    bits = static_cast<unsigned long long>(number_in<long long>(value));
  }
  // Every supported system keeps the lowest byte first.
  std::memcpy(&place.llVal, &bits, sizeof bits);
  place.vt = vt;
  return result;
}

std::string shown(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return "";
    case VT_I1:
      return std::to_string(static_cast<signed char>(value.bVal));
    case VT_UI1:
      return std::to_string(value.bVal);
    case VT_I2:
    case VT_BOOL:
      return std::to_string(value.iVal);
    case VT_UI2:
      return std::to_string(value.uiVal);
    case VT_I4:
    case VT_INT:
      return std::to_string(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return std::to_string(value.ulVal);
    case VT_I8:
      return std::to_string(value.llVal);
    case VT_UI8:
      return std::to_string(value.ullVal);
    case VT_R4:
    case VT_ERROR:
      return hexadecimal(value.ulVal, 8);
    case VT_R8:
    case VT_DATE:
      return hexadecimal(value.ullVal, 16);
    case VT_CY:
      return "cy:" + std::to_string(value.cyVal.int64);
    case VT_BSTR:
      return shown_text(ovf::view_of(value.bstrVal));
    default:
      return "type " + std::to_string(value.vt);
  }
}

std::string normal_form(std::string_view type, std::string_view written) {
  return shown(written_value(type, written));
}

}  // namespace ovtest
