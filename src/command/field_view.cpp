#include "field_view.h"

#include <algorithm>
#include <new>

#include "failure.h"
#include "table_limits.h"

namespace command {
namespace {

field_view read_field(IOvSchema& schema, LONG column, const std::string& file) {
  ovfile::text name;
  OvColumnType type{};
  LONG width = 0;
  VARIANT_BOOL implicit = VARIANT_FALSE;
  ovfile::variant value;
  check_call(file, schema.GetFieldName(column, name.out()));
  check_call(file, schema.GetFieldType(column, &type));
  check_call(file, schema.GetFieldSizeChars(column, &width));
  check_call(file, schema.IsFieldImplicit(column, &implicit));
  check_call(file, schema.GetFieldDefault(column, value.out()));
  return {column,
          name.utf8(),
          type == ovColumnString,
          width,
          implicit != VARIANT_FALSE,
          value.number(),
          ovfile::to_utf8(without_end_blanks(value.view()))};
}

}  // namespace

ovfile::wide_view without_end_blanks(ovfile::wide_view text) noexcept {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

void check_call(const std::string& file, HRESULT status) {
  if (FAILED(status)) throw failure(file + ": " + taken_words(status));
}

std::string taken_words(HRESULT status) {
  std::string words = ovfile::error::take(status).what();
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  return words;
}

std::vector<field_view> read_fields(IOvSchema& schema, const std::string& file) {
  LONG count = 0;
  check_call(file, schema.get_FieldCount(&count));
  std::vector<field_view> fields;
  for (LONG column = 1; column <= count; ++column) fields.push_back(read_field(schema, column, file));
  return fields;
}

const field_view* find_field(const std::vector<field_view>& fields, const std::string& name) noexcept {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const field_view& field) { return field.name == name; });
  return found == fields.end() ? nullptr : &*found;
}

std::size_t words_of(const field_view& field) noexcept {
  // A text without a width takes a word all the same.
  return field.is_text ? std::max<std::size_t>(words_of_text(static_cast<std::size_t>(field.width)), 1) : 1;
}

}  // namespace command
