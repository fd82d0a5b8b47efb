// Texts with their length in front. A block is 8 bytes of head (the length lies in its second half, so
// that the text is as well aligned as the block), the text, and a 0 of 16 bits.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "ovfile/component.h"

namespace {

constexpr std::size_t head = 8;
constexpr std::size_t length_size = sizeof(std::uint32_t);
constexpr std::size_t tail = 3;  ///< a 0 of 16 bits also after an odd number of bytes, which ends unevenly

BSTR allocate(const void* bytes, std::size_t count) noexcept {
  if (count > std::numeric_limits<std::uint32_t>::max() - head - tail) return nullptr;
  char* block = static_cast<char*>(std::malloc(head + count + tail));
  if (block == nullptr) return nullptr;
  const auto length = static_cast<std::uint32_t>(count);
  std::memset(block, 0, head);
  std::memcpy(block + head - length_size, &length, length_size);
  if (bytes == nullptr) {
    std::memset(block + head, 0, count);
  } else {
    std::memcpy(block + head, bytes, count);
  }
  std::memset(block + head + count, 0, tail);
  return reinterpret_cast<BSTR>(block + head);
}

std::size_t units_in(const OLECHAR* text) noexcept { return std::char_traits<OLECHAR>::length(text); }

/// The old text is let go last: the new one may be a part of it.
INT replace(BSTR* place, BSTR fresh) noexcept {
  SysFreeString(*place);
  *place = fresh;
  return 1;
}

}  // namespace

BSTR SysAllocString(const OLECHAR* text) {
  return text == nullptr ? nullptr : allocate(text, units_in(text) * sizeof(OLECHAR));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT units) {
  return allocate(text, std::size_t{units} * sizeof(OLECHAR));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT count) { return allocate(bytes, count); }

INT SysReAllocString(BSTR* pbstr, const OLECHAR* text) {
  if (pbstr == nullptr) return 0;
  const BSTR fresh = SysAllocString(text);
  if (fresh == nullptr && text != nullptr) return 0;
  return replace(pbstr, fresh);
}

INT SysReAllocStringLen(BSTR* pbstr, const OLECHAR* text, UINT units) {
  if (pbstr == nullptr) return 0;
  const BSTR fresh = SysAllocStringLen(text, units);
  return fresh == nullptr ? 0 : replace(pbstr, fresh);
}

void SysFreeString(BSTR bstr) {
  if (bstr != nullptr) std::free(reinterpret_cast<char*>(bstr) - head);
}

UINT SysStringByteLen(BSTR bstr) {
  if (bstr == nullptr) return 0;
  std::uint32_t length = 0;
  std::memcpy(&length, reinterpret_cast<const char*>(bstr) - length_size, length_size);
  return length;
}

UINT SysStringLen(BSTR bstr) { return SysStringByteLen(bstr) / static_cast<UINT>(sizeof(OLECHAR)); }
