#include "sql/query_table.h"

#include <algorithm>

#include "failure.h"
#include "field_names.h"
#include "import_scan.h"
#include "replacement.h"
#include "sql/query_stream.h"
#include "table_limits.h"
#include "table_writer.h"
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

/// The last one of the column in a list of what is known or asked for; null: there is none.
template <class Entry>
const Entry* find_last(const std::vector<Entry>& entries, const std::string& column) {
  const Entry* found = nullptr;
  for (const Entry& entry : entries) {
    if (entry.column == column) found = &entry;
  }
  return found;
}

/// A float as text: a whole one without the point that the library writes.
std::string float_as_text(const std::string& value) {
  return fmt::format(
      "case when {0} = trunc({0}) and abs({0}) < 1e15 then cast(try_cast({0} as bigint) as varchar) else "
      "cast({0} as varchar) end",
      value);
}

/// The source under our own names, what stands for absent values made NULL.
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
      value =
          fit_of(columns[i].type) == fit::text
              ? fmt::format("nullif({}, {})", as_text(value), word)
              : fmt::format("case when {0} = try_cast({1} as double) then null else {0} end", value, word);
    }
    if (is_float && find_last(request.texts, columns[i].name) != nullptr) value = float_as_text(value);
    values.push_back(value + " as " + names[i]);
  }
  return fmt::format("(select {} from {} as q({}))", fmt::join(values, ", "), source, fmt::join(names, ", "));
}

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

/// What a column needs of a table, as an aggregate that gives a double: below 0 a number, else text of so
/// many characters.
std::string need_of(const std::string& column, type_id type, const std::string& type_name) {
  const fit fits = fit_of(type);
  if (fits == fit::number) return "-1e0";
  std::string width = fmt::format("coalesce(max(length(rtrim({}, ' \t'))), 0)", as_text(column));
  if (fits == fit::text) return width;
  return fmt::format("case when {} is not false then -1 else {} end", fits_double(column, type, type_name),
                     width);
}

/// The types of a query's columns as SQL writes them.
std::vector<std::string> type_names(sql_database& database, const std::string& from) {
  std::vector<std::string> names;
  for (sql_result found = database.run("select column_type from (describe from " + from + ")");
       found.next();) {
    for (std::size_t row = 0; row < found.rows(); ++row) names.emplace_back(found.text(0, row));
  }
  return names;
}

/// The column as it was, as far as its values still are of that kind.
planned_field start_field(const sql_column& column, const known_column* known, bool is_text) {
  planned_field field;
  field.name = known != nullptr ? known->field.name : column.name;
  if (known != nullptr) {
    if (known->field.is_text == is_text) field = known->field;
    field.name = known->field.name;
    field.place = known->field.place;
  }
  field.is_text = is_text;
  return field;
}

planned_field plan_field(const sql_column& column, double need, const text_width* asked,
                         const known_column* known, const std::string& target) {
  planned_field field = start_field(column, known, need >= 0);
  if (!field.is_text) return field;
  const auto needed = std::max<std::size_t>(static_cast<std::size_t>(need), 1);
  if (asked != nullptr && needed > asked->width) {
    throw failure(fmt::format("{}: column {} has a text of {} characters, and its width is to be {}", target,
                              column.name, needed, asked->width));
  }
  field.width = asked != nullptr ? asked->width : std::max(field.width, needed);
  if (field.width > widest_text) {
    throw failure(fmt::format("{}: column {} has a text of {} characters; a text has at most {}", target,
                              column.name, field.width, widest_text));
  }
  return field;
}

std::vector<planned_field> plan_fields(sql_database& database, const std::string& from,
                                       const std::vector<sql_column>& columns, const std::string& target,
                                       const query_table_request& request) {
  const std::vector<std::string> types = type_names(database, from);
  std::vector<std::string> needs;
  std::vector<const text_width*> asked;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    asked.push_back(find_last(request.texts, columns[i].name));
    const type_id type = asked[i] != nullptr ? type_id::varchar : columns[i].type;
    needs.push_back(fmt::format("cast({} as double)", need_of(fmt::format("c{}", i), type, types.at(i))));
  }
  // Counted too: it gives one row whatever the columns are.
  sql_result found = database.run(fmt::format("select {}, count(*) from {}", fmt::join(needs, ", "), from));
  if (!found.next()) throw failure("the query gave nothing");
  std::vector<planned_field> fields;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const known_column* const known = find_last(request.known, columns[i].name);
    fields.push_back(plan_field(columns[i], found.values<double>(i)[0], asked[i], known, target));
  }
  return fields;
}

