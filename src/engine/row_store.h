// The rows of an open table file: how many there are, on which page each stands, and how rows come and
// go.
#pragma once

#include <memory>

#include "engine/field.h"
#include "storage/record_pages.h"

namespace ovf {

/// Where a row's record stands in memory.
struct row_place {
  std::byte* record;
  std::uint64_t rows_behind;  ///< on the same page, record after record
};

template <class Precision>
class row_store {
 public:
  /// Reads header and dictionary. Throws what they throw, and "Not a valid orvexa table" for counts that
  /// no table has.
  row_store(std::unique_ptr<file> opened, bool read_only, byte_order order);
  ~row_store();
  row_store(const row_store&) = delete;
  row_store& operator=(const row_store&) = delete;

  header_pages<Precision>& header() noexcept { return header_; }
  table_fields& fields() noexcept { return fields_; }
  const table_fields& fields() const noexcept { return fields_; }
  const page_counts& counts() const noexcept { return counts_; }
  std::size_t records_per_page() const noexcept { return records_per_page_; }
  std::size_t record_bytes() const noexcept { return fields_.record_words() * Precision::word_bytes; }
  std::uint64_t row_count() const noexcept { return row_count_; }
  byte_order order() const noexcept { return header_.order(); }
  std::uint64_t file_bytes();

  /// A row that exists, counted from 1. The record stays until the next call that names a row.
  row_place locate(std::uint64_t row);
  /// Appends a row of defaults. A failure leaves the table with the rows that it had.
  row_place append();
  /// Cuts the table to `rows`, fewer than it has. Rows are written first, then the header, then the file
  /// is cut: a kill in between leaves spare bytes, never missing rows.
  void cut_to(std::uint64_t rows);

  void mark_changed() noexcept { records_.mark_changed(); }
  void flush_records() { records_.flush(); }
  /// Rows first: the header never promises rows that are not in the file.
  void flush();

 private:
  void read_counts();
  std::uint64_t computed_row_count() const noexcept;
  void require_room_for_a_row() const;
  /// A header may count its own pages alone though a page of rows follows them.
  void count_the_uncounted_page();
  void append_page();
  void set_records_in_last_page(std::uint64_t records);
  void fill_with_defaults(std::byte* record) const;

  std::unique_ptr<file> file_;
  header_pages<Precision> header_;
  table_fields fields_;
  record_pages<Precision> records_;
  page_counts counts_{};
  std::size_t records_per_page_ = 0;
  std::uint64_t row_count_ = 0;
};

}  // namespace ovf
