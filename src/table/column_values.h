// Values of an engine table's current row as hosts see them. Columns count from 1.
#pragma once

#include "engine/table.h"
#include "platform/decimal_tidy.h"

namespace ovf {

/// The engine's index of a host's column; a column below 1 becomes one that no table has.
inline std::uint64_t field_index(LONG column) noexcept {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(column) - 1);
}

/// A float of the file is widened so that its decimal digits stay tidy; a text is converted.
double converted_column(table& from, std::uint64_t index);

inline double column_as_double(table& from, LONG column) {
  const std::uint64_t index = field_index(column);
  const std::byte* place = from.storedNumber(index);
  if (place == nullptr) return converted_column(from, index);
  if (from.isDouble()) return load_number<double_precision>(place, byte_order::native);
  return tidied(load_number<single_precision>(place, byte_order::native));
}

/// A number of the file's precision, or a text.
variant column_value(table& from, LONG column);

/// The value as `put_column` stores it: by-reference forms resolved, a float for a table of doubles
/// widened tidily.
variant as_stored(const table& to, const VARIANT& value);
/// True when a text was cut to the column's width.
bool put_column(table& to, LONG column, const VARIANT& value);
/// Trailing blanks and tabs are dropped; a number's text is converted whole.
bool put_text_column(table& to, LONG column, wide_view value);

}  // namespace ovf
