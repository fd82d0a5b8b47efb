#include "parquet/parquet_import.h"

#include <algorithm>
#include <utility>

#include "absent.h"
#include "failure.h"
#include "import_scan.h"
#include "number_text.h"
#include "parquet/parquet_source.h"
#include "sql/query_table.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

/// What is true of a row whose value of the column is not the one that the field had.
std::string differing_rows(const sql_column& column, const planned_field& field, bool nan_is_absent) {
  const std::string name = sql_name(column.name);
  if (field.is_text) {
    return fmt::format("coalesce(rtrim(cast({} as varchar), ' '), '') <> {}", name,
                       sql_text(field.text_default));
  }
  const bool is_float = column.type == duckdb::type_id::real || column.type == duckdb::type_id::double_real;
  if (!is_float) return "true";  // other programs' doing
  const std::string absent = fmt::format("({0} is null or {0} in (-1e30, cast(-1e30 as real)){1})", name,
                                         nan_is_absent ? fmt::format(" or isnan({})", name) : std::string());
  if (is_absent(field.number_default) || is_absent(static_cast<float>(field.number_default))) {
    return "not " + absent;
  }
  return fmt::format(
      "({0} or {1} <> cast('{2}' as double) or signbit({1}) <> signbit(cast('{2}' as double)))", absent, name,
      number_text(field.number_default));
}

bool has_rows(sql_database& database, const parquet_source& source, const std::string& condition) {
  return database.run(fmt::format("select 1 from {} where {} limit 1", source.rows, condition)).next();
}

/// Takes the columns that were implicit and still have that one value out of the rows. A table of implicit
/// fields alone has no rows, so where there are some the columns stay.
std::vector<planned_field> take_implicits(sql_database& database, parquet_source& source,
                                          bool nan_is_absent) {
  std::vector<planned_field> implicit;
  std::vector<sql_column> stored;
  for (const sql_column& column : source.columns) {
    const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
    if (kept == nullptr || !kept->implicit ||
        has_rows(database, source, differing_rows(column, kept->field, nan_is_absent))) {
      stored.push_back(column);
    } else {
      implicit.push_back(kept->field);
    }
  }
  if (stored.empty() && has_rows(database, source, "true")) return {};
  source.columns = stored;
  return implicit;
}

/// The description that was kept, as a table takes it; that it is empty counts too.
std::string description_of(const kept_definition& kept, std::vector<std::string>& notes) {
  try {
    check_description("the description is left out", kept.description);
    if (!kept.description.empty()) return kept.description;
  } catch (const failure& problem) {
    notes.emplace_back(problem.what());
  }
  return " ";
}

/// Whether no number needs more than a float.
bool are_small(const std::vector<sql_column>& columns) {
  return std::all_of(columns.begin(), columns.end(), [](const sql_column& one) {
    return one.type == duckdb::type_id::real || one.type == duckdb::type_id::varchar;
  });
}

bool has_floats(const std::vector<sql_column>& columns) {
  return std::any_of(columns.begin(), columns.end(),
                     [](const sql_column& one) { return one.type == duckdb::type_id::real; });
}

query_table_request plan_table(const import_request& request, const sql_options& options,
                               const parquet_source& source, std::vector<std::string>& notes) {
  query_table_request made;
  made.single = request.single || (source.kept && source.kept->single && are_small(source.columns));
  made.single_where_it_fits = !source.kept && has_floats(source.columns) && are_small(source.columns);
  made.description = request.description;
  if (!made.description && source.kept) made.description = description_of(*source.kept, notes);
  made.nan_is_absent = options.absent_value() == absent_value::nan;
  made.absent_text = options.shown_absent();
  for (const sql_column& column : source.columns) {
    const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
    if (kept != nullptr) made.known.push_back({column.name, kept->field});
  }
  for (const forced_text& text : request.texts) made.texts.push_back({text.name, text.width});
  return made;
}

std::string select_of(const parquet_source& source) {
  std::string names;
  for (const sql_column& column : source.columns)
    names += (names.empty() ? "" : ", ") + sql_name(column.name);
  return fmt::format("(select {} from {})", names, source.rows);
}

/// Implicit fields that the user asks for stand beside the columns, not in their place.
void add_implicits(const import_request& request, const parquet_source& source, query_table_request& made) {
  for (planned_field& field : plan_implicits(request, longest_name(made.single))) {
    const auto same = [&](const sql_column& column) { return column.name == field.name; };
    const auto same_implicit = [&](const planned_field& one) { return one.name == field.name; };
    if (std::any_of(source.columns.begin(), source.columns.end(), same) ||
        std::any_of(made.implicit.begin(), made.implicit.end(), same_implicit)) {
      throw failure(fmt::format("--implicit {}: {} has a column of that name", field.name, request.csv));
    }
    made.implicit.push_back(std::move(field));
  }
}

/// Runs `work`. What the library says of it becomes the source's failure, and shows nothing of our own
/// statements.
template <class Work>
auto naming_file(const std::string& name, Work work) {
  try {
    return work();
  } catch (const failure& error) {
    const std::string words = error.what();
    // Its messages begin with "IO Error:" and the like.
    if (!words.substr(0, words.find(':')).ends_with("Error")) throw;
    throw failure("cannot read " + name + ": " + words);
  }
}

}  // namespace

void import_parquet(const import_request& request, const sql_options& options) {
  sql_database database(options.settings());
  database.show("reading " + request.csv);
  parquet_source source = naming_file(request.csv, [&] { return open_source(database, request.csv); });
  put_in_order(source);
  std::vector<std::string> notes = std::move(source.notes);
  std::vector<planned_field> implicit = naming_file(request.csv, [&] {
    return take_implicits(database, source, options.absent_value() == absent_value::nan);
  });
  query_table_request made = plan_table(request, options, source, notes);
  made.implicit = std::move(implicit);
  add_implicits(request, source, made);
  naming_file(request.csv, [&] {
    return make_table(database, select_of(source), source.columns, request.table, made, notes);
  });
  for (const std::string& note : notes) say(note);
}

}  // namespace command
