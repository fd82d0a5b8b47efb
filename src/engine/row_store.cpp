#include "engine/row_store.h"

#include <algorithm>

#include "engine/refusals.h"
#include "engine/values.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view cut_failed =
    OLESTR("OvFile Error: onSetRowCount failed to set the end of the file. (%x: %s)");
constexpr wide_view header_lost = OLESTR("OvFile Error: the header cannot be read again. (%x: %s)");
constexpr wide_view sync_failed = OLESTR("OvFile Error: the disk did not take what was written. (%x: %s)");

}  // namespace

template <class Precision>
row_store<Precision>::row_store(std::unique_ptr<file> opened, wide path, bool read_only, byte_order order)
    : file_(std::move(opened)),
      path_(std::move(path)),
      read_only_(read_only),
      header_(*file_, !read_only, order),
      fields_(read_fields(header_)),
      records_(*file_, !read_only, fields_.record_words()) {
  header_.before_write([this] { records_.flush(); });
  read_counts();
  note_file();
}

template <class Precision>
row_store<Precision>::~row_store() {
  give_up_rows();
  try {
    flush();
  } catch (...) {
    // Nobody is left to tell; whoever wants to know flushes before. The header must not promise rows
    // that did not reach the file.
    header_.forget();
  }
}

template <class Precision>
void row_store<Precision>::read_counts() {
  const auto count = [this](std::size_t word) { return count_from(static_cast<double>(header_.get(word))); };
  records_per_page_ = format::records_per_page(fields_.record_words());
  counts_.header_pages = format::header_pages(static_cast<std::size_t>(count(format::atoms_word)));
  counts_.pages = count(format::pages_word);
  counts_.records_in_last_page = count(format::last_records_word);
  if (counts_.pages != 0) counts_.pages = std::max(counts_.pages, counts_.header_pages);
  if (records_per_page_ != 0 && counts_.records_in_last_page > records_per_page_) fail_not_a_table();
  row_count_ = computed_row_count();
  if (row_count_ > most_rows) fail_not_a_table();
  // Some writers count one record page in a table that has none yet.
  miscounts_pages_ =
      Precision::is_double && counts_.pages == 2 && row_count_ == 0 && counts_.header_pages != 2;
  if (miscounts_pages_) counts_.pages = counts_.header_pages;
}

template <class Precision>
std::uint64_t row_store<Precision>::computed_row_count() const noexcept {
  if (counts_.pages == 0 || records_per_page_ == 0) return 0;
  const std::uint64_t record_pages = counts_.pages - counts_.header_pages;
  const std::uint64_t full_pages = record_pages == 0 ? 0 : record_pages - 1;
  return counts_.records_in_last_page + full_pages * records_per_page_;
}

template <class Precision>
std::uint64_t row_store<Precision>::file_bytes() {
  std::uint64_t bytes = 0;
  if (!file_->size(bytes)) throw file_error(OLESTR("cannot retrieve file size"));
  return bytes;
}

template <class Precision>
row_place row_store<Precision>::locate(std::uint64_t row) {
  const std::uint64_t index = row - 1;
  const std::uint64_t within = index % records_per_page_;
  const std::uint64_t page = counts_.header_pages + index / records_per_page_;
  std::byte* record = records_.page(page, counts_) + within * record_bytes();
  const std::uint64_t rows_on_page =
      std::min<std::uint64_t>(records_per_page_, row_count_ - (index - within));
  return {record, rows_on_page - within - 1};
}

template <class Precision>
row_place row_store<Precision>::append() {
  require_room_for_a_row();
  const bool is_first = !grows_alone_;
  own_header(OLESTR("AddRow"));
  try {
    // Others may have changed values of the last page since it was read.
    if (is_first && !read_only_) {
      records_.flush();
      records_.forget();
    }
    return append_row();
  } catch (...) {
    may_let_others_grow();
    throw;
  }
}

template <class Precision>
row_place row_store<Precision>::append_row() {
  note_change();
  count_the_uncounted_page();
  const bool has_room =
      counts_.pages > counts_.header_pages && counts_.records_in_last_page != records_per_page_;
  if (!has_room) append_page();
  set_records_in_last_page(counts_.records_in_last_page + 1);
  ++row_count_;
  try {
    const row_place place = locate(row_count_);
    fill_with_defaults(place.record);
    // A full page goes to the file with what lies behind its rows: many of them are one write then.
    const bool is_full = counts_.records_in_last_page == records_per_page_;
    const std::size_t spare = Precision::page_bytes - records_per_page_ * record_bytes();
    records_.mark_changed(place.record, record_bytes() + (is_full ? spare : 0));
    return place;
  } catch (...) {
    // The row is not there: it must not count when nobody could fill it.
    set_records_in_last_page(counts_.records_in_last_page - 1);
    --row_count_;
    throw;
  }
}

