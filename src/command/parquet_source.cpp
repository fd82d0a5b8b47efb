#include "parquet_source.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "failure.h"
#include "parquet_file.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

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

/// The columns that stand in the folders' names: they come as texts, and the files have none of the name or
/// one of another type.
std::vector<std::string> columns_of_folders(sql_database& database, const parquet_source& source) {
  const std::vector<sql_column> inside =
      database.shape_of("select * from read_parquet(" + source.files + ", hive_partitioning = false)")
          .columns;
  std::vector<std::string> names;
  for (const sql_column& column : source.columns) {
    const auto same = [&](const sql_column& one) {
      return one.name == column.name && one.type == column.type;
    };
    if (std::none_of(inside.begin(), inside.end(), same)) names.push_back(column.name);
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

/// A folder's name has bytes that a file system may not like as %20.
std::string percent_decoded(const std::string& name) {
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    unsigned value = 0;
    const char* const digits = name.data() + i + 1;
    const bool coded = name[i] == '%' && i + 2 < name.size() &&
                       std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
    out += coded ? static_cast<char>(value) : name[i];
    if (coded) i += 2;
  }
  return out;
}

bool has_column(const parquet_source& source, const std::string& name) {
  return std::any_of(source.columns.begin(), source.columns.end(),
                     [&](const sql_column& column) { return column.name == name; });
}

/// The columns that stand in the folders' names get the names and kinds that they had.
void give_kinds(sql_database& database, parquet_source& source) {
  // By way of a double a float could be rounded twice.
  const char* const number = source.kept && source.kept->single ? "real" : "double";
  std::vector<std::string> coded;
  std::vector<std::string> values;
  for (const std::string& column : columns_of_folders(database, source)) {
    const std::string decoded = percent_decoded(column);
    const std::string made = has_column(source, decoded) ? column : decoded;
    const kept_field* const kept = source.kept ? source.kept->find(made) : nullptr;
    const std::string name = sql_name(column);
    const bool is_number =
        kept != nullptr ? !kept->field.is_text : prints_as_numbers(database, source.rows, name);
    coded.push_back(name);
    values.push_back(
        fmt::format("cast({} as {}) as {}", name, is_number ? number : "varchar", sql_name(made)));
  }
  if (coded.empty()) return;
  source.rows = fmt::format("(select * exclude ({}), {} from {})", fmt::join(coded, ", "),
                            fmt::join(values, ", "), source.rows);
}

/// The Parquet files in a folder and those in it, in the order of their names; hidden ones are not meant.
std::vector<std::string> files_in(const std::string& folder) {
  std::vector<std::string> names;
  std::filesystem::recursive_directory_iterator entries(path_of_utf8(folder));
  for (const auto end = std::filesystem::end(entries); entries != end; ++entries) {
    const std::string leaf = utf8_of_path(entries->path().filename());
    if (leaf.starts_with('.')) {
      entries.disable_recursion_pending();
    } else if (is_named_as_parquet(leaf) && entries->is_regular_file()) {
      const std::u8string name = entries->path().generic_u8string();
      names.emplace_back(name.begin(), name.end());
    }
  }
  if (names.empty()) throw failure(folder + " has no Parquet files in it");
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> files_of(const std::string& name, bool is_folder) {
  try {
    return is_folder ? files_in(name) : std::vector<std::string>{name};
  } catch (const std::filesystem::filesystem_error& error) {
    throw failure("cannot read " + name + ": " + error.code().message());
  }
}

}  // namespace

parquet_source open_source(sql_database& database, const std::string& name) {
  parquet_source source;
  std::error_code error;
  if (!std::filesystem::exists(path_of_utf8(name), error)) {
    throw failure("cannot open " + name + ": there is no such file");
  }
  const bool is_folder = std::filesystem::is_directory(path_of_utf8(name), error);
  std::vector<std::string> files;
  for (const std::string& file : files_of(name, is_folder)) files.push_back(as_pattern(file));
  source.pattern = files.front();
  for (const std::string& file : files) source.files += (source.files.empty() ? "[" : ", ") + sql_text(file);
  source.files += "]";
  source.rows = fmt::format("read_parquet({}{})", source.files,
                            is_folder ? ", hive_partitioning = true, hive_types_autocast = false" : "");
  source.columns = database.shape_of("select * from " + source.rows).columns;
  source.kept = read_metadata(database, source.pattern);
  if (is_folder) {
    give_kinds(database, source);
    source.columns = database.shape_of("select * from " + source.rows).columns;
  }
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
