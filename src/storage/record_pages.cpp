#include "storage/record_pages.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view set_end_failed =
    OLESTR("OvFile Error: addPage failed to set the end of the file. (%x: %s)");

/// Zero bytes in the place of a page.
template <class Precision>
constexpr std::byte empty_page[Precision::page_bytes] = {};

}  // namespace

template <class Precision>
record_pages<Precision>::record_pages(file& target, bool may_write, std::size_t record_words)
    : record_words_(record_words), map_(set_up(target, may_write)) {}

template <class Precision>
auto record_pages<Precision>::set_up(file& target, bool may_write) -> std::unique_ptr<map> {
  try {
    return std::make_unique<map>(&target, may_write);
  } catch (const std::bad_alloc&) {
    fail_told(cannot_cache);
  }
}

template <class Precision>
std::byte* record_pages<Precision>::page(std::uint64_t index, const page_counts& counts) {
  const std::uint64_t segment = index / Precision::segment_pages;
  const std::uint64_t within = index % Precision::segment_pages;
  const std::uint64_t end = (within + 1) * Precision::page_bytes;
  // The first segment of a double-precision file holds the header pages too; they are not ours to write.
  const bool shares_header = Precision::segment_pages > 1 && segment == 0;
  const std::uint64_t write_start = shares_header ? counts.header_pages * Precision::page_bytes : 0;
  map_->load(segment, need_of(index, counts), end, write_start);
  return map_->data() + within * Precision::page_bytes;
}

template <class Precision>
segment_need record_pages<Precision>::need_of(std::uint64_t index, const page_counts& counts) const noexcept {
  const std::uint64_t in_use = record_words_ * counts.records_in_last_page;
  const std::uint64_t within = index % Precision::segment_pages;
  segment_need need{Precision::page_bytes * Precision::segment_pages, (within + 1) * Precision::page_bytes,
                    within * Precision::page_bytes};
  if constexpr (Precision::segment_pages == 1) {
    if (index + 1 == counts.pages) need.required = in_use;
  } else {
    const std::uint64_t last_page = std::max(counts.pages, index + 1) - 1;
    if (index / Precision::segment_pages == last_page / Precision::segment_pages) {
      need.required = last_page % Precision::segment_pages * Precision::page_bytes + in_use;
    }
  }
  return need;
}

template <class Precision>
void record_pages<Precision>::append(const page_counts& counts) {
  // What lies behind an early end of the file is about to change under the segment.
  if (map_->ends_early()) {
    map_->flush();
    map_->forget();
  }
  file& target = *map_->target();
  const std::uint64_t position = counts.pages * Precision::page_bytes;
  (void)map_->seek(position);
  std::uint64_t size = 0;
  if constexpr (Precision::is_double) {
    if (!target.size(size)) throw file_error(OLESTR("cannot retrieve file size"));
    if (size > position && !target.set_end()) fail_with_system_error(set_end_failed);
  }
  std::size_t done = 0;
  if (!target.write(empty_page<Precision>, done) || done != Precision::page_bytes) {
    fail_with_system_error(Precision::add_page_write_failed);
  }
  if constexpr (Precision::segment_pages == 1) {
    map_->begin_empty(counts.pages, Precision::page_bytes, 0);
  } else if (map_->valid() && map_->segment() == counts.pages / Precision::segment_pages) {
    const std::uint64_t within = counts.pages % Precision::segment_pages;
    std::memset(map_->data() + within * Precision::page_bytes, 0, Precision::page_bytes);
  }
}

template class record_pages<single_precision>;
template class record_pages<double_precision>;

}  // namespace ovf
