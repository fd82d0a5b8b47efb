#include "table/column_values.h"

namespace ovf {
namespace {

constexpr wide_view blanks = OLESTR(" \t");

wide_view trimmed(wide_view text) { return text.substr(0, text.find_last_not_of(blanks) + 1); }

}  // namespace

double converted_column(table& from, std::uint64_t index) {
  const variant value = from.getValue(index);
  return value.type() == VT_R4 ? tidied(value.get().fltVal) : to_double(value);
}

variant column_value(table& from, LONG column) {
  variant value = from.getValue(field_index(column));
  return value.type() == VT_EMPTY ? variant(wide_view()) : value;
}

variant as_stored(const table& to, const VARIANT& value) {
  variant resolved(value);
  if (resolved.type() != VT_R4 || !to.isDouble()) return resolved;
  return variant(tidied(resolved.get().fltVal));
}

bool put_column(table& to, LONG column, const VARIANT& value) {
  // The common kinds of value need no copy.
  if (value.vt == VT_BSTR) return put_text_column(to, column, view_of(value.bstrVal));
  if (value.vt == VT_R8) {
    to.setValue(field_index(column), value);
    return false;
  }
  const variant stored = as_stored(to, value);
  if (stored.type() == VT_BSTR) return put_text_column(to, column, view_of(stored.get().bstrVal));
  to.setValue(field_index(column), stored);
  return false;
}

bool put_text_column(table& to, LONG column, wide_view value) {
  const std::uint64_t index = field_index(column);
  const wide_view text = trimmed(value);
  if (to.getFieldType(index) == field_kind::numeric) {
    to.setString(index, wide(text));
    return false;
  }
  const auto width = static_cast<std::size_t>(to.getFieldWidth(index));
  to.setString(index, wide(text.substr(0, width)));
  return text.size() > width;
}

}  // namespace ovf
