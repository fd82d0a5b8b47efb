// An open table's file made anew by copying: the copy is written beside it and takes its place in one
// step. Whatever happens before that leaves the old file as it was, and the object with it open.
//
//   table_replacement made(core);
//   table& copy = made.begin(definition, …);
//   … append rows to it …
//   if (!made.commit()) …               // refused; the old file is open again
#pragma once

#include <memory>

#include "engine/open_table.h"
#include "storage/file_replacement.h"
#include "table/table_core.h"

namespace ovf {

class table_replacement {
 public:
  /// The core has a table open, and outlives this.
  explicit table_replacement(table_core& core);

  /// Makes the copy, a table without rows. Names and owner of the header are carried over, the description
  /// where `keep_description` says so. Throws file_error where no copy can be made, and what making a
  /// table throws.
  table& begin(const table_definition& definition, bool keep_description);

  /// Writes the copy to the disk, closes the table and puts the copy in its place; the core then has the
  /// new file open for writing, or the old one when this is refused (false; `refusal` is the system's
  /// code). Throws what writing the copy throws, with the old table open still, and what opening throws.
  bool commit();
  std::uint32_t refusal() const noexcept { return refusal_; }

  /// The table's file.
  const wide& path() const noexcept { return path_; }

 private:
  table_core& core_;
  wide path_;
  file_replacement file_;
  std::unique_ptr<table> copy_;
  std::uint32_t refusal_ = 0;
};

}  // namespace ovf
