#include "table/signature.h"
#include "table/column_values.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "storage/file_error.h"
#include "table/decimal_text.h"
#include "table/kept_cursor.h"
#include "table/work_progress.h"

namespace ovf {
namespace {

/// Collects the texts of a table and hashes them, as UTF-16 with the low byte first, in large pieces.
class text_digest {
 public:
  void add(wide_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max() / sizeof(char16_t)) {
      throw std::out_of_range("ov_size_t_2_dword");
    }
    pending_.append(text.begin(), text.end());
    pass_on(piece);
  }
  void add_integer(LONG number) {
    const std::string digits = std::to_string(number);
    pending_.append(digits.begin(), digits.end());
  }
  void add_decimal(double value, LONG digits) {
    append_decimal(pending_, value, digits);
    pass_on(piece);
  }
  sha1::digest finish() {
    pass_on(0);
    return hash_.finish();
  }

 private:
  static constexpr std::size_t piece = std::size_t{1} << 15;

  void pass_on(std::size_t from) {
    if (pending_.size() < from) return;
    hash_.add(std::as_bytes(std::span(pending_)));
    pending_.clear();
  }

  std::u16string pending_;
  sha1 hash_;
};

struct signed_field {
  LONG column;
  wide name;
  OvColumnType type;
  LONG characters;
  variant default_value;
};

signed_field signed_field_of(IOvSchema& schema, LONG column) {
  ovfile::text name;
  signed_field field{column, {}, {}, 0, {}};
  throw_on_failure(schema.GetFieldName(column, name.out()));
  throw_on_failure(schema.GetFieldType(column, &field.type));
  throw_on_failure(schema.GetFieldSizeChars(column, &field.characters));
  throw_on_failure(schema.GetFieldDefault(column, field.default_value.out()));
  field.name = name.view();
  return field;
}

std::vector<signed_field> fields_of(IOvSchema& schema, bool sorted) {
  LONG count = 0;
  throw_on_failure(schema.get_FieldCount(&count));
  std::vector<signed_field> fields;
  for (LONG column = 1; column <= count; ++column) fields.push_back(signed_field_of(schema, column));
  if (sorted) std::ranges::stable_sort(fields, {}, &signed_field::name);
  return fields;
}

void add_header(text_digest& digest, table_core& core, const signature_choice& choice, LONG fields) {
  IOvSchema& schema = *core.schema.get();
  if (!choice.ignore_description) {
    ovfile::text description;
    throw_on_failure(schema.get_Description(description.out()));
    digest.add(description.view());
    digest.add(OLESTR("-"));
  }
  if (!choice.ignore_precision) {
    VARIANT_BOOL is_double = VARIANT_FALSE;
    throw_on_failure(schema.get_DoublePrecision(&is_double));
    digest.add_integer(is_double);
    digest.add(OLESTR("-"));
  }
  digest.add_integer(fields);
  digest.add(OLESTR("-"));
  digest.add_integer(long_of(core.opened().getRowCount()));
}

LONG type_code(OvColumnType type, bool ignore_precision) noexcept {
  if (!ignore_precision) return static_cast<LONG>(type);
  return type == ovColumnString ? 1 : 0;
}

void add_field(text_digest& digest, const signed_field& field, const signature_choice& choice) {
  digest.add(field.name);
  digest.add(OLESTR("-"));
  digest.add_integer(type_code(field.type, choice.ignore_precision));
  digest.add(OLESTR("-"));
  digest.add_integer(field.characters);
  digest.add(OLESTR("-"));
  if (field.type == ovColumnString) {
    digest.add(to_text(field.default_value));
  } else {
    digest.add_decimal(to_double(field.default_value), choice.digits);
  }
}

void add_value(text_digest& digest, const table_core& core, const signed_field& field, LONG digits) {
  if (field.type == ovColumnString) {
    digest.add(core.opened().getString(field_index(field.column)));
  } else if (field.type == ovColumnSingle) {
    digest.add_decimal(static_cast<double>(core.opened().getFloat(field_index(field.column))), digits);
  } else {
    digest.add_decimal(column_as_double(core.opened(), field.column), digits);
  }
}

}  // namespace

sha1::digest signature_of(table_core& core, const signature_choice& choice) {
  text_digest digest;
  const std::vector<signed_field> fields = fields_of(*core.schema.get(), choice.ignore_field_order);
  add_header(digest, core, choice, static_cast<LONG>(fields.size()));
  for (const signed_field& field : fields) add_field(digest, field, choice);
  const LONG rows = long_of(core.opened().getRowCount());
  kept_cursor cursor(core);
  work_progress work(core.progress, static_cast<std::uint64_t>(rows));
  for (LONG row = 1; row <= rows; ++row) {
    if (row == 1) {
      core.row_at(row);
    } else {
      core.next_row();
    }
    for (const signed_field& field : fields) add_value(digest, core, field, choice.digits);
    work.step();
  }
  work.finish();
  cursor.give_up();
  return digest.finish();
}

wide hexadecimal(const sha1::digest& digest) {
  constexpr wide_view digits = OLESTR("0123456789abcdef");
  wide text;
  for (const std::uint8_t byte : digest) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace ovf
