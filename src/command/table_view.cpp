#include "table_view.h"

#include <algorithm>

#include "absent.h"
#include "failure.h"
#include "field_names.h"
#include "number_text.h"
#include "refused_file.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

template <class Float>
void append_number_cell(std::string& out, Float value, std::string_view absent) {
  if (is_absent(value)) {
    out += absent;
  } else {
    append_number(out, value);
  }
}

}  // namespace

table_view::table_view(std::string file, table_access access)
    : file_(std::move(file)), table_(ovfile::create_table()) {
  open(access);
  check(table_->GetRowCount(&rows_));
  const auto definition = schema();
  VARIANT_BOOL is_double = VARIANT_FALSE;
  check(definition->get_DoublePrecision(&is_double));
  single_ = is_double == VARIANT_FALSE;
  fields_ = read_fields(*definition.get(), file_);
}

void table_view::open(table_access access) {
  const HRESULT status =
      table_->Open(ovfile::text(std::string_view(file_)).get(), access == table_access::read ? 1 : 0);
  if (SUCCEEDED(status)) return;
  const std::string words = taken_words(status);
  // What these say of the system's reason is in several lines, or nothing.
  if (words.starts_with("cannot open file") || words.starts_with("Failed to open table")) {
    refuse_unopenable_file(file_, access == table_access::change);
  }
  throw failure(file_ + ": " + words);
}

void table_view::check_copied(HRESULT status) const {
  if (SUCCEEDED(status)) return;
  const std::string words = taken_words(status);
  if (words.find("cannot create file") != words.npos || words.find("cannot replace") != words.npos) {
    table_->Close();  // else it is ourselves who have it open
    refuse_unreplaceable_file(file_);
  }
  throw failure(file_ + ": " + words);
}

ovfile::pointer<IOvSchema> table_view::schema() const {
  ovfile::pointer<IOvSchema> held;
  check(table_->get_Schema(held.out()));
  return held;
}

OvTableFacts table_view::facts() const {
  const auto maintenance = table_.query<IOvTableMaintenance>();
  OvTableFacts facts{};
  facts.cbSize = sizeof facts;
  check(maintenance ? maintenance->GetFacts(&facts) : E_NOINTERFACE);
  return facts;
}

void table_view::close() const {
  const auto maintenance = table_.query<IOvTableMaintenance>();
  check(maintenance ? maintenance->Sync() : E_NOINTERFACE);
  check(table_->Close());
}

LONG table_view::rows_in_file() const {
  constexpr long long page_words = 512;
  const OvTableFacts found = facts();
  const long long page_bytes = page_words * found.wordBytes;
  const long long record_words = found.recordWords;
  const long long record_bytes = record_words * found.wordBytes;
  // The last page may end with its rows.
  const long long of_last_page = found.fileBytes - (found.pages - 1) * page_bytes;
  if (rows_ == 0 || of_last_page >= record_bytes * found.recordsInLastPage) return rows_;
  // Of a shorter one the library reads what is there, the rest as zeros, from as many bytes on as its rows
  // have words.
  if (of_last_page >= record_words * found.recordsInLastPage) {
    return static_cast<LONG>(rows_ - found.recordsInLastPage + of_last_page / record_bytes);
  }
  const long long pages = std::max(found.fileBytes / page_bytes - found.headerPages, 0LL);
  return static_cast<LONG>(std::min<long long>(rows_, pages * found.recordsPerPage));
}

LONG table_view::rows_held() const {
  const OvTableFacts found = facts();
  const LONG read = rows_in_file();
  if (read == rows_ || found.wordBytes <= 0 || found.recordWords <= 0) return read;
  const long long page_bytes = 512LL * found.wordBytes;
  const long long record_bytes = static_cast<long long>(found.recordWords) * found.wordBytes;
  const long long pages = found.fileBytes / page_bytes - found.headerPages;
  if (pages < 0 || pages * found.recordsPerPage != read) return read;
  const long long of_cut_page = found.fileBytes % page_bytes / record_bytes;
  return static_cast<LONG>(
      std::min<long long>(rows_, read + std::min<long long>(of_cut_page, found.recordsPerPage)));
}

