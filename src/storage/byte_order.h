// The four byte orders in which single-precision files come. The rearrangement of a code is its own
// inverse, so one function serves reading and writing.
#pragma once

#include <cstdint>

namespace ovf {

/// Byte-order code of a file; the numbers are what hosts see.
enum class byte_order : std::uint32_t {
  native = 0,
  bytes_swapped = 256,    ///< within each 16-bit half
  halves_swapped = 1024,  ///< of each 32-bit word
  reversed = 1280
};

/// The order in which recognition tries the codes.
inline constexpr byte_order tried_orders[] = {byte_order::native, byte_order::bytes_swapped,
                                              byte_order::reversed, byte_order::halves_swapped};

constexpr std::uint32_t rearranged(std::uint32_t word, byte_order order) noexcept {
  constexpr std::uint32_t low_bytes = 0x00FF00FF;
  switch (order) {
    case byte_order::native:
      return word;
    case byte_order::bytes_swapped:
      return ((word & low_bytes) << 8) | ((word >> 8) & low_bytes);
    case byte_order::halves_swapped:
      return (word << 16) | (word >> 16);
    case byte_order::reversed:
      return rearranged((word << 16) | (word >> 16), byte_order::bytes_swapped);
  }
  return word;
}
static_assert(rearranged(0x01020304u, byte_order::reversed) == 0x04030201u);

/// Each half of an 8-byte word is rearranged by itself: the halves never change places.
constexpr std::uint64_t rearranged(std::uint64_t word, byte_order order) noexcept {
  const std::uint64_t high = rearranged(static_cast<std::uint32_t>(word >> 32), order);
  return high << 32 | rearranged(static_cast<std::uint32_t>(word), order);
}

}  // namespace ovf
