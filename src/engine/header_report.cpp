#include "engine/header_report.h"

#include "platform/debug_channel.h"

namespace ovf {
namespace {

void tell(wide_view what, wide_view value) {
  const wide_view text = value.substr(0, value.find_last_not_of(OLESTR(' ')) + 1);
  debug_output(wide_format(OLESTR("OvFile Header: %s: %s")).arg(what).arg(text).text());
}

void tell(wide_view what, std::uint64_t value) {
  tell(what, wide_format(OLESTR("%d")).arg(static_cast<long long>(value)).text());
}

}  // namespace

void tell_header(table& opened) noexcept try {
  if (!is_debug_output_heard()) return;
  const table_facts facts = opened.facts();
  tell(OLESTR("file"), opened.getFileName());
  tell(OLESTR("precision"), opened.isDouble() ? wide_view(OLESTR("double")) : wide_view(OLESTR("single")));
  tell(OLESTR("byte order"), static_cast<std::uint64_t>(facts.order));
  tell(OLESTR("name"), facts.first_name);
  tell(OLESTR("second name"), facts.second_name);
  tell(OLESTR("description"), facts.description);
  tell(OLESTR("owner"), facts.owner);
  tell(OLESTR("atoms"), facts.atoms);
  tell(OLESTR("pages"), facts.pages);
  tell(OLESTR("header pages"), facts.header_pages);
  tell(OLESTR("records in the last page"), facts.records_in_last_page);
  tell(OLESTR("records a page"), facts.records_per_page);
  tell(OLESTR("words a record"), facts.record_words);
  tell(OLESTR("rows"), opened.getRowCount());
  tell(OLESTR("bytes of the file"), facts.file_bytes);
  for (std::uint64_t i = 0; i < opened.getFieldCount(); ++i) tell(OLESTR("field"), opened.getFieldName(i));
} catch (...) {
  // A table that cannot tell of itself opens all the same.
}

}  // namespace ovf
