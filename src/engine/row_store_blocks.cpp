// Blocks of rows, read and put behind the table's end.
#include <algorithm>
#include <atomic>

#include "engine/row_store.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view nothing_stored = OLESTR("AddRow failed, the table has no stored fields");

template <class Precision>
constexpr std::size_t block_pages = block_bytes / Precision::page_bytes;

bool read_at(file& from, std::uint64_t position, std::span<std::byte> bytes, std::size_t& done) noexcept {
  return from.seek(static_cast<std::int64_t>(position), seek_origin::begin) && from.read(bytes, done);
}

bool write_at(file& to, std::uint64_t position, std::span<const std::byte> bytes) noexcept {
  std::size_t done = 0;
  return to.seek(static_cast<std::int64_t>(position), seek_origin::begin) && to.write(bytes, done) &&
         done == bytes.size();
}

}  // namespace

std::uint64_t new_table_number() noexcept {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

template <class Precision>
void row_store<Precision>::read_rows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer,
                                     const record_reader& take) {
  if (rows == 0) return;
  std::uint64_t row = first - 1;
  const std::uint64_t end = row + rows;
  const auto page_of = [this](std::uint64_t of) { return counts_.header_pages + of / records_per_page_; };
  while (row < end) {
    const page_run run = pages_from(page_of(row), page_of(end - 1), buffer);
    for (std::size_t i = 0; i < run.pages; ++i) {
      const auto within = static_cast<std::size_t>(row % records_per_page_);
      const auto here =
          static_cast<std::size_t>(std::min<std::uint64_t>(records_per_page_ - within, end - row));
      take(run.bytes + i * Precision::page_bytes + within * record_bytes(), here);
      row += here;
    }
  }
}

template <class Precision>
auto row_store<Precision>::pages_from(std::uint64_t page, std::uint64_t last, block_buffer& buffer)
    -> page_run {
  const std::uint64_t held = held_segment();
  // What is in memory may be newer than the file.
  if (page / Precision::segment_pages == held) return {records_.page(page, counts_), 1};
  std::uint64_t pages = std::min<std::uint64_t>(last - page + 1, block_pages<Precision>);
  if (last / Precision::segment_pages >= held && page / Precision::segment_pages < held) {
    pages = std::min(pages, held * Precision::segment_pages - page);
  }
  const std::span<std::byte> bytes(buffer.data(), static_cast<std::size_t>(pages) * Precision::page_bytes);
  std::size_t done = 0;
  const bool is_read = read_at(*file_, page * Precision::page_bytes, bytes, done);
  if (is_read && done >= Precision::page_bytes) return {bytes.data(), done / Precision::page_bytes};
  // The file ends early, or fails: the page cache knows what is still served, and the words for the rest.
  return {records_.page(page, counts_), 1};
}

template <class Precision>
added_rows row_store<Precision>::begin_rows() {
  if (records_per_page_ == 0) throw MyExceptionClass(wide(nothing_stored));
  records_.flush();
  added_rows added;
  added.file_bytes = file_bytes();
  added.first_page = counts_.header_pages + row_count_ / records_per_page_;
  added.records = static_cast<std::size_t>(row_count_ % records_per_page_);
  added.record.resize(record_bytes());
  fill_with_defaults(added.record.data());
  const bool is_counted = added.records != 0 || added.first_page < counts_.pages;
  if (!is_counted) return added;
  const std::byte* page = records_.page(added.first_page, counts_);
  added.kept_page = added.first_page;
  added.kept_bytes.assign(page, page + Precision::page_bytes);
  added.pages = added.kept_bytes;
  return added;
}

template <class Precision>
void row_store<Precision>::require_room_for(std::uint64_t rows) const {
  const std::uint64_t all = row_count_ + rows;
  int_of(all);
  const std::uint64_t pages = counts_.header_pages + (all + records_per_page_ - 1) / records_per_page_;
  if (pages > Precision::largest_count) throw std::out_of_range("ov_size_t_2_int");
}

