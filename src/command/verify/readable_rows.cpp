#include "verify/readable_rows.h"

#include <algorithm>

#include "raw_file.h"
#include "verify/table_header.h"

namespace command {

readable_rows::readable_rows(const std::string& file)
    : whole_(file),
      fields_(whole_.fields()),
      in_whole_pages_(whole_.rows_in_file()),
      count_(whole_.rows_held()) {
  try {
    find_partly_stored();
    if (count_ != in_whole_pages_) copy_cut_page();
  } catch (const not_a_table&) {
    // The library reads tables without a mark; nothing here tells their precision.
    count_ = in_whole_pages_;
  }
}

void readable_rows::find_partly_stored() {
  const std::vector<header_field> found = fields_in(read_table_header(whole_.target()).entries);
  if (found.size() != fields_.size()) return;  // its names are none, or it has changed
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (found[i].is_partly_stored) fields_[i].implicit = false;
  }
}

void readable_rows::copy_cut_page() {
  const OvTableFacts facts = whole_.facts();
  const long long page_bytes = std::max(512LL * facts.wordBytes, 1LL);
  const auto page = static_cast<std::uint64_t>(facts.fileBytes / page_bytes);
  copy_.emplace();
  bool taken = false;
  raw_file copy = raw_file::make_new(copy_->name(), true, taken);
  copy.write(table_of_page(whole_.target(), page, static_cast<std::uint64_t>(count_ - in_whole_pages_)));
  copy.close();
  cut_page_.emplace(copy_->name());
}

table_view& readable_rows::at(LONG row) {
  table_view& table = row > in_whole_pages_ ? *cut_page_ : whole_;
  table.go_to(row > in_whole_pages_ ? row - in_whole_pages_ : row);
  return table;
}

}  // namespace command
