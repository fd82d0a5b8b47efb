// A table as a query reads it: what was planned when the query was looked at, and readers that share its rows
// out among themselves.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ovfile/stream.h"
#include "row_condition.h"
#include "sql/row_count.h"
#include "sql/sql_database.h"
#include "table_view.h"

namespace command {

struct scan_options {
  absent_value absent = absent_value::null;
  std::optional<std::string> condition;
  bool widen = true;  ///< numbers of 4 bytes as those of 8 that their shortest digits say
};

/// Holds the table open, so that nobody puts another in its place while the query is planned and runs.
class scanned_table {
 public:
  /// Throws `failure`, also for a condition that cannot be used.
  scanned_table(const std::string& file, const scan_options& options);

  const table_view& view() const noexcept { return view_; }
  const scan_options& options() const noexcept { return options_; }
  /// Whether numbers come as floats.
  bool gives_floats() const noexcept { return view_.is_single() && !options_.widen; }
  /// Throws `failure` when the file is no longer the one that was planned with, as far as `found`, another
  /// view of it, and the system tell.
  void check_unchanged(const table_view& found) const;

 private:
  table_view view_;
  scan_options options_;
  std::string identity_;
};

/// The ranges of rows of one scan, which its readers take one after the other.
class scan_ranges {
 public:
  static constexpr std::int64_t rows_at_once = 61'440;

  /// `read` counts the rows, and must outlive the ranges.
  scan_ranges(LONG rows, row_count& read) noexcept : rows_(rows), read_(read) {
    read_.expect(static_cast<std::uint64_t>(rows));
  }
  std::int64_t count() const noexcept { return (rows_ + rows_at_once - 1) / rows_at_once; }
  /// The next range, from 1; false when all are taken.
  bool take(LONG& first, LONG& rows) noexcept;
  /// So many of those that were taken are read.
  void add_read(std::size_t rows) noexcept { read_.add(rows); }

 private:
  std::int64_t rows_;
  row_count& read_;
  std::atomic<std::int64_t> next_{0};
};

/// Reads ranges by an object of its own; for one thread.
class range_reader {
 public:
  /// `columns` count from 1. Both tables must outlive the reader. Throws `failure`.
  range_reader(const scanned_table& table, scan_ranges& ranges, std::vector<LONG> columns,
               LONG rows_per_batch);

  /// On to the next rows; false when no range is left. Throws `failure`.
  bool next();
  /// How many rows there are, and their columns in the order asked for.
  std::size_t rows() const noexcept { return rows_; }
  const ArrowArray& column(std::size_t i) const noexcept { return *batch_->children[i]; }
  /// The rows that meet the condition, from 0; null where there is no condition.
  const std::vector<std::uint32_t>* chosen() const noexcept { return condition_ ? &chosen_ : nullptr; }

 private:
  bool advance();
  bool next_range();
  bool next_batch();
  void choose();

  const scanned_table& table_;
  scan_ranges& ranges_;
  table_view view_;
  std::optional<row_condition> condition_;
  std::vector<LONG> columns_;
  OvStreamRequest request_;
  ovfile::arrow_stream stream_;
  ovfile::arrow_array batch_;
  std::vector<std::uint32_t> chosen_;
  std::size_t rows_ = 0;
  LONG first_ = 0;  ///< of the batch
  LONG left_ = 0;   ///< of the range, behind the batch
};

}  // namespace command
