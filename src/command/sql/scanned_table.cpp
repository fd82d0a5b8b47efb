#include "sql/scanned_table.h"

#include <algorithm>

#include "failure.h"
#include "file_identity.h"

namespace command {
namespace {

ULONG flags_of(const scan_options& options) noexcept {
  // What reads the batches makes NaN of absent numbers that come as null, and widens floats by their digits.
  return options.absent == absent_value::keep ? 0 : ULONG{ovStreamAbsentAsNull};
}

/// Of the file that was opened, which is a link's target where there is one.
std::string identity_of(const table_view& view) {
  ovfile::text opened;
  view.check(view.table().get_Name(opened.out()));
  return file_identity(opened.utf8());
}

bool are_alike(const table_view& planned, const table_view& found) {
  return planned.is_single() == found.is_single() && found.rows() >= planned.rows() &&
         std::equal(planned.fields().begin(), planned.fields().end(), found.fields().begin(),
                    found.fields().end(), [](const field_view& one, const field_view& other) {
                      return one.name == other.name && one.is_text == other.is_text;
                    });
}

/// A bad condition is told when the statement is read, not in the middle of its work.
void check_condition(const table_view& view, const std::optional<std::string>& condition) {
  try {
    (void)make_condition(view, condition);
  } catch (const failure& error) {
    // Its words know it as an option of other commands.
    constexpr std::string_view option = "--where: ";
    const std::string_view words = error.what();
    if (!words.starts_with(option)) throw;
    throw failure("condition: " + std::string(words.substr(option.size())));
  }
}

}  // namespace

scanned_table::scanned_table(const std::string& file, const scan_options& options)
    : view_(file), options_(options), identity_(identity_of(view_)) {
  check_condition(view_, options_.condition);
}

void scanned_table::check_unchanged(const table_view& found) const {
  if (identity_of(found) == identity_ && are_alike(view_, found)) return;
  throw failure(view_.file() + ": the table was changed while the statement ran");
}

bool scan_ranges::take(LONG& first, LONG& rows) noexcept {
  const std::int64_t begin = next_.fetch_add(rows_at_once);
  if (begin >= rows_) return false;
  first = static_cast<LONG>(begin + 1);
  rows = static_cast<LONG>(std::min(rows_at_once, rows_ - begin));
  return true;
}

range_reader::range_reader(const scanned_table& table, scan_ranges& ranges, std::vector<LONG> columns,
                           LONG rows_per_batch)
    : table_(table),
      ranges_(ranges),
      view_(table.view().file()),
      condition_(make_condition(view_, table.options().condition)),
      columns_(std::move(columns)) {
  table_.check_unchanged(view_);
  request_.rowsPerBatch = rows_per_batch;
  request_.flags = flags_of(table.options());
  request_.nColumns = static_cast<LONG>(columns_.size());
  request_.pColumns = columns_.data();
}

bool range_reader::next() {
  try {
    return advance();
  } catch (const failure&) {
    // What cannot be read may be what others have done to the table.
    table_.check_unchanged(view_);
    throw;
  }
}

bool range_reader::advance() {
  // A condition may leave nothing of a batch.
  do {
    if (left_ == 0 && !next_range()) return false;
    if (!next_batch()) return false;
    if (condition_) choose();
  } while (condition_ && chosen_.empty());
  return true;
}

bool range_reader::next_range() {
  first_ += static_cast<LONG>(rows_);
  rows_ = 0;
  if (!ranges_.take(first_, left_)) {
    table_.check_unchanged(view_);
    return false;
  }
  if (columns_.empty()) return true;
  request_.firstRow = first_;
  request_.nRows = left_;
  ovfile::pointer<IOvTableStream> streams;
  view_.check(view_.table().QueryInterface(IID_IOvTableStream, reinterpret_cast<void**>(streams.out())));
  view_.check(streams->Read(&request_, stream_.out()));
  return true;
}

bool range_reader::next_batch() {
  first_ += static_cast<LONG>(rows_);
  if (columns_.empty()) {
    rows_ = static_cast<std::size_t>(std::min(left_, request_.rowsPerBatch));
  } else {
    try {
      batch_ = stream_.next();
    } catch (const ovfile::error& error) {
      throw failure(view_.file() + ": " + error.what());
    }
    rows_ = batch_ ? static_cast<std::size_t>(batch_->length) : 0;
  }
  left_ -= static_cast<LONG>(rows_);
  ranges_.add_read(rows_);
  if (rows_ == 0) throw failure(view_.file() + ": the table was cut while the statement ran");
  return true;
}

void range_reader::choose() {
  chosen_.clear();
  view_.go_to(first_);
  for (std::uint32_t row = 0; row < rows_; ++row) {
    if (row > 0) view_.go_on();
    if (condition_->passes()) chosen_.push_back(row);
  }
}

}  // namespace command