template <class Precision>
void row_store<Precision>::require_room_for_a_row() const {
  if (records_per_page_ == 0) throw MyExceptionClass(wide(nothing_stored));
  int_of(row_count_ + 1);
}

template <class Precision>
void row_store<Precision>::count_the_uncounted_page() {
  if (counts_.pages != counts_.header_pages || counts_.records_in_last_page == 0) return;
  header_waits_ = true;
  header_.set(format::pages_word, counts_.pages + 1);
  ++counts_.pages;
}

template <class Precision>
void row_store<Precision>::append_page() {
  page_counts grown = counts_;
  grown.pages = std::max(counts_.pages, counts_.header_pages);
  if (grown.pages + 1 > Precision::largest_count) throw std::out_of_range("ov_size_t_2_int");
  records_.append(grown);
  ++grown.pages;
  grown.records_in_last_page = 0;
  header_waits_ = true;
  header_.set(format::pages_word, grown.pages);
  header_.set(format::last_records_word, 0);
  counts_ = grown;
}

template <class Precision>
void row_store<Precision>::set_records_in_last_page(std::uint64_t records) {
  header_waits_ = true;
  header_.set(format::last_records_word, records);
  counts_.records_in_last_page = records;
}

template <class Precision>
void row_store<Precision>::fill_with_defaults(std::byte* record) const {
  for (const field& each : fields_) {
    for (const atom& word : each.atoms) {
      if (word.position == 0) continue;
      std::byte* place = place_of(word, record, Precision::word_bytes);
      if (each.kind == field_kind::numeric) {
        std::memcpy(place, word.default_word.data(), Precision::word_bytes);
      } else {
        store_text<Precision>(place, load_text(word.default_word.data()));
      }
    }
  }
}

template <class Precision>
void row_store<Precision>::cut_to(std::uint64_t rows) {
  const std::uint64_t pages = counts_.header_pages + rows / records_per_page_ + 1;
  const bool pages_change = pages != counts_.pages;
  own_header(OLESTR("ReduceRowCountTo"));
  note_change();
  records_.flush();
  // What the segment holds beyond the new end must never be written again.
  records_.forget();
  header_.set(format::pages_word, pages);
  set_records_in_last_page(rows % records_per_page_);
  counts_.pages = pages;
  row_count_ = rows;
  header_.flush();
  header_waits_ = false;
  cut_behind(pages, pages_change);
  may_let_others_grow();
}

template <class Precision>
void row_store<Precision>::cut_behind(std::uint64_t pages, bool pages_change) {
  const std::uint64_t end = pages * Precision::page_bytes;
  // A file that is shorter than its header said does not grow by losing rows.
  if (!pages_change || file_bytes() <= end) return;
  if (!file_->seek(static_cast<std::int64_t>(end), seek_origin::begin) || !file_->set_end()) {
    fail_with_system_error(cut_failed);
  }
}

template <class Precision>
void row_store<Precision>::flush_and_keep() {
  records_.flush();
  header_.flush();
  header_waits_ = false;
}

template <class Precision>
void row_store<Precision>::flush() {
  flush_and_keep();
  may_let_others_grow();
  // What is in memory may be older than what others have written since.
  if (header_.state_in_file() == header_state::changed || !has_own_size()) records_.forget();
}

template <class Precision>
bool row_store<Precision>::read_again() {
  flush();
  records_.forget();
  const header_state found = header_.state_in_file();
  if (found == header_state::unreadable) fail_with_system_error(header_lost);
  return found == header_state::known;
}

template <class Precision>
void row_store<Precision>::sync() {
  if (read_only_) return;
  records_.flush();
  require_on_disk();
  flush();
  require_on_disk();
}

template <class Precision>
void row_store<Precision>::require_on_disk() {
  if (!file_->sync()) fail_with_system_error(sync_failed);
}

template class row_store<single_precision>;
template class row_store<double_precision>;

}  // namespace ovf
