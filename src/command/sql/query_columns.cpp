#include "sql/query_columns.h"

#include <algorithm>

#include "words.h"

namespace command {
namespace {

using duckdb::type_id;

enum class fit { number, perhaps, text };

/// Whether a double holds every value of the type.
fit fit_of(type_id type) noexcept {
  switch (type) {
    case type_id::boolean:
    case type_id::tiny:
    case type_id::small:
    case type_id::integer:
    case type_id::unsigned_tiny:
    case type_id::unsigned_small:
    case type_id::unsigned_integer:
    case type_id::real:
    case type_id::double_real:
      return fit::number;
    case type_id::big:
    case type_id::unsigned_big:
    case type_id::huge:
    case type_id::unsigned_huge:
    case type_id::decimal:
      return fit::perhaps;
    default:
      return fit::text;
  }
}

std::string as_text(const std::string& column) { return fmt::format("cast({} as varchar)", column); }

/// Beyond the largest value of a type of whole numbers, as a double. To cast what is not below to the type is
/// no failure everywhere.
const char* bound_of(type_id type) noexcept {
  switch (type) {
    case type_id::big:
      return "9223372036854775808e0";
    case type_id::unsigned_big:
      return "18446744073709551616e0";
    case type_id::huge:
      return "170141183460469231731687303715884105728e0";
    default:
      return "340282366920938463463374607431768211456e0";
  }
}

/// Whether a double holds every value of the column, as an aggregate that is null for no values at all.
std::string fits_double(const std::string& column, type_id type, const std::string& type_name) {
  const std::string as_double = fmt::format("cast({} as double)", column);
  const auto comes_back = [&](const std::string& value) {
    return fmt::format("coalesce(try_cast({} as {}) = {}, {} is null)", value, type_name, column, column);
  };
  if (type != type_id::decimal) {
    return fmt::format("bool_and({} is null or ({} < {} and {}))", column, as_double, bound_of(type),
                       comes_back(as_double));
  }
  // A decimal is as good as the number that has the same digits, of which the arithmetic loses some; to read
  // them is slow.
  return fmt::format("bool_and(case when {} then true else {} end)", comes_back(as_double),
                     comes_back(as_text(as_double)));
}

bool is_text_asked_for(const query_table_request& request, const std::string& column) {
  return std::any_of(request.texts.begin(), request.texts.end(),
                     [&](const text_width& width) { return width.column == column; });
}

}  // namespace

bool is_numeric(type_id type) noexcept { return fit_of(type) != fit::text; }

std::string float_as_text(const std::string& value) {
  return fmt::format(
      "case when {0} = trunc({0}) and abs({0}) < 1e15 then cast(try_cast({0} as bigint) as varchar) else "
      "cast({0} as varchar) end",
      value);
}

std::string cleaned(const std::string& source, const std::vector<sql_column>& columns,
                    const query_table_request& request) {
  const std::vector<std::string> names = own_column_names(columns.size());
  std::vector<std::string> values;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool is_float = columns[i].type == type_id::real || columns[i].type == type_id::double_real;
    std::string value = names[i];
    // What stands for an absent float is another number as a double.
    if (is_float) value = fmt::format("case when {0} = cast(-1e30 as real) then null else {0} end", value);
    if (request.nan_is_absent && is_float)
      value = fmt::format("case when isnan({0}) then null else {0} end", value);
    if (!request.absent_text.empty()) {
      const std::string word = sql_text(request.absent_text);
      value = fit_of(columns[i].type) == fit::text
                  ? fmt::format("nullif({}, {})", as_text(value), word)
                  : fmt::format("case when {0} = try_cast({1} as {2}) then null else {0} end", value, word,
                                columns[i].type == type_id::real ? "real" : "double");
    }
    if (is_float && is_text_asked_for(request, columns[i].name)) value = float_as_text(value);
    values.push_back(value + " as " + names[i]);
  }
  return fmt::format("(select {} from {} as q({}))", joined(values, ", "), source, joined(names, ", "));
}

std::string need_of(const std::string& column, type_id type, const std::string& type_name) {
  const fit fits = fit_of(type);
  if (fits == fit::number) return "-1e0";
  std::string width = fmt::format("coalesce(max(length(rtrim({}, ' \t'))), 0)", as_text(column));
  if (fits == fit::text) return width;
  return fmt::format("case when {} is not false then -1 else {} end", fits_double(column, type, type_name),
                     width);
}

std::string fits_single(const std::string& column, type_id type) {
  if (type == type_id::real || fit_of(type) == fit::text) return "true";
  // Numbers of a few digits are no floats, and yet come back by their digits; to read them is slow. One that
  // no float comes near is refused when it is written.
  return fmt::format(
      "bool_and(case when {0} is null or isnan({0}) or try_cast({0} as real) is null then true when "
      "cast(try_cast({0} as real) as double) = {0} then true else "
      "cast(cast(try_cast({0} as real) as varchar) as double) = {0} end)",
      fmt::format("cast({} as double)", column));
}

std::string select_values(const std::vector<stream_column>& columns, const std::string& from) {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const char* const type = columns[i].is_text ? "varchar" : columns[i].is_float ? "real" : "double";
    values.push_back(fmt::format("cast(c{} as {})", i, type));
  }
  return fmt::format("select {} from {}", joined(values, ", "), from);
}

}  // namespace command
