#include "table_view.h"

#include <algorithm>

#include "absent.h"
#include "failure.h"
#include "number_text.h"

namespace command {
namespace {

ovfile::wide_view without_end_blanks(ovfile::wide_view text) noexcept {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

template <class Float>
void append_number_cell(std::string& out, Float value, std::string_view absent) {
  if (is_absent(value)) {
    out += absent;
  } else {
    append_number(out, value);
  }
}

}  // namespace

table_view::table_view(std::string file) : file_(std::move(file)), table_(ovfile::create_table()) {
  check(table_->Open(ovfile::text(std::string_view(file_)).get(), 1));
  check(table_->GetRowCount(&rows_));
  read_fields();
}

void table_view::check(HRESULT status) const {
  if (FAILED(status)) throw failure(file_ + ": " + ovfile::error::take(status).what());
}

void table_view::fail_at(const field_view* field, HRESULT status) const {
  throw failure(fmt::format("{}, row {}{}{}: {}", file_, row_, field == nullptr ? "" : ", column ",
                            field == nullptr ? "" : field->name, ovfile::error::take(status).what()));
}

void table_view::read_fields() {
  ovfile::pointer<IOvSchema> schema;
  check(table_->get_Schema(schema.out()));
  VARIANT_BOOL is_double = VARIANT_FALSE;
  LONG count = 0;
  check(schema->get_DoublePrecision(&is_double));
  check(schema->get_FieldCount(&count));
  single_ = is_double == VARIANT_FALSE;
  for (LONG column = 1; column <= count; ++column) fields_.push_back(read_field(*schema.get(), column));
}

field_view table_view::read_field(IOvSchema& schema, LONG column) const {
  ovfile::text name;
  OvColumnType type{};
  LONG width = 0;
  VARIANT_BOOL implicit = VARIANT_FALSE;
  ovfile::variant value;
  check(schema.GetFieldName(column, name.out()));
  check(schema.GetFieldType(column, &type));
  check(schema.GetFieldSizeChars(column, &width));
  check(schema.IsFieldImplicit(column, &implicit));
  check(schema.GetFieldDefault(column, value.out()));
  return {column,
          name.utf8(),
          type == ovColumnString,
          width,
          implicit != VARIANT_FALSE,
          value.number(),
          ovfile::to_utf8(without_end_blanks(value.view()))};
}

std::vector<field_view> table_view::choose(const std::vector<std::string>& names) const {
  if (names.empty()) return fields_;
  std::vector<field_view> chosen;
  for (const std::string& name : names) {
    const auto found = std::find_if(fields_.begin(), fields_.end(),
                                    [&](const field_view& field) { return field.name == name; });
    if (found == fields_.end()) throw failure(fmt::format("{} has no column {}", file_, name));
    chosen.push_back(*found);
  }
  return chosen;
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

void table_view::append_text(std::string& out, const field_view& field) const {
  ovfile::text text;
  const HRESULT status = table_->GetColumnAsString(field.column, text.out());
  if (FAILED(status)) fail_at(&field, status);
  ovfile::append_utf8(out, without_end_blanks(text.view()));
}

void table_view::append_cell(std::string& out, const field_view& field, std::string_view absent) const {
  if (field.is_text) {
    append_text(out, field);
  } else if (single_) {
    float value = 0;
    const HRESULT status = table_->GetColumnAsFloat(field.column, &value);
    if (FAILED(status)) fail_at(&field, status);
    append_number_cell(out, value, absent);
  } else {
    double value = 0;
    const HRESULT status = table_->GetColumnAsDouble(field.column, &value);
    if (FAILED(status)) fail_at(&field, status);
    append_number_cell(out, value, absent);
  }
}

}  // namespace command
