#include "parquet_import.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "failure.h"
#include "import_scan.h"
#include "parquet_metadata.h"
#include "query_table.h"
#include "table_limits.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

/// What is read: its rows and columns as SQL sees them, and what the files tell of the table that they come
/// from.
struct parquet_source {
  std::string pattern;
  std::string rows;  ///< stands behind FROM
  std::vector<sql_column> columns;
  std::optional<kept_definition> kept;
};

bool is_folder(const std::string& name) {
  std::error_code error;
  return std::filesystem::is_directory(path_of_utf8(name), error);
}

/// A name may have what the library takes for a pattern.
std::string as_pattern(const std::string& name) {
  std::string out;
  for (const char c : name) {
    if (c == '*' || c == '?' || c == '[') {
      out += std::string("[") + c + "]";
    } else {
      out += c;
    }
  }
  return out;
}

std::set<std::string> names_in_files(sql_database& database, const std::string& pattern) {
  std::set<std::string> names;
  sql_result rows = database.run("select distinct name from parquet_schema(" + sql_text(pattern) + ")");
  while (rows.next()) {
    for (std::size_t i = 0; i < rows.rows(); ++i) names.emplace(rows.text(0, i));
  }
  return names;
}

/// Whether each text of the column is just what its number prints as.
bool prints_as_numbers(sql_database& database, const std::string& rows, const std::string& column) {
  sql_result found = database.run(
      fmt::format("select coalesce(bool_and(coalesce(cast(try_cast({0} as double) as varchar) = {0} or "
                  "cast(try_cast({0} as bigint) as varchar) = {0}, {0} is null)), true) from {1}",
                  column, rows));
  return found.next() && found.values<bool>(0)[0];
}

/// The columns that stand in the folders' names, which are all texts there, get the kind that they had.
void give_kinds(sql_database& database, parquet_source& source) {
  const std::set<std::string> stored = names_in_files(database, source.pattern);
  std::string casts;
  for (const sql_column& column : source.columns) {
    if (stored.contains(column.name)) continue;
    const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
    const std::string name = sql_name(column.name);
    const bool is_number =
        kept != nullptr ? !kept->field.is_text : prints_as_numbers(database, source.rows, name);
    if (!is_number) continue;
    casts += (casts.empty() ? "" : ", ") + fmt::format("cast({0} as double) as {0}", name);
  }
  if (!casts.empty()) source.rows = fmt::format("(select * replace ({}) from {})", casts, source.rows);
}

parquet_source open_source(sql_database& database, const std::string& name) {
  parquet_source source;
  const bool folder = is_folder(name);
  source.pattern = as_pattern(name) + (folder ? "/**/*.parquet" : "");
  source.rows = fmt::format("read_parquet({}{})", sql_text(source.pattern),
                            folder ? ", hive_partitioning = true, hive_types_autocast = false" : "");
  source.columns = database.shape_of("select * from " + source.rows).columns;
  source.kept = read_metadata(database, source.pattern);
  if (folder) {
    give_kinds(database, source);
    source.columns = database.shape_of("select * from " + source.rows).columns;
  }
  return source;
}

/// The columns in the order that the table had, with those behind them that it did not have.
void put_in_order(parquet_source& source) {
  if (!source.kept) return;
  const auto place = [&](const sql_column& column) {
    const kept_field* const kept = source.kept->find(column.name);
    return kept != nullptr ? kept - source.kept->fields.data()
                           : static_cast<std::ptrdiff_t>(source.kept->fields.size());
  };
  std::stable_sort(source.columns.begin(), source.columns.end(),
                   [&](const sql_column& one, const sql_column& other) { return place(one) < place(other); });
}

bool has_other_values(sql_database& database, const parquet_source& source, const kept_field& kept) {
  const std::string name = sql_name(kept.field.name);
  const std::string value =
      kept.field.is_text ? fmt::format("coalesce(rtrim(cast({} as varchar)), '') is distinct from {}", name,
                                       sql_text(kept.field.text_default))
                         : fmt::format("coalesce(cast({} as double), -1e30) is distinct from {}::double",
                                       name, kept.field.number_default);
  return database.run(fmt::format("select 1 from {} where {} limit 1", source.rows, value)).next();
}

/// Takes the columns that were implicit and still have one value out of the rows.
std::vector<planned_field> take_implicits(sql_database& database, parquet_source& source) {
  std::vector<planned_field> implicit;
  std::vector<sql_column> stored;
  for (const sql_column& column : source.columns) {
    const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
    if (kept == nullptr || !kept->implicit || has_other_values(database, source, *kept)) {
      stored.push_back(column);
    } else {
      implicit.push_back(kept->field);
    }
  }
  source.columns = stored;
  return implicit;
}

bool are_all_floats(const std::vector<sql_column>& columns) {
  const auto is = [&](duckdb::type_id type) {
    return std::any_of(columns.begin(), columns.end(),
                       [&](const sql_column& one) { return one.type == type; });
  };
  return is(duckdb::type_id::real) && std::all_of(columns.begin(), columns.end(), [](const sql_column& one) {
           return one.type == duckdb::type_id::real || one.type == duckdb::type_id::varchar;
         });
}

query_table_request plan_table(const import_request& request, const sql_options& options,
                               const parquet_source& source) {
  query_table_request made;
  made.single = request.single || (source.kept ? source.kept->single : are_all_floats(source.columns));
  made.description = request.description;
  if (!made.description && source.kept) made.description = source.kept->description;
  made.nan_is_absent = options.absent_value() == absent_value::nan;
  made.absent_text = options.shown_absent();
  for (const sql_column& column : source.columns) {
    const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
    if (kept != nullptr && kept->field.is_text) made.texts.push_back({column.name, kept->field.width, false});
  }
  for (const forced_text& text : request.texts) made.texts.push_back({text.name, text.width, true});
  return made;
}

std::string select_of(const parquet_source& source) {
  std::string names;
  for (const sql_column& column : source.columns)
    names += (names.empty() ? "" : ", ") + sql_name(column.name);
  return fmt::format("(select {} from {})", names, source.rows);
}

}  // namespace

void import_parquet(const import_request& request, const sql_options& options) {
  sql_database database(options.settings());
  parquet_source source = open_source(database, request.csv);
  put_in_order(source);
  std::vector<planned_field> implicit = take_implicits(database, source);
  query_table_request made = plan_table(request, options, source);
  for (planned_field& field : plan_implicits(request, longest_name(made.single))) {
    implicit.push_back(std::move(field));
  }
  made.implicit = std::move(implicit);
  std::vector<std::string> notes;
  make_table(database, select_of(source), source.columns, request.table, made, notes);
  for (const std::string& note : notes) say(note);
}

}  // namespace command
