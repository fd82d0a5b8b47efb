// The rows that a table's file still has. Where it ends within a page, the library reads none of that page's
// rows; they are read from a copy of the page.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "private_folder.h"
#include "raw_file.h"
#include "table_view.h"

namespace command {

class readable_rows {
 public:
  /// Throws `failure` where the table cannot be opened.
  explicit readable_rows(const std::string& file);

  const table_view& table() const noexcept { return whole_; }
  /// The columns of what `at` gives. A text is implicit where all of it stands in the header: the library
  /// asks its first word alone.
  const std::vector<field_view>& fields() const noexcept { return fields_; }
  LONG count() const noexcept { return count_; }
  /// A table that stands on this row, from 1. Throws `failure` where it cannot be read.
  table_view& at(LONG row);

 private:
  /// A file for a while, whose end takes no memory.
  class page_copy {
   public:
    page_copy() : folder_("ovfile-verify"), name_(folder_.name() + "/page.ovt") {}
    ~page_copy() { remove_file(name_); }
    page_copy(const page_copy&) = delete;
    page_copy& operator=(const page_copy&) = delete;

    const std::string& name() const noexcept { return name_; }

   private:
    private_folder folder_;
    std::string name_;
  };

  void copy_cut_page();
  void find_partly_stored();

  std::optional<page_copy> copy_;  // goes when its table is not open any more
  table_view whole_;
  std::vector<field_view> fields_;
  LONG in_whole_pages_;
  LONG count_;
  std::optional<table_view> cut_page_;
};

}  // namespace command
