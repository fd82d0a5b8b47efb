// The rows of an open table file: how many there are, on which page each stands, and how rows come and
// go.
#pragma once

#include <memory>
#include <optional>

#include "engine/field.h"
#include "engine/row_blocks.h"
#include "storage/header_image.h"
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
  /// `path` is the file's, whatever the current folder becomes. Reads header and dictionary. Throws what
  /// they throw, and "Not a valid orvexa table" for counts that no table has.
  row_store(std::unique_ptr<file> opened, wide path, bool read_only, byte_order order);
  ~row_store();
  row_store(const row_store&) = delete;
  row_store& operator=(const row_store&) = delete;

  header_pages<Precision>& header() noexcept { return header_; }
  /// Defaults may be changed; fields come and change their names below.
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

  // Changes of the dictionary. The rows that are not in the file yet are written first. A change that fits
  // one header page is made in its place; one that touches several, or makes the header longer, is made in
  // a copy that takes the file's place: refused, it throws file_error "cannot create file". A failure
  // leaves the table with the fields that it had. Records that were located have to be located again.

  /// Throws MyExceptionClass with the precision's limit message when the dictionary has no room for them.
  void require_room_for_atoms(std::uint64_t more) const;
  /// Appends a field that has no place in the records. Its `first_entry` is found here.
  void append_field(field added);
  void rename_field(std::size_t index, const wide& name);

  // Blocks of rows, as the table has them.

  void read_rows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer, const record_reader& take);
  std::uint64_t room_for_rows() const noexcept;
  void begin_rows();
  void put_rows(std::uint64_t rows, const record_writer& fill);
  void commit_rows();
  void give_up_rows() noexcept;
  /// Throws MyExceptionClass where somebody else has changed the counts or the size of the file since it was
  /// last read or written here, or put another file in its place.
  void require_known_file();
  /// Before a change of the header, which nobody else makes until it is flushed. Throws MyExceptionClass,
  /// with the call's name in front, where somebody else appends rows, or has changed the header since it was
  /// read.
  void own_header(wide_view call);
  /// A default was changed.
  void mark_header_changed() noexcept {
    note_change();
    header_.mark_changed();
    header_waits_ = true;
  }
  /// Which part of the file is in memory: located records are where they were as long as it stays.
  std::uint64_t held_segment() const noexcept { return records_.segment(); }
  table_version version() const noexcept { return version_; }
  /// Of the open file itself, whatever stands under its name.
  bool stamp(file_stamp& found) noexcept { return file_->stamp(found); }

  /// A record in memory was changed. It alone is written: others may have changed its neighbours meanwhile.
  void mark_changed(const std::byte* record) noexcept {
    note_change();
    records_.mark_changed(record, record_bytes());
  }
  /// Anything else was, or is about to be. Rows that were put and not committed are given up.
  void note_change() noexcept {
    if (added_) give_up_rows();
    ++version_.changes;
  }
  void flush_records() { records_.flush(); }
  /// Writes what was changed and forgets what was read. False when others have changed the header.
  bool read_again();
  /// Rows first: the header never promises rows that are not in the file.
  void flush();
  /// The same, with the rows on the disk before the header is written, and the header when it returns.
  void sync();

 private:
  void read_counts();
  std::uint64_t computed_row_count() const noexcept;
  void require_room_for_a_row() const;
  row_place append_row();
  /// Ends the file behind that many pages, where it is longer and the pages have become fewer.
  void cut_behind(std::uint64_t pages, bool pages_change);
  /// A header may count its own pages alone though a page of rows follows them.
  void count_the_uncounted_page();
  void append_page();
  void set_records_in_last_page(std::uint64_t records);
  /// Pages that stand in the file as one piece from `page` on, up to page `last`.
  struct page_run {
    const std::byte* bytes;
    std::size_t pages;
  };
  page_run pages_from(std::uint64_t page, std::uint64_t last, block_buffer& buffer);
  added_rows& added();
  void require_room_for(std::uint64_t rows) const;
  /// Brings the last counted page into reach when it has room for more rows.
  void take_begun_page(added_rows& to);
  static std::byte* page_being_filled(added_rows& of);
  void end_page(added_rows& of);
  void write_pages(added_rows& of, std::size_t pages);
  void write_rest(added_rows& of);
  void require_written(std::uint64_t position, std::span<const std::byte> bytes);
  void prepare_rows();
  /// What a file has at least that holds all rows.
  std::uint64_t bytes_of_rows() const noexcept;
  /// Leaves the file as it was before the rows.
  void take_back(const added_rows& lost) noexcept;
  void cut_spare_bytes(std::uint64_t page);
  void note_file() noexcept;
  /// Of a file that took this one's place.
  void remember_header() noexcept;
  void require_on_disk();
  /// Writes everything; others may not append for all that.
  void flush_and_keep();
  /// Nobody else who asks appends rows until `may_let_others_grow`. Throws MyExceptionClass where somebody
  /// does, with the call's name in front.
  void claim_growth(wide_view call);
  /// Lets others append where all rows of this table are counted in the file.
  void may_let_others_grow() noexcept;
  bool is_own_file() const noexcept;
  bool has_own_size() noexcept;
  bool has_known_size(const added_rows& of) noexcept;
  bool has_known_begun_page(const added_rows& of);
  void count_rows(std::uint64_t rows);
  void fill_with_defaults(std::byte* record) const;

  /// Without a mark the count of atoms alone tells the byte order: throws MyExceptionClass for one that
  /// tells another.
  void require_readable_count(std::size_t atoms);
  void append_field_in_place(const field& added);
  void append_field_in_copy(const field& added);
  void rename_field_in_place(const field& renamed, std::string_view name);
  void rename_field_in_copy(const field& renamed, std::string_view name);
  /// Changes the page in memory and writes it; a failure undoes the change before it is thrown.
  template <class Change, class Undo>
  void change_header(Change change, Undo undo);
  /// The entries of a field that stand on one page, brought into memory.
  std::span<std::byte> entry_bytes(const field& of);
  header_image<Precision> read_header_image();
  /// Puts a copy with that header, and with everything behind the old one, in the file's place.
  void replace_header(const header_image<Precision>& header);

  std::unique_ptr<file> file_;
  wide path_;
  bool read_only_;
  header_pages<Precision> header_;
  table_fields fields_;
  record_pages<Precision> records_;
  page_counts counts_{};
  std::size_t records_per_page_ = 0;
  std::uint64_t row_count_ = 0;
  table_version version_{new_table_number(), 0};
  std::optional<added_rows> added_;
  bool grows_alone_ = false;         ///< nobody else appends meanwhile
  bool miscounts_pages_ = false;     ///< the header does; the next one that is written does not
  bool header_waits_ = false;        ///< it was changed, and the file does not say so yet
  std::optional<file_stamp> noted_;  ///< which file it is, and a size that it has reached
};

}  // namespace ovf
