#include "query_table.h"

#include <algorithm>

#include "failure.h"
#include "field_names.h"
#include "import_scan.h"
#include "query_stream.h"
#include "replacement.h"
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

/// The source under our own names, what stands for absent values made NULL.
std::string cleaned(const std::string& source, const std::vector<sql_column>& columns,
                    const query_table_request& request) {
  const std::vector<std::string> names = own_column_names(columns.size());
  std::vector<std::string> values;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool is_float = columns[i].type == type_id::real || columns[i].type == type_id::double_real;
    std::string value = names[i];
    if (request.nan_is_absent && is_float)
      value = fmt::format("case when isnan({0}) then null else {0} end", value);
    if (!request.absent_text.empty()) {
      const std::string word = sql_text(request.absent_text);
      value =
          fit_of(columns[i].type) == fit::text
              ? fmt::format("nullif({}, {})", as_text(value), word)
              : fmt::format("case when {0} = try_cast({1} as double) then null else {0} end", value, word);
    }
    values.push_back(value + " as " + names[i]);
  }
  return fmt::format("(select {} from {} as q({}))", fmt::join(values, ", "), source, fmt::join(names, ", "));
}

/// What a column needs of a table, as an aggregate that gives a double: below 0 a number, else text of so
/// many characters.
std::string need_of(const std::string& column, type_id type) {
  const std::string width = fmt::format("coalesce(max(length(rtrim({}, ' \t'))), 0)", as_text(column));
  switch (fit_of(type)) {
    case fit::number:
      return "-1e0";
    case fit::perhaps:
      return fmt::format(
          "case when bool_and(coalesce(try_cast(cast({0} as double) as {1}) = {0}, {0} is null)) is "
          "not false then -1 else {2} end",
          column, type == type_id::decimal ? "decimal(38, 10)" : "hugeint", width);
    case fit::text:
      break;
  }
  return width;
}

const text_width* width_asked_for(const query_table_request& request, const std::string& column) {
  const text_width* found = nullptr;
  for (const text_width& width : request.texts) {
    if (width.column == column) found = &width;
  }
  return found;
}

planned_field plan_field(const sql_column& column, double need, const text_width* asked,
                         const std::string& target) {
  planned_field field;
  field.is_text = need >= 0;
  if (!field.is_text) return field;
  const auto needed = std::max<std::size_t>(static_cast<std::size_t>(need), 1);
  if (asked != nullptr && asked->is_bound && needed > asked->width) {
    throw failure(fmt::format("{}: column {} has a text of {} characters, and its width is to be {}", target,
                              column.name, needed, asked->width));
  }
  field.width = asked != nullptr ? std::max(asked->width, needed) : needed;
  if (field.width > widest_text) {
    throw failure(fmt::format("{}: column {} has a text of {} characters; a text has at most {}", target,
                              column.name, field.width, widest_text));
  }
  return field;
}

std::vector<planned_field> plan_fields(sql_database& database, const std::string& from,
                                       const std::vector<sql_column>& columns, const std::string& target,
                                       const query_table_request& request) {
  std::vector<std::string> needs;
  std::vector<const text_width*> asked;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    asked.push_back(width_asked_for(request, columns[i].name));
    const bool to_text = asked[i] != nullptr && asked[i]->is_bound;
    const type_id type = to_text ? type_id::varchar : columns[i].type;
    needs.push_back(fmt::format("cast({} as double)", need_of(fmt::format("c{}", i), type)));
  }
  sql_result found = database.run(fmt::format("select {} from {}", fmt::join(needs, ", "), from));
  if (!found.next()) throw failure("the query gave nothing");
  std::vector<planned_field> fields;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    fields.push_back(plan_field(columns[i], found.values<double>(i)[0], asked[i], target));
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

void name_fields(import_plan& plan, const std::vector<sql_column>& columns) {
  std::vector<std::string> headers;
  std::vector<std::string> taken;
  for (const sql_column& column : columns) headers.push_back(column.name);
  for (const planned_field& field : plan.implicit) taken.push_back(field.name);
  const std::vector<std::string> names =
      make_field_names(headers, taken, longest_name(plan.single), plan.notes);
  for (std::size_t i = 0; i < names.size(); ++i) plan.stored[i].name = names[i];
}

std::size_t words_needed(const std::vector<planned_field>& fields) {
  std::size_t words = 0;
  for (const planned_field& field : fields) words += field.is_text ? words_of_text(field.width) : 1;
  return words;
}

/// The query that gives each column as the table takes it.
std::string select_values(const std::vector<planned_field>& fields, const std::string& from) {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::string name = fmt::format("c{}", i);
    values.push_back(fields[i].is_text ? as_text(name) : fmt::format("cast({} as double)", name));
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
  if (columns.empty()) throw failure("there are no columns to make a table of");
  check_texts_asked_for(request, columns);
  const std::string from = cleaned(source, columns, request);
  import_plan plan;
  plan.single = request.single;
  plan.description = request.description.value_or("");
  plan.implicit = request.implicit;
  plan.stored = plan_fields(database, from, columns, target, request);
  name_fields(plan, columns);
  check_words(target, words_needed(plan.stored) + words_needed(plan.implicit), plan.single);

  std::vector<stream_column> streamed;
  for (const planned_field& field : plan.stored) streamed.push_back({field.name, field.is_text});
  replacement file(target);
  std::int64_t rows = 0;
  {
    table_writer writer(file.name(), target, plan);
    rows = writer.add_rows(stream_rows(database.run(select_values(plan.stored, from)), streamed));
    writer.close();
  }
  file.commit();
  notes.insert(notes.end(), plan.notes.begin(), plan.notes.end());
  return rows;
}

}  // namespace command
