// The record pages of an open table, one segment of them in memory at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "storage/precision.h"
#include "storage/segment_map.h"

namespace ovf {

/// What the header says about the file's pages.
struct page_counts {
  std::uint64_t header_pages;
  std::uint64_t pages;  ///< header pages included
  std::uint64_t records_in_last_page;
};

template <class Precision>
class record_pages {
 public:
  /// Throws file_error "error caching page" when there is no memory for a segment.
  record_pages(file& target, bool may_write, std::size_t record_words);

  /// The bytes of a page, counted from the beginning of the file. They stay until another page is asked
  /// for. Throws the page cache's messages.
  std::byte* page(std::uint64_t index, const page_counts& counts);
  /// Appends an empty page to the file behind the counted ones.
  void append(const page_counts& counts);

  /// The segment in memory; fileSegmentMap's `none` without one.
  std::uint64_t segment() const noexcept { return map_->valid() ? map_->segment() : map::none; }

  /// Says that these bytes of the segment in memory were changed: they alone are written back.
  void mark_changed(const std::byte* record, std::size_t bytes) noexcept {
    map_->mark_changed(static_cast<std::size_t>(record - map_->data()), bytes);
  }
  void flush() { map_->flush(); }
  void forget() noexcept { map_->forget(); }
  /// Goes on with another open file, which nothing was read from yet.
  void turn_to(file& target) noexcept { map_->turn_to(target); }

 private:
  using map = fileSegmentMap<Precision::page_bytes * Precision::segment_pages>;

  static std::unique_ptr<map> set_up(file& target, bool may_write);
  segment_need need_of(std::uint64_t index, const page_counts& counts) const noexcept;

  std::size_t record_words_;
  std::unique_ptr<map> map_;
};

}  // namespace ovf
