// An open table's file made anew by copying: the copy is written beside it and takes its place in one
// step. Whatever happens before that leaves the old file as it was, and the object with it open on the
// row where it stood.
//
//   table_replacement made(core);
//   table& copy = made.begin(definition, …);
//   … append rows to it …
//   made.commit();
#pragma once

#include <memory>
#include <optional>

#include "base/file_replacement.h"
#include "engine/open_table.h"
#include "table/kept_cursor.h"

namespace ovf {

/// No copy could be made.
struct no_copy_made {
  wide reason;
};
/// The copy was not let into the file's place; the old table is open.
struct not_replaced {
  wide path;
  wide reason;
};
/// The copy is in the file's place, and it could not be opened; no table is open.
struct not_reopened {
  wide path;
  wide reason;
};
/// The copy was not let into the file's place, and the old file, whole, could not be opened again; no
/// table is open.
struct not_restored {
  not_replaced refusal;
  wide reason;
};

/// Closes the core's table and opens its file again, as it is now, whoever has changed it. Throws
/// not_reopened, and what writing the table throws.
void open_again(table_core& core);

class table_replacement {
 public:
  /// The core has a table open, and outlives this. From here on nobody else may change the file, or `commit`
  /// refuses. Throws what writing the table throws.
  explicit table_replacement(table_core& core)
      : core_(core), cursor_(core), path_(core.path()), file_(path_), before_(core.stamp()) {}

  /// Makes the copy, a table without rows. Names and owner of the header are carried over, the description
  /// where `keep_description` says so. Throws no_copy_made.
  table& begin(const table_definition& definition, bool keep_description);

  /// Writes the copy to the disk, closes the table and puts the copy in its place; the core then has the
  /// new file open for writing, on its first row. Throws not_replaced, not_reopened, not_restored, and what
  /// writing the copy or the table throws.
  void commit();

 private:
  void make_copy(const table_definition& definition, bool keep_description);
  /// What keeps the file under the table's name from being opened; nothing when it is open again.
  std::optional<wide> reopen();
  /// Why the copy was not let into the file's place.
  wide refusal() const;

  table_core& core_;
  kept_cursor cursor_;
  wide path_;
  file_replacement file_;
  file_stamp before_;
  std::unique_ptr<table> copy_;
};

}  // namespace ovf
