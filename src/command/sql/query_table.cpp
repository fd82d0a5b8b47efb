#include "sql/query_table.h"

#include <algorithm>

#include "failure.h"
#include "field_names.h"
#include "import_scan.h"
#include "replacement.h"
#include "sql/query_columns.h"
#include "sql/query_stream.h"
#include "sql/widened_float.h"
#include "table_limits.h"
#include "table_writer.h"
#include "words.h"

namespace command {
namespace {

using duckdb::type_id;

/// The last one of the column in a list of what is known or asked for; null: there is none.
template <class Entry>
const Entry* find_last(const std::vector<Entry>& entries, const std::string& column) {
  const Entry* found = nullptr;
  for (const Entry& entry : entries) {
    if (entry.column == column) found = &entry;
  }
  return found;
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

/// Warns of the fields of numbers that say something else in single precision. `fits` tells of the columns.
void note_lost_digits(import_plan& plan, const std::vector<bool>& fits) {
  std::string names;
  const auto add = [&](const planned_field& field) { names += (names.empty() ? "" : ", ") + field.name; };
  for (std::size_t i = 0; i < fits.size(); ++i) {
    if (!plan.stored[i].is_text && !fits[i]) add(plan.stored[i]);
  }
  for (const planned_field& field : plan.implicit) {
    if (!field.is_text && !fits_float(field.number_default)) add(field);
  }
  if (!names.empty()) plan.notes.push_back("warning: single precision loses digits of " + names);
}

/// Plans the fields of the columns, and returns of each whether single precision, where it is asked for,
/// keeps its numbers.
std::vector<bool> plan_fields(sql_database& database, const std::string& from,
                              const std::vector<sql_column>& columns, const std::string& target,
                              const query_table_request& request, import_plan& plan) {
  const std::vector<std::string> types = type_names(database, from);
  std::vector<std::string> needs;
  std::vector<std::string> fits;
  std::vector<const text_width*> asked;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    asked.push_back(find_last(request.texts, columns[i].name));
    const type_id type = asked[i] != nullptr ? type_id::varchar : columns[i].type;
    const std::string column = fmt::format("c{}", i);
    needs.push_back(fmt::format("cast({} as double)", need_of(column, type, types.at(i))));
    fits.push_back(plan.single ? fits_single(column, type) : "true");
  }
  // Counted too: it gives one row whatever the columns are.
  sql_result found = database.run(
      fmt::format("select {}, count(*), {} from {}", joined(needs, ", "), joined(fits, ", "), from));
  if (!found.next()) throw failure("the query gave nothing");
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const known_column* const known = find_last(request.known, columns[i].name);
    plan.stored.push_back(plan_field(columns[i], found.values<double>(i)[0], asked[i], known, target));
  }
  plan.rows = static_cast<std::uint64_t>(found.values<std::int64_t>(columns.size())[0]);
  std::vector<bool> fit;
  for (std::size_t i = columns.size() + 1; i <= 2 * columns.size(); ++i) {
    fit.push_back(found.is_null(i, 0) || found.values<bool>(i)[0]);
  }
  return fit;
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

/// How each column reaches the table: floats as they are where it holds such.
std::vector<stream_column> streamed_columns(const import_plan& plan, const std::vector<sql_column>& columns) {
  std::vector<stream_column> streamed;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const planned_field& field = plan.stored[i];
    const bool is_float = !field.is_text && columns[i].type == type_id::real;
    streamed.push_back({field.name, field.is_text, is_float, is_float && !plan.single});
  }
  return streamed;
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
  std::vector<bool> fits;
  if (!columns.empty()) fits = plan_fields(database, from, columns, target, request, plan);
  const std::size_t words = words_needed(plan.stored) + words_needed(plan.implicit);
  if (request.single_where_it_fits && has_room(words, true)) plan.single = true;
  name_fields(plan);
  if (plan.single) note_lost_digits(plan, fits);
  check_words(target, words, plan.single);

  const std::vector<stream_column> streamed = streamed_columns(plan, columns);
  replacement file(target);
  std::int64_t rows = 0;
  {
    table_writer writer(file.name(), target, plan);
    database.show("writing");
    if (!columns.empty()) {
      sql_result found = database.run(select_values(streamed, from));
      database.rows().expect(plan.rows);
      rows = writer.add_rows(stream_rows(std::move(found), streamed, database.rows()));
    }
    writer.close();
  }
  file.commit();
  database.show({});
  notes.insert(notes.end(), plan.notes.begin(), plan.notes.end());
  return rows;
}

}  // namespace command
