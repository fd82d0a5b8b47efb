#include "parquet/parquet_source.h"

#include <algorithm>
#include <filesystem>

#include "failure.h"
#include "parquet/parquet_folders.h"
#include "parquet/parquet_union.h"
#include "unique_names.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

/// Whether each of the rows' texts is just what its number prints as.
bool prints_as_numbers(sql_database& database, const std::string& rows, const std::string& text) {
  sql_result found = database.run(
      fmt::format("select coalesce(bool_and(coalesce(cast(try_cast({0} as double) as varchar) = {0} or "
                  "cast(try_cast({0} as bigint) as varchar) = {0}, {0} is null)), true) "
                  "from (select {1} as {0} from {2})",
                  "folder", text, rows));
  return found.next() && found.values<bool>(0)[0];
}

/// Which of the folders' columns the files have too; SQL takes AU and Au for the same.
std::vector<bool> columns_in_both(const parquet_source& source, const std::vector<folder_column>& folders) {
  std::vector<std::string> names;
  for (const sql_column& column : source.columns) names.push_back(column.name);
  for (const folder_column& column : folders) names.push_back(column.name);
  const std::vector<std::string> unique = unique_names(names, letter_case::does_not_count);
  std::vector<bool> both;
  for (std::size_t i = source.columns.size(); i < names.size(); ++i) both.push_back(unique[i] != names[i]);
  return both;
}

/// Where the files and the folders' names say different things nobody knows which of them is right.
void check_same_values(sql_database& database, const std::string& folder, const parquet_source& source,
                       const folder_column& column) {
  sql_result found = database.run(fmt::format(
      "select 1 from (select cast({} as varchar) as inside, {} as above from {}) where inside is "
      "distinct from above and not coalesce(try_cast(inside as double) = try_cast(above as double), false) "
      "limit 1",
      sql_name(column.name), column.text, source.rows));
  if (!found.next()) return;
  throw failure(
      fmt::format("cannot read {}: column {} has other values in the files than in the names of "
                  "their folders",
                  folder, column.name));
}

std::string typed(sql_database& database, const parquet_source& source, const folder_column& column) {
  // By way of a double a float could be rounded twice.
  const char* const number = source.kept && source.kept->single ? "real" : "double";
  const kept_field* const kept = source.kept ? source.kept->find(column.name) : nullptr;
  const bool is_number =
      kept != nullptr ? !kept->field.is_text : prints_as_numbers(database, source.rows, column.text);
  return fmt::format("cast({} as {}) as {}", column.text, is_number ? number : "varchar",
                     sql_name(column.name));
}

/// Adds the columns that stand in the folders' names, with the kinds that they had.
void add_columns(sql_database& database, const std::string& name, const std::vector<folder_column>& folders,
                 parquet_source& source) {
  const std::vector<bool> both = columns_in_both(source, folders);
  std::string added;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (both[i]) {
      check_same_values(database, name, source, folders[i]);
    } else {
      added += ", " + typed(database, source, folders[i]);
    }
  }
  source.rows =
      fmt::format("(select * exclude ({}){} from {})", sql_name(file_name_column), added, source.rows);
  source.columns = database.shape_of("select * from " + source.rows).columns;
}

/// The files' own rows and columns; what stands in the names of folders above them is none of these.
void read_files(sql_database& database, const parquet_folder& folder, parquet_source& source) {
  source.rows = rows_of(database, folder, source.notes);
  source.columns = database.shape_of("select * from " + source.rows).columns;
  source.kept = read_metadata(database, folder.files);
}

}  // namespace

parquet_source open_source(sql_database& database, const std::string& name) {
  parquet_source source;
  std::error_code error;
  if (!std::filesystem::exists(path_of_utf8(name), error)) {
    throw failure("cannot open " + name + ": there is no such file");
  }
  if (!std::filesystem::is_directory(path_of_utf8(name), error)) {
    read_files(database, {{as_pattern(name)}, {name}, {}}, source);
    return source;
  }
  const parquet_folder folder = open_folder(database, name);
  read_files(database, folder, source);
  if (!folder.columns.empty()) add_columns(database, name, folder.columns, source);
  return source;
}

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

}  // namespace command
