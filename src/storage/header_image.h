// All header pages of a table file in memory: what the header of its copy is made of.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/file.h"
#include "storage/dictionary_entry.h"

namespace ovf {

template <class Precision>
class header_image {
 public:
  using number = typename Precision::number;

  header_image(std::size_t pages, byte_order order) : order_(order), bytes_(pages * Precision::page_bytes) {}

  /// Reads the pages from the file's beginning. False when they are not all there.
  [[nodiscard]] bool read(file& from) noexcept;
  /// Adds pages of zeros.
  void grow_to(std::size_t pages) { bytes_.resize(pages * Precision::page_bytes); }

  /// A word of the file header, given in native order.
  void set(std::size_t header_word, std::uint64_t value) noexcept;
  entry_span<Precision> entry(std::size_t atom) noexcept;
  byte_order order() const noexcept { return order_; }
  std::span<const std::byte> bytes() const noexcept { return bytes_; }

 private:
  byte_order order_;
  std::vector<std::byte> bytes_;
};

}  // namespace ovf
