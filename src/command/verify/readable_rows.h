// The rows that a table's file still has. Where it ends within a page, the library reads none of that page's
// rows; they are read from a copy of the page.
#pragma once

#include <optional>
#include <string>

#include "private_folder.h"
#include "table_view.h"

namespace command {

class readable_rows {
 public:
  /// Throws `failure` where the table cannot be opened.
  explicit readable_rows(const std::string& file);

  ~readable_rows();
  readable_rows(const readable_rows&) = delete;
  readable_rows& operator=(const readable_rows&) = delete;

  /// Its columns are those of what `at` gives.
  const table_view& table() const noexcept { return whole_; }
  LONG count() const noexcept { return count_; }
  /// A table that stands on this row, from 1. Throws `failure` where it cannot be read.
  table_view& at(LONG row);

 private:
  void copy_cut_page();
  std::string page_name() const { return folder_->name() + "/page.ovt"; }

  std::optional<private_folder> folder_;  // goes when no table in it is open any more
  table_view whole_;
  LONG in_whole_pages_;
  LONG count_;
  std::optional<table_view> cut_page_;
};

}  // namespace command
