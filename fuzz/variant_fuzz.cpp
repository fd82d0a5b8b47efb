// Texts as numbers and dates, numbers as texts. Beside not crashing: a plain decimal reads as the C
// library reads it, a number's text is the C library's but for exact ties, and what was read as a date
// is written as one that reads the same.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/variant.h"
#include "require.h"

namespace {

/// The bytes as Windows-1252, or as UTF-16 when the first one is odd.
ovf::wide text_of(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return {};
  const auto* bytes = reinterpret_cast<const char*>(data) + 1;
  if (data[0] % 2 == 0) return ovf::wide_from_ansi({bytes, size - 1});
  ovf::wide text((size - 1) / 2, u'\0');
  std::memcpy(text.data(), bytes, text.size() * 2);
  return text;
}

bool is_plain_decimal(const ovf::wide& text) {
  if (text.empty() || text.find_first_not_of(u"0123456789.eE+-") != ovf::wide::npos) return false;
  // Signs behind a number are not the C library's, nor is more than one before it.
  const std::size_t digit = text.find_first_of(u"0123456789.");
  const std::size_t sign = text.find_last_of(u"+-");
  const bool exponent_sign = sign != ovf::wide::npos && sign > 0 && (text[sign - 1] | 32) == u'e';
  return digit <= 1 && (sign == ovf::wide::npos || sign < digit || exponent_sign) &&
         text.find_first_of(u"+-", digit) == (exponent_sign ? sign : ovf::wide::npos);
}

void check_plain_decimal(const ovf::wide& text, HRESULT status, const VARIANT& number) {
  const std::string narrow = ovf::ansi_from_wide(text);
  char* end = nullptr;
  const double expected = std::strtod(narrow.c_str(), &end);
  if (end == narrow.c_str() || *end != '\0') {
    require(status == DISP_E_TYPEMISMATCH, "what the C library does not read to the end is no number");
  } else if (std::isinf(expected)) {
    require(status == DISP_E_OVERFLOW, "a number beyond the type is an overflow");
  } else {
    require(status == S_OK, "a decimal is a number");
    require(std::memcmp(&number.dblVal, &expected, sizeof expected) == 0, "a decimal is correctly rounded");
  }
}

void check_text(const ovf::wide& text) {
  const ovf::variant source{ovf::wide_view(text)};
  constexpr VARTYPE targets[] = {VT_R8,  VT_R4,  VT_I1,  VT_I2, VT_I4,   VT_I8,   VT_UI1,
                                 VT_UI2, VT_UI4, VT_UI8, VT_CY, VT_DATE, VT_BOOL, VT_BSTR};
  for (const VARTYPE target : targets) {
    ovf::variant result(0.5);
    VARIANT place = result.release();
    const HRESULT status = ovf::change_type(place, source, target);
    require(place.vt == (status == S_OK ? target : VT_R8), "a failure leaves the place alone");
    if (target == VT_R8 && is_plain_decimal(text)) check_plain_decimal(text, status, place);
    if (target == VT_DATE && status == S_OK) {
      ovf::variant written;
      ovf::variant again;
      require(ovf::change_type(*written.out(), place, VT_BSTR) == S_OK, "a date has a text");
      require(ovf::change_type(*again.out(), written, VT_DATE) == S_OK, "a date's text is a date");
      require(std::abs(again.get().date - place.date) < 1e-9, "a date's text reads the same");
    }
    VariantClear(&place);
  }
}

/// Whether cutting one more digit off than there are leaves exactly a half.
bool is_tie(double value, int digits) {
  char text[1100];
  std::snprintf(text, sizeof text, "%.1060e", value);
  const char* behind = text + (text[0] == '-' ? 1 : 0) + 1 + digits;
  const char* mark = std::strchr(text, 'e');
  if (*behind != '5') return false;
  for (const char* next = behind + 1; next != mark; ++next) {
    if (*next != '0') return false;
  }
  return true;
}

void check_number(const VARIANT& number, double value, int digits) {
  if (!std::isfinite(value) || value == 0 || is_tie(value, digits)) return;
  char expected[64];
  std::snprintf(expected, sizeof expected, "%.*G", digits, value);
  require(ovf::ansi_from_wide(ovf::to_text(number)) == expected, "a number reads like the C library's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  check_text(text_of(data, size));
  if (size >= sizeof(double)) {
    double value = 0;
    float single = 0;
    std::memcpy(&value, data, sizeof value);
    std::memcpy(&single, data, sizeof single);
    check_number(ovf::variant(value), value, 15);
    check_number(ovf::variant(single), static_cast<double>(single), 7);
    VARIANT date = ovf::variant(value).release();
    date.vt = VT_DATE;
    ovf::variant text;
    ovf::change_type(*text.out(), date, VT_BSTR);
  }
  return 0;
}