void check_texts_asked_for(const query_table_request& request, const std::vector<sql_column>& columns) {
  for (const text_width& width : request.texts) {
    const auto same = [&](const sql_column& column) { return column.name == width.column; };
    if (std::none_of(columns.begin(), columns.end(), same)) {
      throw failure("there is no column " + width.column + " (--text)");
    }
  }
}

/// Names as the table takes them, counted in the order that it will have.
void name_fields(import_plan& plan) {
  std::vector<planned_field*> fields;
  for (planned_field& field : plan.stored) fields.push_back(&field);
  for (planned_field& field : plan.implicit) fields.push_back(&field);
  std::stable_sort(fields.begin(), fields.end(), [](const planned_field* one, const planned_field* other) {
    return one->place < other->place;
  });
  std::vector<std::string> wanted;
  wanted.reserve(fields.size());
  for (const planned_field* const field : fields) wanted.push_back(field->name);
  const std::vector<std::string> names = make_field_names(wanted, {}, longest_name(plan.single), plan.notes);
  for (std::size_t i = 0; i < names.size(); ++i) fields[i]->name = names[i];
}

std::size_t words_needed(const std::vector<planned_field>& fields) {
  std::size_t words = 0;
  for (const planned_field& field : fields) words += field.is_text ? words_of_text(field.width) : 1;
  return words;
}

/// How each column reaches the table: floats as they are, which it may hold, else widens by their digits.
std::vector<stream_column> streamed_columns(const import_plan& plan, const std::vector<sql_column>& columns) {
  std::vector<stream_column> streamed;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const planned_field& field = plan.stored[i];
    const bool is_float = !field.is_text && columns[i].type == type_id::real;
    streamed.push_back({field.name, field.is_text, is_float});
  }
  return streamed;
}

/// The query that gives each column as the table takes it.
std::string select_values(const std::vector<stream_column>& columns, const std::string& from) {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const char* const type = columns[i].is_text ? "varchar" : columns[i].is_float ? "real" : "double";
    values.push_back(fmt::format("cast(c{} as {})", i, type));
  }
  return fmt::format("select {} from {}", fmt::join(values, ", "), from);
}

}  // namespace

std::vector<std::string> own_column_names(std::size_t columns) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns; ++i) names.push_back(fmt::format("c{}", i));
  return names;
}

std::int64_t make_table(sql_database& database, const std::string& source,
                        const std::vector<sql_column>& columns, const std::string& target,
                        const query_table_request& request, std::vector<std::string>& notes) {
  if (columns.empty() && request.implicit.empty()) {
    throw failure("there are no columns to make a table of");
  }
  check_texts_asked_for(request, columns);
  const std::string from = columns.empty() ? std::string() : cleaned(source, columns, request);
  import_plan plan;
  plan.single = request.single;
  plan.description = request.description.value_or("");
  plan.implicit = request.implicit;
  if (!columns.empty()) plan.stored = plan_fields(database, from, columns, target, request);
  const std::size_t words = words_needed(plan.stored) + words_needed(plan.implicit);
  if (request.single_where_it_fits && has_room(words, true)) plan.single = true;
  name_fields(plan);
  check_words(target, words, plan.single);

  const std::vector<stream_column> streamed = streamed_columns(plan, columns);
  replacement file(target);
  std::int64_t rows = 0;
  {
    table_writer writer(file.name(), target, plan);
    if (!columns.empty()) {
      rows = writer.add_rows(stream_rows(database.run(select_values(streamed, from)), streamed));
    }
    writer.close();
  }
  file.commit();
  notes.insert(notes.end(), plan.notes.begin(), plan.notes.end());
  return rows;
}

}  // namespace command
