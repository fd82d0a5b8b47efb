#include "verify/readable_rows.h"

#include <algorithm>

#include "raw_file.h"
#include "verify/table_header.h"

namespace command {

readable_rows::readable_rows(const std::string& file)
    : whole_(file), in_whole_pages_(whole_.rows_in_file()), count_(in_whole_pages_) {
  if (count_ < whole_.rows()) copy_cut_page();
}

void readable_rows::copy_cut_page() {
  const OvTableFacts facts = whole_.facts();
  const long long page_bytes = 512LL * facts.wordBytes;
  const long long record_bytes = static_cast<long long>(facts.recordWords) * facts.wordBytes;
  const long long page = facts.fileBytes / page_bytes;
  if (page < facts.headerPages || record_bytes == 0) return;
  const long long before = (page - facts.headerPages) * facts.recordsPerPage;
  const long long in_page =
      std::min<long long>(facts.recordsPerPage, facts.fileBytes % page_bytes / record_bytes);
  const long long held = std::min<long long>(whole_.rows(), before + in_page);
  if (held <= in_whole_pages_ || before != in_whole_pages_) return;
  folder_.emplace("ovfile-verify");
  const std::string name = folder_->name() + "/page.ovt";
  bool taken = false;
  raw_file copy = raw_file::make_new(name, true, taken);
  copy.write(table_of_page(whole_.file(), static_cast<std::uint64_t>(page),
                           static_cast<std::uint64_t>(held - before)));
  copy.close();
  cut_page_.emplace(name);
  count_ = static_cast<LONG>(held);
}

table_view& readable_rows::at(LONG row) {
  table_view& table = row > in_whole_pages_ ? *cut_page_ : whole_;
  table.go_to(row > in_whole_pages_ ? row - in_whole_pages_ : row);
  return table;
}

}  // namespace command
