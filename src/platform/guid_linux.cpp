// Identifiers as text: {8-4-4-4-12} hexadecimal digits.
#include <algorithm>
#include <cstdint>

#include "base/text.h"
#include "ovfile/component.h"

namespace {

constexpr std::size_t text_length = 38;
constexpr ovf::wide_view pattern = u"{00000000-0000-0000-0000-000000000000}";
/// The places of the bytes' digits, in the order of the text.
constexpr std::size_t byte_places[16] = {1, 3, 5, 7, 10, 12, 15, 17, 20, 22, 25, 27, 29, 31, 33, 35};

int digit_value(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  return -1;
}

/// The bytes as the text has them: numbers with their highest byte first.
void to_bytes(REFGUID guid, std::uint8_t (&bytes)[16]) {
  for (unsigned i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(guid.Data1 >> (24 - 8 * i));
  for (unsigned i = 0; i < 2; ++i) bytes[4 + i] = static_cast<std::uint8_t>(guid.Data2 >> (8 - 8 * i));
  for (unsigned i = 0; i < 2; ++i) bytes[6 + i] = static_cast<std::uint8_t>(guid.Data3 >> (8 - 8 * i));
  std::copy_n(guid.Data4, 8, bytes + 8);
}

GUID from_bytes(const std::uint8_t (&bytes)[16]) {
  GUID guid{};
  for (unsigned i = 0; i < 4; ++i) guid.Data1 = guid.Data1 << 8 | bytes[i];
  guid.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
  guid.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
  std::copy_n(bytes + 8, 8, guid.Data4);
  return guid;
}

bool read_guid(ovf::wide_view text, GUID& guid) {
  if (text.size() != text_length) return false;
  for (std::size_t i = 0; i < text_length; ++i) {
    if (pattern[i] == u'0' ? digit_value(text[i]) < 0 : text[i] != pattern[i]) return false;
  }
  std::uint8_t bytes[16];
  for (std::size_t i = 0; i < 16; ++i) {
    const std::size_t place = byte_places[i];
    bytes[i] = static_cast<std::uint8_t>(digit_value(text[place]) << 4 | digit_value(text[place + 1]));
  }
  guid = from_bytes(bytes);
  return true;
}

}  // namespace

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* pclsid) {
  if (pclsid == nullptr) return E_POINTER;
  *pclsid = CLSID_NULL;
  if (text == nullptr) return S_OK;
  if (*text != u'{') return CLSIDFromProgID(text, pclsid);
  return read_guid(text, *pclsid) ? S_OK : CO_E_CLASSSTRING;
}

INT StringFromGUID2(REFGUID guid, LPOLESTR text, INT cchMax) {
  constexpr INT needed = static_cast<INT>(text_length) + 1;
  if (text == nullptr || cchMax < needed) return 0;
  static constexpr char16_t digits[] = u"0123456789ABCDEF";
  std::uint8_t bytes[16];
  to_bytes(guid, bytes);
  std::copy_n(pattern.data(), text_length, text);
  for (std::size_t i = 0; i < 16; ++i) {
    text[byte_places[i]] = digits[bytes[i] >> 4];
    text[byte_places[i] + 1] = digits[bytes[i] & 15];
  }
  text[text_length] = 0;
  return needed;
}
