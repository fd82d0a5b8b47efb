// What both table objects share: one open table with its schema, and a cursor on its rows. It knows no
// messages of its own; the objects turn its answers into statuses and reports. Failures of the layers below
// pass through as exceptions.
#pragma once

#include <memory>
#include <optional>

#include "base/file.h"
#include "engine/table.h"
#include "ovfile/ovfile.h"
#include "ovfile/progress.h"
#include "ovfile/smart.h"

namespace ovf {

/// How opening went.
enum class opening { opened, missing, not_a_table };

/// Where a move of the cursor ended.
enum class move { on_a_row, off_the_end, empty };

class table_core {
 public:
  // Opening and closing.

  /// Opens a table, or the one that a link file names; the table held before is flushed first and
  /// replaced at the end. `filled` is the status of filling the new schema. The cursor does not move.
  opening open(wide_view name, LONG read_only, HRESULT& filled);
  /// Makes a table from the schema, which is held from then on. Throws like `create_table`.
  void create(ovfile::pointer<IOvSchema> definition);
  /// Flushes and lets go. A failed flush throws, and the table stays open.
  void close();
  /// Flushes and lets go of the table alone, for a moment: `reopen` follows.
  void release_table();
  /// Opens a file for writing in the place of the table; its fields fill a new schema, the cursor stands
  /// on the first row, which need not be readable. Name and mode stay as the host knows them. Throws like
  /// `open_table`, and not_open for what is no table.
  void reopen(const wide& path);

  bool is_open() const noexcept { return table_ != nullptr; }
  /// Whether changes are refused: the host said so, or the table that is still held was opened so.
  bool is_read_only() const noexcept { return read_only != 0 || (is_open() && table_->isReadOnly()); }
  /// The open table; throws not_open when there is none.
  table& opened() const;
  struct not_open {};
  /// What the open table's file is like while this object knows all of it: now, or when it was opened, where
  /// others have changed it since. Every later write makes it another. Writes what is still in memory.
  /// What no file is like where the system does not tell just now.
  file_stamp stamp();
  /// Whether the open table's file is not what it was when it was opened, while this object has changed
  /// nothing. False where it has, or the system did not tell: then the engine's own check is all there is.
  bool was_changed_elsewhere() const;
  /// The absolute path of the open table's file, whatever `name` and the current folder have become.
  const wide& path() const noexcept { return path_; }

  // The cursor, on an open table. Rows count from 1.

  bool on_a_row() const noexcept { return !at_end && !at_beginning; }
  move first_row();
  move last_row();
  /// Stays on the last row and raises `at_end` when there is no next one.
  move next_row();
  /// Stays on row 1 and raises `at_beginning` when there is none before.
  move previous_row();
  move row_at(LONG row);
  /// Appends a row and moves to it.
  void add_row();

  // State that hosts see.
  wide name;
  LONG read_only = 0;
  bool at_end = false;
  bool at_beginning = false;
  bool is_linked = false;
  ovfile::pointer<IOvSchema> schema;

  /// Hears of work that lasts; may be null.
  ovfile::pointer<IOvProgress> progress;

 private:
  /// `before` is what the file was like before anything of it was read: what others change while it is opened
  /// makes another one of it.
  opening open_target(std::unique_ptr<table>& found, std::optional<file_stamp>& before);
  HRESULT hold(std::unique_ptr<table> found, const std::optional<file_stamp>& before);
  /// Whether the name leads to the open table's file.
  bool is_held_file(wide_view other) const;
  /// Brings the schema of a new table up to what the file says; its read-only latch stays as it was.
  void refill(IOvSchema& definition) const;

  /// Notes what the file is like where the object knows all of it.
  void note_stamp(const std::optional<file_stamp>& now);

  std::unique_ptr<table> table_;
  std::optional<file_stamp> stamp_;       ///< nothing when the system did not tell
  std::optional<table_version> stamped_;  ///< what the table's version was then
  bool is_past_ = false;                  ///< no later write bears the stamp's time
  wide path_;
};

inline table& table_core::opened() const {
  if (table_ == nullptr) throw not_open();
  return *table_;
}

inline move table_core::next_row() {
  try {
    opened().nextRow();
    return move::on_a_row;
  } catch (const bound_error&) {
    at_end = true;
    return move::off_the_end;
  }
}

}  // namespace ovf
