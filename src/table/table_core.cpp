#include "table/table_core.h"

#include <algorithm>
#include <cstring>

#include "platform/decimal_tidy.h"
#include "platform/file.h"
#include "schema/ov_schema.h"
#include "table/link_target.h"
#include "table/schema_transfer.h"

namespace ovf {
namespace {

constexpr wide_view blanks = OLESTR(" \t");

ovfile::pointer<IOvSchema> new_schema() {
  void* made = nullptr;
  const HRESULT status = COvSchema::create(nullptr, IID_IOvSchema, &made);
  if (FAILED(status)) throw com_error(status);
  ovfile::pointer<IOvSchema> schema;
  *schema.out() = static_cast<IOvSchema*>(made);
  return schema;
}

wide_view trimmed(wide_view text) { return text.substr(0, text.find_last_not_of(blanks) + 1); }

}  // namespace

opening table_core::open(wide_view file_name, LONG read_only_choice, HRESULT& filled) {
  if (files().kind(file_name) == file_kind::missing) return opening::missing;
  // What the held table has not written yet might be in the very file that is opened now.
  if (table_ != nullptr) table_->flush();
  name = file_name;
  read_only = read_only_choice;
  std::unique_ptr<table> found;
  const opening outcome = open_target(found);
  if (outcome == opening::opened) filled = hold(std::move(found));
  return outcome;
}

opening table_core::open_target(std::unique_ptr<table>& found) {
  const auto open_one = [this](std::unique_ptr<table>& one) {
    if (files().kind(name) != file_kind::regular) return opening::not_a_table;
    one = open_table(name, read_only != 0);
    return opening::opened;
  };
  const opening outcome = open_one(found);
  if (outcome != opening::opened) return outcome;
  const auto target = link_target(found->getDescription(), name);
  if (!target) return outcome;
  // One level only: what a link leads to is an ordinary table, whatever its description says.
  found.reset();
  name = *target;
  if (files().kind(name) == file_kind::missing) name = with_own_separators(name);
  if (files().kind(name) == file_kind::missing) return opening::missing;
  const opening followed = open_one(found);
  is_linked = true;
  return followed;
}

HRESULT table_core::hold(std::unique_ptr<table> found) {
  ovfile::pointer<IOvSchema> filled = new_schema();
  const HRESULT status = fill_schema(*filled.get(), *found);
  table_ = std::move(found);
  schema = std::move(filled);
  at_end = false;
  at_beginning = false;
  return status;
}

void table_core::create(ovfile::pointer<IOvSchema> definition) {
  schema = std::move(definition);
  const new_table made(definition_of(*schema.get()));
  if (table_ != nullptr) {
    table_->flush();
    // The file that is made anew may be the very one that is held.
    if (absolute_path(table_->getFileName()) == absolute_path(name)) table_.reset();
  }
  table_ = create_table(name, made);
  refill(*schema.get());
}

void table_core::refill(IOvSchema& definition) const {
  VARIANT_BOOL latched = VARIANT_FALSE;
  (void)definition.get_ReadOnly(&latched);
  (void)fill_schema(definition, *table_);
  if (latched != VARIANT_FALSE) (void)definition.put_ReadOnly(VARIANT_TRUE);
}

void table_core::close() {
  schema = {};
  if (table_ == nullptr) return;
  table_->flush();
  table_.reset();
}

move table_core::first_row() {
  const bool empty = opened().getRowCount() == 0;
  opened().firstRow();
  at_end = empty;
  at_beginning = empty;
  return empty ? move::empty : move::on_a_row;
}

move table_core::last_row() {
  if (opened().getRowCount() == 0) return move::empty;
  opened().lastRow();
  at_end = false;
  at_beginning = false;
  return move::on_a_row;
}

move table_core::previous_row() {
  if (opened().getRowCount() == 0) return move::empty;
  if (opened().currentRow() > 1) {
    opened().previousRow();
    return move::on_a_row;
  }
  at_beginning = true;
  return move::off_the_end;
}

move table_core::row_at(LONG row) {
  const bool before = row < 1;
  const bool behind = !before && static_cast<std::uint64_t>(row) > opened().getRowCount();
  if (!before && !behind) opened().goToRow(static_cast<std::uint64_t>(row));
  at_beginning = before;
  at_end = behind;
  return before || behind ? move::off_the_end : move::on_a_row;
}

void table_core::add_row() {
  table& target = opened();
  if (target.getRowCount() > 0) {
    target.lastRow();
    at_end = false;
    at_beginning = false;
  }
  target.addRow();
  at_end = false;
  at_beginning = false;
}

double table_core::converted_column(std::uint64_t index) const {
  const variant value = table_->getValue(index);
  return value.type() == VT_R4 ? tidied(value.get().fltVal) : to_double(value);
}

variant table_core::column(LONG column_number) const {
  variant value = opened().getValue(field_index(column_number));
  return value.type() == VT_EMPTY ? variant(wide_view()) : value;
}

bool table_core::set_column(LONG column_number, const VARIANT& value) {
  if ((value.vt & VT_BYREF) != 0) return set_column(column_number, variant(value));
  if (value.vt == VT_BSTR) return set_text(column_number, view_of(value.bstrVal));
  const std::uint64_t index = field_index(column_number);
  if (value.vt == VT_R4 && opened().isDouble()) {
    opened().setValue(index, variant(tidied(value.fltVal)));
  } else {
    opened().setValue(index, value);
  }
  return false;
}

bool table_core::set_text(LONG column_number, wide_view value) {
  const std::uint64_t index = field_index(column_number);
  const wide_view text = trimmed(value);
  table& target = opened();
  if (target.getFieldType(index) == field_kind::numeric) {
    target.setString(index, wide(text));
    return false;
  }
  const auto width = static_cast<std::size_t>(target.getFieldWidth(index));
  target.setString(index, wide(text.substr(0, width)));
  return text.size() > width;
}

}  // namespace ovf
