// What other programs do to the file of an open table, as far as rows could be lost by it.
#include <algorithm>
#include <utility>

#include "engine/row_store.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view adds_rows = OLESTR(" failed, another program is appending to the table's file");
constexpr wide_view changed_meanwhile =
    OLESTR(" failed, another program has changed the table's file meanwhile");

}  // namespace

template <class Precision>
void row_store<Precision>::note_file() noexcept {
  file_stamp now;
  noted_ = file_->stamp(now) ? std::optional(now) : std::nullopt;
}

template <class Precision>
void row_store<Precision>::remember_header() noexcept {
  try {
    header_.remember(counts_.header_pages);
  } catch (...) {
    // Whoever needs it reads it then.
  }
}

template <class Precision>
void row_store<Precision>::claim_growth(wide_view call) {
  // What is changed in a table that was opened for reading stays in memory.
  if (grows_alone_ || read_only_) return;
  grows_alone_ = file_->claim_growth();
  if (!grows_alone_) throw MyExceptionClass(wide(call) += adds_rows);
}

template <class Precision>
void row_store<Precision>::own_header(wide_view call) {
  if (added_) give_up_rows();
  if (grows_alone_ || read_only_) return;
  claim_growth(call);
  // A file that cannot be read says so when it is written.
  if (header_.state_in_file() == header_state::changed) {
    may_let_others_grow();
    throw MyExceptionClass(wide(call) += changed_meanwhile);
  }
  if (!std::exchange(miscounts_pages_, false)) return;
  header_.set(format::pages_word, counts_.pages);
}

template <class Precision>
void row_store<Precision>::may_let_others_grow() noexcept {
  if (!grows_alone_ || header_waits_ || added_) return;
  file_->give_back_growth();
  grows_alone_ = false;
}

template <class Precision>
void row_store<Precision>::require_known_file() {
  const bool is_known = header_.state_in_file() == header_state::known && is_own_file() &&
                        (added_ ? has_known_size(*added_) && has_known_begun_page(*added_) : has_own_size());
  if (!is_known) throw MyExceptionClass(OLESTR("Append") + wide(changed_meanwhile));
}

template <class Precision>
bool row_store<Precision>::is_own_file() const noexcept {
  if (!noted_) return true;
  file_stamp now;
  return files().stamp(path_, now) && now.volume == noted_->volume && now.number == noted_->number;
}

template <class Precision>
bool row_store<Precision>::has_own_size() noexcept {
  // What is written here row by row ends with the counted pages.
  std::uint64_t size = 0;
  return !noted_ ||
         (file_->size(size) && size <= std::max(noted_->bytes, counts_.pages * Precision::page_bytes));
}

template <class Precision>
bool row_store<Precision>::has_known_size(const added_rows& of) noexcept {
  std::uint64_t size = 0;
  return file_->size(size) && size >= of.least_bytes && size <= of.most_bytes;
}

template <class Precision>
bool row_store<Precision>::has_known_begun_page(const added_rows& of) {
  if (of.begun.before.empty() || of.begun.is_written) return true;
  const auto free = std::span(of.begun.before).subspan(of.begun.counted_bytes);
  std::vector<std::byte> now(free.size());  // a file may end with its rows, and reads as zeros behind them
  std::size_t done = 0;
  const std::uint64_t position = of.begun.index * Precision::page_bytes + of.begun.counted_bytes;
  return file_->seek(static_cast<std::int64_t>(position), seek_origin::begin) && file_->read(now, done) &&
         std::ranges::equal(now, free);
}

template class row_store<single_precision>;
template class row_store<double_precision>;

}  // namespace ovf
