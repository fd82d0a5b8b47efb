// The header of an open table, one page of it in memory at a time.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "storage/dictionary_entry.h"
#include "storage/format.h"
#include "storage/segment_map.h"

namespace ovf {

enum class header_state { known, changed, unreadable };

template <class Precision>
class header_pages {
 public:
  using number = typename Precision::number;

  header_pages(file& target, bool may_write, byte_order order)
      : order_(order), file_(&target), map_(&target, may_write) {}

  /// Runs before a header page is written: the header must never promise rows that are not in the file.
  void before_write(std::function<void()> action) { before_write_ = std::move(action); }

  /// A word of the file header (page 0), in native order.
  number get(std::size_t header_word);
  void set(std::size_t header_word, std::uint64_t value);
  /// The characters of consecutive words of page 0, each up to its first NUL.
  std::string texts(std::size_t header_word, std::size_t words);
  /// The same characters as they stand.
  std::string characters(std::size_t header_word, std::size_t words);
  /// The bytes of consecutive words of page 0.
  std::vector<std::byte> words(std::size_t header_word, std::size_t count);
  /// The entry of an atom. The bytes stay until another page is asked for.
  entry_span<Precision> entry(std::size_t atom);

  /// Says that bytes of the page in memory were changed.
  void mark_changed() noexcept { map_.mark_changed(); }
  void flush();
  /// Drops the page in memory with its changes.
  void forget() noexcept { map_.forget(); }
  /// Goes on with another open file, which nothing was read from yet.
  void turn_to(file& target) noexcept;
  /// Reads the pages that are not known yet: `state_in_file` looks at those that are.
  void remember(std::uint64_t pages);
  /// Compares the pages in the file with what was last read or written of them here.
  header_state state_in_file() noexcept;
  byte_order order() const noexcept { return order_; }

 private:
  using page_bytes = std::array<std::byte, Precision::page_bytes>;

  std::byte* page(std::uint64_t index);
  void note_page() noexcept;

  byte_order order_;
  file* file_;
  std::array<std::optional<page_bytes>, format::header_pages(Precision::max_atoms)>
      known_;  ///< as the file has them
  std::function<void()> before_write_;
  fileSegmentMap<Precision::page_bytes> map_;
};

}  // namespace ovf
