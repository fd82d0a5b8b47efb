// Blocks of rows, read and put behind the table's end.
#include <algorithm>
#include <atomic>
#include <utility>

#include "engine/refusals.h"
#include "engine/row_store.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view nothing_begun = OLESTR("AddRow failed, the rows that were being added were given up");
constexpr wide_view file_is_cut = OLESTR("Append failed, the table's file ends before its rows do");

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
std::uint64_t row_store<Precision>::room_for_rows() const noexcept {
  const std::uint64_t pages = Precision::largest_count - counts_.header_pages;
  const bool pages_decide = records_per_page_ != 0 && pages < most_rows / records_per_page_;
  const std::uint64_t most = pages_decide ? pages * records_per_page_ : most_rows;
  return most - std::min(most, row_count_);
}

template <class Precision>
void row_store<Precision>::begin_rows() {
  if (records_per_page_ == 0) throw MyExceptionClass(wide(nothing_stored));
  give_up_rows();
  claim_growth(OLESTR("Append"));
  try {
    prepare_rows();
  } catch (...) {
    may_let_others_grow();
    throw;
  }
}

template <class Precision>
void row_store<Precision>::prepare_rows() {
  require_known_file();
  records_.flush();
  added_rows made;
  made.file_bytes = file_bytes();
  // Rows behind a gap would make zeros of those that are missing.
  if (made.file_bytes < bytes_of_rows()) throw MyExceptionClass(wide(file_is_cut));
  made.least_bytes = made.file_bytes;
  made.most_bytes = made.file_bytes;
  made.first_page = counts_.header_pages + row_count_ / records_per_page_;
  made.records = static_cast<std::size_t>(row_count_ % records_per_page_);
  made.record.resize(record_bytes());
  fill_with_defaults(made.record.data());
  if (made.records != 0 || made.first_page < counts_.pages) take_begun_page(made);
  added_ = std::move(made);
}

template <class Precision>
std::uint64_t row_store<Precision>::bytes_of_rows() const noexcept {
  const std::uint64_t last = row_count_ == 0 ? 0 : (row_count_ - 1) / records_per_page_;
  const std::uint64_t records = row_count_ - last * records_per_page_;
  return (counts_.header_pages + last) * Precision::page_bytes + records * record_bytes();
}

template <class Precision>
void row_store<Precision>::take_begun_page(added_rows& to) {
  const std::byte* page = records_.page(to.first_page, counts_);
  to.begun.index = to.first_page++;
  to.begun.counted_bytes = to.records * record_bytes();
  to.begun.before.assign(page, page + Precision::page_bytes);
  to.begun.after = to.begun.before;
  to.begun.is_filled = false;
}

template <class Precision>
added_rows& row_store<Precision>::added() {
  if (!added_) throw MyExceptionClass(wide(nothing_begun));
  return *added_;
}

template <class Precision>
void row_store<Precision>::require_room_for(std::uint64_t rows) const {
  const std::uint64_t all = row_count_ + rows;
  int_of(all);
  const std::uint64_t pages = counts_.header_pages + (all + records_per_page_ - 1) / records_per_page_;
  if (pages > Precision::largest_count) throw std::out_of_range("ov_size_t_2_int");
}

template <class Precision>
void row_store<Precision>::put_rows(std::uint64_t rows, const record_writer& fill) {
  added_rows& to = added();
  require_room_for(to.rows + rows);
  while (rows > 0) {
    std::byte* records = page_being_filled(to) + to.records * record_bytes();
    const auto here = static_cast<std::size_t>(std::min<std::uint64_t>(rows, records_per_page_ - to.records));
    for (std::size_t i = 0; i < here; ++i) {
      std::memcpy(records + i * record_bytes(), to.record.data(), record_bytes());
    }
    fill(records, here);
    to.records += here;
    to.rows += here;
    rows -= here;
    if (to.records == records_per_page_) end_page(to);
  }
}

