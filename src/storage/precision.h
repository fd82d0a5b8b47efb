// The two precisions of a table file: everything in which they differ as types and numbers. Code that
// serves both is a template over one of these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "base/text.h"
#include "storage/format.h"

namespace ovf {

struct single_precision {
  using number = float;
  using bits = std::uint32_t;
  static constexpr bool is_double = false;
  static constexpr std::size_t word_bytes = 4;
  static constexpr std::size_t page_bytes = format::page_words * word_bytes;
  static constexpr std::size_t segment_pages = 1;  ///< record pages held in memory at a time
  static constexpr std::size_t max_atoms = 64;
  static constexpr number mark = 987654.0F;
  /// Whole numbers up to here are exact in a word of the header.
  static constexpr std::uint64_t largest_count = std::uint64_t{1} << 24;
  static constexpr wide_view created_by =
      OLESTR("Created by OvFile Component (Single Precision) on %d/%d/%d");
  static constexpr wide_view add_page_write_failed =
      OLESTR("OvFile Error: addPage failed to write an entire page. (%x: %s)");
  static constexpr wide_view too_many_atoms = OLESTR("The Field count exceeds the limit of single precision");
};

struct double_precision {
  using number = double;
  using bits = std::uint64_t;
  static constexpr bool is_double = true;
  static constexpr std::size_t word_bytes = 8;
  static constexpr std::size_t page_bytes = format::page_words * word_bytes;
  static constexpr std::size_t segment_pages = 100;
  static constexpr std::size_t max_atoms = 256;
  static constexpr number mark = 456789.0;
  /// Of a host's integer: a page's number, too.
  static constexpr std::uint64_t largest_count = (std::uint64_t{1} << 31) - 1;
  static constexpr wide_view created_by =
      OLESTR("Created by OvFile Component (Double Precision) on %d/%d/%d");
  static constexpr wide_view add_page_write_failed =
      OLESTR("OvFile Error: Add Page failed to write an entire page. (%x: %s)");
  static constexpr wide_view too_many_atoms = OLESTR("The Field count exceeds the limit of double precision");
};

/// A number of the precision for a double: what single precision cannot hold becomes an infinity.
template <class Precision>
typename Precision::number number_from(double value) noexcept {
  if constexpr (Precision::is_double) {
    return value;
  } else {
    constexpr double beyond = 0x1.ffffffp127;  // halfway between the largest float and the next power of 2
    if (value >= beyond) return std::numeric_limits<float>::infinity();
    if (value <= -beyond) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(value);
  }
}

static_assert(single_precision::page_bytes == 2048 && double_precision::page_bytes == 4096);

}  // namespace ovf