template <class Precision>
std::byte* row_store<Precision>::page_being_filled(added_rows& added) const {
  const std::size_t begin = added.whole_pages * Precision::page_bytes;
  if (added.pages.size() < begin + Precision::page_bytes) {
    added.pages.resize(begin + Precision::page_bytes);
  } else if (added.records == 0 && (added.are_written || begin != 0)) {
    // The room of a page that was written before.
    std::memset(added.pages.data() + begin, 0, Precision::page_bytes);
  }
  return added.pages.data() + begin;
}

template <class Precision>
void row_store<Precision>::put_rows(added_rows& added, std::uint64_t rows, const record_writer& fill) {
  require_room_for(added.rows + rows);
  while (rows > 0) {
    std::byte* records = page_being_filled(added) + added.records * record_bytes();
    const auto here =
        static_cast<std::size_t>(std::min<std::uint64_t>(rows, records_per_page_ - added.records));
    for (std::size_t i = 0; i < here; ++i) {
      std::memcpy(records + i * record_bytes(), added.record.data(), record_bytes());
    }
    fill(records, here);
    added.records += here;
    added.rows += here;
    rows -= here;
    if (added.records < records_per_page_) continue;
    added.records = 0;
    if (++added.whole_pages == block_pages<Precision>) write_pages(added, added.whole_pages);
  }
}

template <class Precision>
void row_store<Precision>::cut_spare_bytes(std::uint64_t page) {
  // A page that is appended by itself ends the file in double precision, and leaves what follows in single.
  if (!Precision::is_double) return;
  const std::uint64_t end = page * Precision::page_bytes;
  if (file_bytes() <= end) return;
  if (!file_->seek(static_cast<std::int64_t>(end), seek_origin::begin) || !file_->set_end()) {
    fail_with_system_error(Precision::add_page_write_failed);
  }
}

template <class Precision>
void row_store<Precision>::write_pages(added_rows& added, std::size_t pages) {
  if (pages == 0) return;
  const bool first = !added.are_written;
  added.are_written = true;
  const std::uint64_t fresh = added.first_page + (added.kept_bytes.empty() ? 0 : 1);
  if (first && pages > fresh - added.first_page) cut_spare_bytes(fresh);
  const std::span<const std::byte> bytes(added.pages.data(), pages * Precision::page_bytes);
  if (!write_at(*file_, added.first_page * Precision::page_bytes, bytes)) {
    fail_with_system_error(Precision::add_page_write_failed);
  }
  added.first_page += pages;
  added.whole_pages = 0;
}

template <class Precision>
void row_store<Precision>::commit_rows(added_rows& added) {
  if (added.rows == 0) return;
  header_.get(format::pages_word);  // what follows the writing needs no more of the file
  write_pages(added, added.whole_pages + (added.records == 0 ? 0 : 1));
  const std::uint64_t rows = row_count_ + added.rows;
  const std::uint64_t full = (rows - 1) / records_per_page_;
  note_change();
  records_.forget();
  row_count_ = rows;
  counts_.pages = counts_.header_pages + full + 1;
  header_.set(format::pages_word, counts_.pages);
  set_records_in_last_page(rows - full * records_per_page_);
}

template <class Precision>
void row_store<Precision>::give_up_rows(added_rows& added) noexcept {
  if (!added.are_written) return;
  note_change();  // the file is not the one that was last looked at
  records_.forget();
  if (!added.kept_bytes.empty()) {
    (void)write_at(*file_, added.kept_page * Precision::page_bytes, added.kept_bytes);
  }
  // Bytes behind the counted pages do no harm where they cannot be cut.
  std::uint64_t size = 0;
  if (!file_->size(size) || size <= added.file_bytes) return;
  if (file_->seek(static_cast<std::int64_t>(added.file_bytes), seek_origin::begin)) (void)file_->set_end();
}

template class row_store<single_precision>;
template class row_store<double_precision>;

}  // namespace ovf