std::string table_view::target() const {
  ovfile::text name;
  check(table_->get_Name(name.out()));
  return name.utf8();
}

void table_view::require_whole_file() const {
  if (rows_in_file() == rows_) return;
  throw failure(
      fmt::format("{}: the file ends behind row {}; its header promises {}", file_, rows_held(), rows_));
}

std::string table_view::description() const {
  return ovfile::to_utf8(without_end_blanks(facts().description));
}

void table_view::fail_at(const field_view* field, HRESULT status) const {
  throw failure(fmt::format("{}, row {}{}{}: {}", file_, row_, field == nullptr ? "" : ", column ",
                            field == nullptr ? "" : field->name, taken_words(status)));
}

std::vector<field_view> table_view::choose(const std::vector<std::string>& names) const {
  if (names.empty()) return fields_;
  std::vector<field_view> chosen;
  chosen.reserve(names.size());
  for (const std::string& name : names) chosen.push_back(field(name));
  return chosen;
}

const field_view& table_view::field(const std::string& name) const {
  const field_view* const found = find_field(fields_, name);
  if (found != nullptr) return *found;
  if (name.empty()) throw wrong_usage("the name of a column is empty");
  if (fields_.empty()) throw failure(fmt::format("{} has no column {}; it has no columns", file_, name));
  std::vector<std::string> names;
  for (const field_view& there : fields_) names.push_back(there.name);
  const std::vector<std::string> similar = names_near(names, name);
  if (!similar.empty()) {
    throw failure(fmt::format("{} has no column {}; it has {}", file_, name, joined(similar, ", ")));
  }
  throw failure(fmt::format("{} has no column {}; its columns are {}", file_, name, joined(names, ", ")));
}

void table_view::check_new_name(const std::string& name) const {
  const std::string problem = name_problem(name, longest_name(single_));
  if (!problem.empty()) {
    throw failure(fmt::format("{}: {}{}{}", file_, name, name.empty() ? "" : ": ", problem));
  }
  if (find_field(fields_, name) != nullptr) {
    throw failure(fmt::format("{} has a column {} already", file_, name));
  }
}

void table_view::go_to(LONG row) {
  row_ = row;
  // This call answers success for a row that it could not load, and tells by the error information alone.
  SetErrorInfo(0, nullptr);
  const HRESULT status = row == 1 ? table_->GetFirstRow() : table_->GetRowAt(row);
  ovfile::pointer<IErrorInfo> info;
  const bool told = GetErrorInfo(0, info.out()) == S_OK && info;
  if (told) SetErrorInfo(0, info.get());
  if (FAILED(status) || told) fail_at(nullptr, E_FAIL);
}

void table_view::go_on() {
  ++row_;
  const HRESULT status = table_->GetNextRow();
  if (FAILED(status)) fail_at(nullptr, status);
  if (status == S_FALSE) throw failure(fmt::format("{} ends before row {} of {}", file_, row_, rows_));
}

double table_view::number(const field_view& field) const {
  if (single_) {
    float value = 0;
    check_at(&field, table_->GetColumnAsFloat(field.column, &value));
    return static_cast<double>(value);
  }
  double value = 0;
  check_at(&field, table_->GetColumnAsDouble(field.column, &value));
  return value;
}

void table_view::append_text(std::string& out, const field_view& field) const {
  ovfile::text text;
  read_text(text, field);
  ovfile::append_utf8(out, without_end_blanks(text.view()));
}

void table_view::append_cell(std::string& out, const field_view& field, std::string_view absent) const {
  if (field.is_text) {
    append_text(out, field);
  } else if (single_) {
    append_number_cell(out, static_cast<float>(number(field)), absent);
  } else {
    append_number_cell(out, number(field), absent);
  }
}

}  // namespace command
