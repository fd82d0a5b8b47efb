#include "table_writer.h"

#include <algorithm>
#include <utility>

#include "column_types.h"
#include "console.h"
#include "decimal.h"
#include "encoding.h"
#include "failure.h"
#include "new_table.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* changed = "the file changed while it was read";

}  // namespace

table_writer::table_writer(const std::string& file, std::string shown, const import_plan& plan)
    : shown_(std::move(shown)), plan_(plan) {
  const auto schema = ovfile::create_schema();
  add_fields(*schema.get());
  table_ = create_new_table(file, *schema.get(), shown_);
}

void table_writer::check(HRESULT status) const {
  if (SUCCEEDED(status)) return;
  throw failure(fmt::format("cannot write {}: {}", shown_, ovfile::error::take(status).what()));
}

void table_writer::add_fields(IOvSchema& schema) {
  // The precision goes first: the adders ask for it.
  check(schema.put_DoublePrecisionFlag(plan_.single ? 0 : 1));
  check(schema.put_Description(ovfile::text(std::string_view(plan_.description)).get()));
  std::vector<std::pair<const planned_field*, bool>> fields;
  for (const planned_field& field : plan_.stored) fields.emplace_back(&field, false);
  for (const planned_field& field : plan_.implicit) fields.emplace_back(&field, true);
  std::stable_sort(fields.begin(), fields.end(),
                   [](const auto& one, const auto& other) { return one.first->place < other.first->place; });
  for (const auto& [field, implicit] : fields) add_field(schema, *field, implicit);
}

void table_writer::add_field(IOvSchema& schema, const planned_field& field, bool implicit) {
  const ovfile::text name{std::string_view(field.name)};
  if (field.is_text) {
    const ovfile::text value{std::string_view(field.text_default)};
    check(schema.AddStringColumn(name.get(), static_cast<LONG>(field.width), value.get(), implicit ? 1 : 0));
  } else {
    check(schema.AddNumericColumn(name.get(), field.number_default, implicit ? 1 : 0));
  }
}

void table_writer::add_row(const std::vector<std::string_view>& cells) {
  check(table_->AddRow());  // every field starts as absent or blank
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!cells[i].empty()) set_cell(static_cast<LONG>(i + 1), plan_.stored[i], cells[i]);
  }
}

void table_writer::set_cell(LONG column, const planned_field& field, std::string_view cell) {
  const std::string_view text = stored_text(cell);
  if (text.empty()) return;
  if (field.is_text) {
    set_text(column, text);
  } else {
    set_number(column, cell);
  }
}

void table_writer::set_number(LONG column, std::string_view cell) {
  const number_cell number = read_number(cell);
  if (!number.is_number) throw failure(changed);
  if (plan_.single) {
    // Straight from the text: by way of a double it would be rounded twice.
    bool kept = true;
    check(table_->SetColumnFloat(column, read_float(cell, kept)));
  } else {
    check(table_->SetColumnDouble(column, number.value));
  }
}

void table_writer::set_text(LONG column, std::string_view cell) {
  wide_.clear();
  append_wide(wide_, cell, encoding_of(cell));
  const ovfile::text value{ovfile::wide_view(wide_)};
  const HRESULT status = table_->SetColumnString(column, value.get());
  check(status);
  if (status == S_FALSE) throw failure(changed);  // it was cut
}

std::int64_t table_writer::add_rows(ovfile::arrow_stream rows) {
  try {
    return ovfile::append_stream(table_, std::move(rows));
  } catch (const ovfile::error& error) {
    throw_if_interrupted();
    throw failure(fmt::format("cannot write {}: {}", shown_, error.what()));
  }
}

void table_writer::close() { check(table_->Close()); }

}  // namespace command