template <class Precision>
std::byte* row_store<Precision>::page_being_filled(added_rows& of) {
  if (!of.begun.is_filled) return of.begun.after.data();
  const std::size_t begin = of.whole_pages * Precision::page_bytes;
  if (of.pages.size() < begin + Precision::page_bytes) {
    of.pages.resize(begin + Precision::page_bytes);
  } else if (of.records == 0) {
    // The room of a page that was written before.
    std::memset(of.pages.data() + begin, 0, Precision::page_bytes);
  }
  return of.pages.data() + begin;
}

template <class Precision>
void row_store<Precision>::end_page(added_rows& of) {
  of.records = 0;
  if (!of.begun.is_filled) {
    of.begun.is_filled = true;
  } else if (++of.whole_pages == block_pages<Precision>) {
    write_pages(of, of.whole_pages);
  }
}

template <class Precision>
void row_store<Precision>::write_pages(added_rows& of, std::size_t pages) {
  if (pages == 0) return;
  require_known_file();
  of.are_written = true;
  of.most_bytes = std::max(of.most_bytes, (of.first_page + pages) * Precision::page_bytes);
  require_written(of.first_page * Precision::page_bytes,
                  std::span(of.pages).first(pages * Precision::page_bytes));
  of.least_bytes = of.most_bytes;
  of.first_page += pages;
  of.whole_pages = 0;
}

template <class Precision>
void row_store<Precision>::require_written(std::uint64_t position, std::span<const std::byte> bytes) {
  if (!write_at(*file_, position, bytes)) {
    fail_with_system_error(Precision::add_page_write_failed);
  }
}

template <class Precision>
void row_store<Precision>::write_rest(added_rows& of) {
  const bool is_begun = of.begun.is_filled && of.records != 0;
  write_pages(of, of.whole_pages + (is_begun ? 1 : 0));
  if (of.are_written) cut_spare_bytes(of.first_page);
  if (of.begun.after.empty()) return;
  of.begun.is_written = true;
  const std::size_t counted = of.begun.counted_bytes;
  require_written(of.begun.index * Precision::page_bytes + counted,
                  std::span(of.begun.after).subspan(counted));
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
void row_store<Precision>::commit_rows() {
  added_rows& all = added();
  if (all.rows != 0) {
    header_.get(format::pages_word);  // what follows the writing needs no more of the file
    require_known_file();
    write_rest(all);
    count_rows(row_count_ + all.rows);
    note_file();
  }
  added_.reset();
  may_let_others_grow();
}

template <class Precision>
void row_store<Precision>::count_rows(std::uint64_t rows) {
  const std::uint64_t full = (rows - 1) / records_per_page_;
  ++version_.changes;
  header_waits_ = true;
  records_.forget();
  row_count_ = rows;
  counts_.pages = counts_.header_pages + full + 1;
  header_.set(format::pages_word, counts_.pages);
  set_records_in_last_page(rows - full * records_per_page_);
}

template <class Precision>
void row_store<Precision>::give_up_rows() noexcept {
  if (!added_) return;
  take_back(*std::exchange(added_, std::nullopt));
  may_let_others_grow();
}

template <class Precision>
void row_store<Precision>::take_back(const added_rows& lost) noexcept {
  if (!lost.are_written && !lost.begun.is_written) return;
  ++version_.changes;  // the file is not the one that was last looked at
  // What somebody else has counted meanwhile may stand where the lost rows do.
  if (header_.state_in_file() != header_state::known || !is_own_file() || !has_known_size(lost)) return;
  if (lost.begun.is_written) {
    const std::size_t counted = lost.begun.counted_bytes;
    (void)write_at(*file_, lost.begun.index * Precision::page_bytes + counted,
                   std::span(lost.begun.before).subspan(counted));
  }
  // Bytes behind the counted pages do no harm where they cannot be cut.
  std::uint64_t size = 0;
  if (!file_->size(size) || size <= lost.file_bytes) return;
  if (file_->seek(static_cast<std::int64_t>(lost.file_bytes), seek_origin::begin)) (void)file_->set_end();
}

template class row_store<single_precision>;
template class row_store<double_precision>;

}  // namespace ovf
